// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

namespace host {

// What is wrong with a text, and where.
class TextFault : public std::exception {
 public:
  TextFault(std::size_t at, std::string fault) : offset(at), fault_(std::move(fault)) {}
  const char* what() const noexcept override { return fault_.c_str(); }

  const std::size_t offset;  // in bytes from the start of the text

 private:
  std::string fault_;
};

// "line 2, column 7: ..." of a fault in a text; both count from 1, columns in characters. Of a text that is one line,
// as on a command line, "column 7: ..." when `isInline`.
std::string faultWithPlace(std::string_view text, const TextFault& fault, bool isInline);

// The text as messages quote it: in double quotes, at most 40 characters of it, on one line.
std::string quotedText(std::string_view text);

// Lower case, of ASCII.
std::string lowered(std::string_view text);

// A number with what stands behind it.
struct Quantity {
  double number = 0;      // of a percentage the fraction: 12.5% is 0.125, rounded once
  std::string_view unit;  // "", "%", or letters
  std::size_t at = 0;
  bool isPercent() const { return unit == "%"; }
};

// Goes through a text from left to right. Throws TextFault where something else stands than what is expected. White
// space and /* comments */ count for nothing between the parts. The text must outlive the reader and what it returns.
class TextReader {
 public:
  explicit TextReader(std::string_view text) : text_(text) {}

  // All of these pass over white space first.
  bool atEnd();
  char next();           // the next character, which stays; 0 at the end
  std::size_t place();   // where the next part begins
  bool takes(char one);  // whether the next character is this one, which is then passed over
  void expect(char one);
  bool nextIsNumber();
  bool nextIsWord();
  std::string_view word();  // letters, and behind the first also digits and - and _; empty when there is none
  std::string_view peekedWord();
  // A finite number in the usual decimal notation, whatever the locale; `what` says what is expected.
  Quantity quantity(const char* what);

  // "expected WHAT, not "abc"", at the next part.
  [[noreturn]] void expected(const std::string& what);
  [[noreturn]] static void fail(std::size_t at, const std::string& fault) { throw TextFault(at, fault); }

  // For those who look at the text themselves.
  std::string_view text() const { return text_; }
  void skipTo(std::size_t at) { at_ = at; }

 private:
  void skipBlanks();
  std::size_t numberEnd() const;

  std::string_view text_;
  std::size_t at_ = 0;
};

// A fraction as a percentage that reads back as the same number, in as few digits as that takes: "12.5%".
std::string percentText(double fraction);

}  // namespace host
