// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/TextReader.h"

#include "Host/Messages/Utf8.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace host {
namespace {

constexpr std::size_t kQuotedBytes = 40;

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f';
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isWordPart(char c) {
  return isLetter(c) || isDigit(c) || c == '-' || c == '_';
}

std::size_t digitsEnd(std::string_view text, std::size_t at) {
  while (at < text.size() && isDigit(text[at])) ++at;
  return at;
}

// The digits of a number times ten to the power of `shift`, as text.
std::string shifted(std::string_view digits, int shift) {
  const std::size_t exponentAt = digits.find_first_of("eE");
  int exponent = 0;
  if (exponentAt != std::string_view::npos) {
    std::string_view text = digits.substr(exponentAt + 1);
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) text.remove_prefix(1);
    if (std::from_chars(text.data(), text.data() + text.size(), exponent).ec != std::errc()) exponent = 100000;
    exponent = negative ? -std::min(exponent, 100000) : std::min(exponent, 100000);
  }
  return std::string(digits.substr(0, exponentAt)) + "e" + std::to_string(exponent + shift);
}

}  // namespace

std::string faultWithPlace(std::string_view text, const TextFault& fault, bool isInline) {
  const std::string_view before = text.substr(0, fault.offset);
  const auto line = 1 + std::count(before.begin(), before.end(), '\n');
  const std::size_t lineStart = before.rfind('\n') + 1;  // 0 when there is none
  const std::string column = "column " + std::to_string(1 + utf8Length(before.substr(lineStart)));
  const bool oneLine = isInline && text.find('\n') == std::string_view::npos;
  return (oneLine ? "" : "line " + std::to_string(line) + ", ") + column + ": " + fault.what();
}

std::string quotedText(std::string_view text) {
  if (text.size() <= kQuotedBytes) return '"' + printable(text) + '"';
  std::size_t end = kQuotedBytes;  // not within a character
  while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80) --end;
  return '"' + printable(text.substr(0, end)) + "...\"";
}

std::string lowered(std::string_view text) {
  std::string low(text);
  for (char& c : low) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return low;
}

void TextReader::skipBlanks() {
  for (;;) {
    while (at_ < text_.size() && isBlank(text_[at_])) ++at_;
    if (!text_.substr(at_).starts_with("/*")) return;
    const std::size_t end = text_.find("*/", at_ + 2);
    if (end == std::string_view::npos) fail(at_, "a comment without an end");
    at_ = end + 2;
  }
}

bool TextReader::atEnd() {
  skipBlanks();
  return at_ == text_.size();
}

char TextReader::next() {
  return atEnd() ? '\0' : text_[at_];
}

std::size_t TextReader::place() {
  skipBlanks();
  return at_;
}

bool TextReader::takes(char one) {
  if (atEnd() || text_[at_] != one) return false;
  ++at_;
  return true;
}

void TextReader::expect(char one) {
  if (!takes(one)) expected(std::string("\"") + one + '"');
}

std::size_t TextReader::numberEnd() const {
  std::size_t at = at_;
  if (at < text_.size() && (text_[at] == '+' || text_[at] == '-')) ++at;
  const std::size_t wholeEnd = digitsEnd(text_, at);
  std::size_t end = wholeEnd;
  if (end < text_.size() && text_[end] == '.') end = digitsEnd(text_, end + 1);
  if (end - at == (end > wholeEnd ? 1u : 0u)) return at_;  // not one digit
  if (end < text_.size() && (text_[end] == 'e' || text_[end] == 'E')) {
    std::size_t digits = end + 1;
    if (digits < text_.size() && (text_[digits] == '+' || text_[digits] == '-')) ++digits;
    if (const std::size_t exponentEnd = digitsEnd(text_, digits); exponentEnd > digits) end = exponentEnd;
  }
  return end;
}

bool TextReader::nextIsNumber() {
  skipBlanks();
  return numberEnd() > at_;
}

bool TextReader::nextIsWord() {
  return isLetter(next());
}

std::string_view TextReader::peekedWord() {
  if (!nextIsWord()) return {};
  std::size_t end = at_;
  while (end < text_.size() && isWordPart(text_[end])) ++end;
  return text_.substr(at_, end - at_);
}

std::string_view TextReader::word() {
  const std::string_view taken = peekedWord();
  at_ += taken.size();
  return taken;
}

Quantity TextReader::quantity(const char* what) {
  if (!nextIsNumber()) expected(what);
  const std::size_t begin = at_;
  std::string_view digits = text_.substr(begin, numberEnd() - begin);
  at_ += digits.size();
  Quantity read{0, {}, begin};
  if (at_ < text_.size() && text_[at_] == '%') {
    read.unit = text_.substr(at_++, 1);
  } else if (at_ < text_.size() && isLetter(text_[at_])) {
    read.unit = word();
  }
  if (digits.starts_with('+')) digits.remove_prefix(1);
  const std::string text = read.isPercent() ? shifted(digits, -2) : std::string(digits);
  const auto result = std::from_chars(text.data(), text.data() + text.size(), read.number);
  if (result.ec != std::errc()) fail(begin, quotedText(digits) + " is beyond what a number holds");
  return read;
}

void TextReader::expected(const std::string& what) {
  const std::size_t at = place();
  if (atEnd()) fail(at, "expected " + what + ", but the text ends");
  std::size_t end = at + 1;
  while (end < text_.size() && !isBlank(text_[end]) && text_[end] != ',' && text_[end] != ')') ++end;
  fail(at, "expected " + what + ", not " + quotedText(text_.substr(at, end - at)));
}

std::string percentText(double fraction) {
  if (fraction == 0) return std::signbit(fraction) ? "-0%" : "0%";
  char buffer[64];
  const auto result = std::to_chars(buffer, buffer + sizeof buffer, std::abs(fraction), std::chars_format::scientific);
  const std::string_view text(buffer, static_cast<std::size_t>(result.ptr - buffer));
  const std::size_t exponentAt = text.find('e');
  const std::string_view mantissa = text.substr(0, exponentAt);
  const int exponent = 2 + std::atoi(std::string(text.substr(exponentAt + 1)).c_str());
  const std::string sign = fraction < 0 ? "-" : "";
  if (exponent < -5 || exponent > 15) return sign + std::string(mantissa) + "e" + std::to_string(exponent) + "%";
  std::string digits(1, mantissa[0]);
  if (mantissa.size() > 2) digits += mantissa.substr(2);
  if (exponent < 0) return sign + "0." + std::string(static_cast<std::size_t>(-exponent - 1), '0') + digits + "%";
  const auto whole = static_cast<std::size_t>(exponent) + 1;
  if (digits.size() <= whole) return sign + digits + std::string(whole - digits.size(), '0') + "%";
  return sign + digits.substr(0, whole) + "." + digits.substr(whole) + "%";
}

}  // namespace host
