// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/NumberExpression.h"

#include <charconv>
#include <cmath>
#include <string>

namespace host {
namespace {

using enum ExpressionFault;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

struct Fault {
  ExpressionFault fault;
  std::size_t at;
  std::size_t length;
};

struct Sign {
  std::string_view text;
  char meaning;
};
constexpr Sign kPrintedSigns[] = {{"\u00d7", '*'}, {"\u00b7", '*'}, {"\u00f7", '/'}, {"\u2212", '-'}};
constexpr std::string_view kBlanks[] = {" ", "\t", "\n", "\r", "\u00a0", "\u2009", "\u202f"};

// The length of the character that begins there.
std::size_t characterLength(std::string_view text) {
  std::size_t length = text.empty() ? 0 : 1;
  while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0) == 0x80) ++length;
  return length;
}

// Goes through the text from left to right; each function reads what its name says and leaves the rest.
class Reader {
 public:
  Reader(std::string_view text, char decimal) : text_(text), decimal_(decimal) {}

  double whole() {
    if (sign() == 0) fail(Empty, 0);
    const double value = sum();
    if (sign() != 0) fail(Unexpected, signLength_);
    return value;
  }

 private:
  [[noreturn]] void fail(ExpressionFault fault, std::size_t length) const { throw Fault{fault, at_, length}; }

  // What stands next, printed signs as the usual ones; 0 at the end.
  char sign() {
    for (bool found = true; found;) {
      found = false;
      for (const std::string_view blank : kBlanks) {
        if (!rest().starts_with(blank)) continue;
        at_ += blank.size();
        found = true;
      }
    }
    signLength_ = characterLength(rest());
    for (const Sign& printed : kPrintedSigns) {
      if (rest().starts_with(printed.text)) return printed.meaning;
    }
    return signLength_ == 0 ? '\0' : rest().front();
  }
  void pass() { at_ += signLength_; }
  std::string_view rest() const { return text_.substr(at_); }

  double sum() {
    double value = product();
    for (char next = sign(); next == '+' || next == '-'; next = sign()) {
      pass();
      const double other = product();
      value = next == '+' ? value + other : value - other;
    }
    return value;
  }

  double product() {
    double value = signedFactor();
    for (char next = sign(); next == '*' || next == '/'; next = sign()) {
      pass();
      sign();
      const std::size_t divisorAt = at_;
      const double other = signedFactor();
      if (next == '/' && other == 0) throw Fault{DivisionByZero, divisorAt, at_ - divisorAt};
      value = next == '*' ? value * other : value / other;
    }
    return value;
  }

  double signedFactor() {
    bool negative = false;
    for (char next = sign(); next == '+' || next == '-'; next = sign()) {
      negative = negative != (next == '-');
      pass();
    }
    double value = factor();
    for (; sign() == '%'; pass()) value /= 100;
    return negative ? -value : value;
  }

  double factor() {
    if (sign() != '(') return number();
    if (++depth_ > kDeepestExpression) fail(TooDeep, signLength_);
    pass();
    const double value = sum();
    if (sign() != ')') fail(signLength_ == 0 ? NotClosed : Unexpected, signLength_);
    pass();
    --depth_;
    return value;
  }

  double number() {
    sign();
    const std::size_t begin = at_;
    std::size_t end = begin;
    std::size_t digits = 0;
    std::size_t separators = 0;
    std::string plain;
    for (; end < text_.size() && (isDigit(text_[end]) || text_[end] == '.' || text_[end] == ','); ++end) {
      isDigit(text_[end]) ? ++digits : ++separators;
      plain += text_[end] == ',' ? '.' : text_[end];
    }
    if (digits == 0) fail(NoNumber, signLength_);
    if (separators > 1 || couldBeThousands(text_.substr(begin, end - begin))) fail(Ambiguous, end - begin);
    if (const std::size_t exponent = exponentEnd(end); exponent > end) {
      plain += text_.substr(end, exponent - end);
      end = exponent;
    }
    if (const std::size_t plus = plain.find('+'); plus != std::string::npos) plain.erase(plus, 1);
    double value = 0;
    const auto read = std::from_chars(plain.data(), plain.data() + plain.size(), value);
    if (read.ec != std::errc()) {
      // Too small is nothing; too large is a fault.
      if (plain.find("e-") == std::string::npos && plain.find("E-") == std::string::npos) fail(NotFinite, end - begin);
      value = 0;
    }
    at_ = end;
    return value;
  }

  // 1 to 3 digits that do not begin with 0, the separator that is not the usual one, and 3 digits.
  bool couldBeThousands(std::string_view number) const {
    const std::size_t separator = number.find(decimal_ == '.' ? ',' : '.');
    return separator != std::string_view::npos && separator >= 1 && separator <= 3 && number.front() != '0' &&
           number.size() == separator + 4;
  }

  std::size_t exponentEnd(std::size_t at) const {
    if (at >= text_.size() || (text_[at] != 'e' && text_[at] != 'E')) return at;
    std::size_t end = at + 1;
    if (end < text_.size() && (text_[end] == '+' || text_[end] == '-')) ++end;
    const std::size_t digits = end;
    while (end < text_.size() && isDigit(text_[end])) ++end;
    return end > digits ? end : at;
  }

  const std::string_view text_;
  const char decimal_;
  std::size_t at_ = 0;
  std::size_t signLength_ = 0;
  int depth_ = 0;
};

}  // namespace

ExpressionValue valueOfExpression(std::string_view text, char decimal) {
  if (text.size() > kLongestExpression) return {0, TooLong, kLongestExpression, text.size() - kLongestExpression};
  try {
    const double value = Reader(text, decimal).whole();
    if (!std::isfinite(value)) return {0, NotFinite, 0, text.size()};
    return {value};
  } catch (const Fault& fault) {
    return {0, fault.fault, fault.at, fault.length};
  }
}

}  // namespace host
