// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Host/JsonChecker.h"

#include <cctype>
#include <cstring>

namespace {

class Checker {
 public:
  explicit Checker(const std::string& text) : text_(text) {}

  bool isOneValue() {
    const bool good = value();
    skipSpace();
    return good && at_ == text_.size();
  }

 private:
  bool value() {
    skipSpace();
    switch (peek()) {
      case '{':
        return sequence('{', '}', [this] { return string() && take(':') && value(); });
      case '[':
        return sequence('[', ']', [this] { return value(); });
      case '"':
        return string();
      case 't':
        return word("true");
      case 'f':
        return word("false");
      case 'n':
        return word("null");
      default:
        return number();
    }
  }

  template <class Item>
  bool sequence(char open, char close, Item item) {
    if (!take(open)) return false;
    if (take(close)) return true;
    do {
      if (!item()) return false;
    } while (take(','));
    return take(close);
  }

  bool string() {
    if (!take('"')) return false;
    while (at_ < text_.size() && text_[at_] != '"') {
      if (static_cast<unsigned char>(text_[at_]) < 0x20) return false;
      if (text_[at_] != '\\') {
        ++at_;
      } else if (!escape()) {
        return false;
      }
    }
    return take('"');
  }

  bool escape() {
    ++at_;
    if (peek() != 'u') return std::strchr("\"\\/bfnrt", peek()) && peek() && ++at_;
    ++at_;
    for (int i = 0; i < 4; ++i, ++at_) {
      if (!std::isxdigit(static_cast<unsigned char>(peek()))) return false;
    }
    return true;
  }

  bool number() {
    if (peek() == '-') ++at_;
    if (!digits()) return false;
    if (peek() == '.' && (++at_, !digits())) return false;
    if (peek() != 'e' && peek() != 'E') return true;
    ++at_;
    if (peek() == '+' || peek() == '-') ++at_;
    return digits();
  }

  bool digits() {
    const std::size_t begin = at_;
    while (peek() >= '0' && peek() <= '9') ++at_;
    return at_ > begin;
  }

  bool word(const std::string& expected) {
    if (text_.compare(at_, expected.size(), expected) != 0) return false;
    at_ += expected.size();
    return true;
  }

  bool take(char expected) {
    skipSpace();
    if (peek() != expected) return false;
    ++at_;
    return true;
  }

  void skipSpace() {
    while (peek() == ' ' || peek() == '\n' || peek() == '\t' || peek() == '\r') ++at_;
  }

  char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }

  const std::string& text_;
  std::size_t at_ = 0;
};

}  // namespace

bool isJson(const std::string& text) {
  return Checker(text).isOneValue();
}
