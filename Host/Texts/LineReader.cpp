// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/LineReader.h"

#include <algorithm>

namespace host {
namespace {

bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\r' || c == '\f';
}

}  // namespace

bool LineReader::nextLine() {
  if (next_ >= text_.size()) return false;
  at_ = next_;
  end_ = std::min(text_.find('\n', at_), text_.size());
  next_ = end_ + 1;
  while (end_ > at_ && isBlank(text_[end_ - 1])) --end_;
  atLineEnd();
  return true;
}

std::string_view LineReader::line() const {
  return text_.substr(at_, end_ - at_);
}

bool LineReader::atLineEnd() {
  while (at_ < end_ && isBlank(text_[at_])) ++at_;
  return at_ == end_;
}

std::string_view LineReader::peekedField() {
  atLineEnd();
  std::size_t end = at_;
  while (end < end_ && !isBlank(text_[end])) ++end;
  return text_.substr(at_, end - at_);
}

std::string_view LineReader::field() {
  const std::string_view taken = peekedField();
  at_ += taken.size();
  return taken;
}

TextReader LineReader::fieldReader() {
  atLineEnd();
  const std::size_t begin = at_;
  field();
  TextReader reader(text_.substr(0, at_));
  reader.skipTo(begin);
  return reader;
}

double LineReader::number(const char* what) {
  LineReader ahead = *this;
  TextReader reader = ahead.fieldReader();
  if (!reader.nextIsNumber()) expected(what);
  const Quantity quantity = reader.quantity(what);
  if (!quantity.unit.empty() || !reader.atEnd()) expected(what);
  *this = ahead;
  return quantity.number;
}

void LineReader::expected(const std::string& what) {
  const std::string_view text = peekedField();
  fail(at_, "expected " + what +
                (!text.empty()           ? ", not " + quotedText(text)
                 : next_ >= text_.size() ? ", but the text ends"
                                         : ", but the line ends"));
}

}  // namespace host
