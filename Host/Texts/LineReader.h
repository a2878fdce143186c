// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/TextReader.h"

#include <string_view>

namespace host {

// Goes through a text line by line, and through a line field by field; fields stand apart by blanks. Throws TextFault.
class LineReader {
 public:
  explicit LineReader(std::string_view text) : text_(text) {}

  bool nextLine();                // false when there are no more
  std::string_view line() const;  // without blanks at its ends
  std::size_t place() const { return at_; }

  bool atLineEnd();
  std::string_view field();  // empty at the end of the line
  std::string_view peekedField();
  TextReader fieldReader();         // over the next field, which is passed over; its places are those of the whole text
  double number(const char* what);  // a field that is one finite number
  [[noreturn]] void expected(const std::string& what);
  [[noreturn]] static void fail(std::size_t at, const std::string& fault) { throw TextFault(at, fault); }

 private:
  std::string_view text_;
  std::size_t next_ = 0;  // the start of the next line
  std::size_t at_ = 0;
  std::size_t end_ = 0;  // of the line
};

}  // namespace host
