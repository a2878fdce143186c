// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/PropertyListGuards.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <vector>

namespace propertylist {
namespace {

constexpr std::string_view whiteSpace = " \t\n";

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(whiteSpace);
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(whiteSpace) - first + 1);
}

// XML counts a return, alone or before a newline, as a newline.
std::string withPlainNewlines(std::string_view text) {
  std::string plain;
  plain.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r') {
      plain += text[i];
    } else if (i + 1 == text.size() || text[i + 1] != '\n') {
      plain += '\n';
    }
  }
  return plain;
}

void appendEscaped(std::string& out, std::string_view text) {
  for (const char each : text) {
    switch (each) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      default:
        out += each;
    }
  }
}

// "amp", "#65", "#x41": what stands between '&' and ';'.
bool isKnownReference(std::string_view name) {
  if (!name.starts_with('#')) {
    return name == "amp" || name == "lt" || name == "gt" || name == "quot" || name == "apos";
  }
  name.remove_prefix(1);
  const bool hexadecimal = name.starts_with('x');
  if (hexadecimal) {
    name.remove_prefix(1);
  }
  std::uint32_t code = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), code, hexadecimal ? 16 : 10);
  if (error != std::errc() || end != name.data() + name.size()) {
    return false;
  }
  return code <= 0x10FFFF && !(code >= 0xD800 && code <= 0xDFFF) && isXmlCharacter(code);
}

std::optional<std::string> canonicalInteger(std::string_view text) {
  const bool negative = text.starts_with('-');
  if (negative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  const bool hexadecimal = text.starts_with("0x") || text.starts_with("0X");
  if (hexadecimal) {
    text.remove_prefix(2);
  }
  std::uint64_t magnitude = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), magnitude, hexadecimal ? 16 : 10);
  constexpr std::uint64_t mostNegative = std::uint64_t{1} << 63;
  if (text.empty() || error != std::errc() || end != text.data() + text.size() ||
      (negative && magnitude > mostNegative)) {
    return std::nullopt;
  }
  return (negative && magnitude != 0 ? "-" : "") + std::to_string(magnitude);
}

std::optional<std::string> canonicalReal(std::string_view text) {
  if (text.starts_with('+') && !text.starts_with("+-")) {
    text.remove_prefix(1);
  }
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || error != std::errc() || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return xmlReal(value);
}

std::optional<std::string> canonicalData(std::string_view text) {
  std::string digits;
  for (const char each : text) {
    if (whiteSpace.find(each) == std::string_view::npos) {
      digits += each;
    }
  }
  constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  const std::size_t end = std::min(digits.find_first_not_of(alphabet), digits.size());
  const std::string_view padding = std::string_view(digits).substr(end);
  if (digits.size() % 4 != 0 || !(padding.empty() || padding == "=" || padding == "==")) {
    return std::nullopt;
  }
  return digits;
}

std::optional<std::string> canonicalDate(std::string_view text) {
  return isXmlDate(text) ? std::optional(std::string(text)) : std::nullopt;
}

struct Tag {
  std::string_view name;
  bool closes = false;  // </name>
  bool empty = false;   // <name/>
};

class XmlWalk {
 public:
  XmlWalk(std::string_view text, std::string* reason) : text_(text), reason_(reason) {}

  std::optional<std::string> run() {
    out_ = "<plist version=\"1.0\">";
    if (!document()) {
      return std::nullopt;
    }
    out_ += "</plist>";
    return std::move(out_);
  }

 private:
  struct Container {
    bool dictionary;
    bool keyOpen;  // a key was read, its value was not
  };

  bool fail(const std::string& what) {
    const auto line = std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(position_), '\n') + 1;
    return refuse(reason_, "line " + std::to_string(line) + ": " + what);
  }

  std::string_view rest() const { return text_.substr(position_); }

  // Moves behind the next `mark`, which has to come.
  bool skipPast(std::string_view mark) {
    const std::size_t found = text_.find(mark, position_);
    if (found == std::string_view::npos) {
      return fail("the file ends too early");
    }
    position_ = found + mark.size();
    return true;
  }

  bool skipDocumentType() {
    char quote = 0;
    for (; position_ < text_.size(); ++position_) {
      const char each = text_[position_];
      if (quote != 0) {
        quote = each == quote ? '\0' : quote;
      } else if (each == '"' || each == '\'') {
        quote = each;
      } else if (each == '[') {
        return fail("a document type with declarations of its own");
      } else if (each == '>') {
        ++position_;
        return true;
      }
    }
    return fail("the file ends too early");
  }

  // White space, comments and processing instructions; the document type where one may stand.
  bool skipMiscellany(bool documentTypeAllowed = false) {
    for (;;) {
      position_ = std::min(text_.find_first_not_of(whiteSpace, position_), text_.size());
      if (rest().starts_with("<!--")) {
        position_ += 4;
        if (!skipPast("-->")) {
          return false;
        }
      } else if (rest().starts_with("<?")) {
        if (!skipPast("?>")) {
          return false;
        }
      } else if (documentTypeAllowed && rest().starts_with("<!DOCTYPE")) {
        documentTypeAllowed = false;
        if (!skipDocumentType()) {
          return false;
        }
      } else {
        return true;
      }
    }
  }

  bool readTag(Tag& tag) {
    if (position_ >= text_.size()) {
      return fail("the file ends too early");
    }
    if (text_[position_] != '<') {
      return fail("text where a tag should be");
    }
    const std::size_t end = text_.find('>', position_);
    if (end == std::string_view::npos) {
      return fail("the file ends too early");
    }
    std::string_view inside = text_.substr(position_ + 1, end - position_ - 1);
    tag = {};
    if (inside.starts_with('/')) {
      tag.closes = true;
      inside.remove_prefix(1);
    } else if (inside.ends_with('/')) {
      tag.empty = true;
      inside.remove_suffix(1);
    }
    tag.name = inside.substr(0, inside.find_first_of(whiteSpace));
    if (tag.name.empty() || inside.find('<') != std::string_view::npos) {
      return fail("a malformed tag");
    }
    position_ = end + 1;
    return true;
  }

  // The text up to the closing tag, still with its character references; CDATA becomes such text too.
  bool readText(std::string_view name, std::string& text) {
    for (;;) {
      const std::size_t stop = std::min(text_.find_first_of("<&", position_), text_.size());
      text += text_.substr(position_, stop - position_);
      position_ = stop;
      if (rest().starts_with("&")) {
        const std::size_t end = text_.find(';', position_);
        const std::string_view reference = text_.substr(position_ + 1, std::min<std::size_t>(end - position_ - 1, 12));
        if (end == std::string_view::npos || !isKnownReference(reference)) {
          return fail("an unknown entity");
        }
        text += text_.substr(position_, end + 1 - position_);
        position_ = end + 1;
      } else if (rest().starts_with("<![CDATA[")) {
        const std::size_t start = position_ += 9;
        if (!skipPast("]]>")) {
          return false;
        }
        appendEscaped(text, text_.substr(start, position_ - 3 - start));
      } else if (rest().starts_with("<!--")) {
        position_ += 4;
        if (!skipPast("-->")) {
          return false;
        }
      } else {
        Tag tag;
        if (!readTag(tag)) {
          return false;
        }
        return (tag.closes && tag.name == name) ||
               fail("<" + std::string(tag.name) + "> within <" + std::string(name) + ">");
      }
    }
  }

  bool document() {
    Tag tag;
    if (!skipMiscellany(true) || !readTag(tag)) {
      return false;
    }
    const bool wrapped = tag.name == "plist" && !tag.closes && !tag.empty;
    if (wrapped && (!skipMiscellany() || !readTag(tag))) {
      return false;
    }
    if (!value(tag)) {
      return false;
    }
    if (wrapped &&
        !(skipMiscellany() && readTag(tag) && ((tag.closes && tag.name == "plist") || fail("more than one value")))) {
      return false;
    }
    return skipMiscellany() && (position_ == text_.size() || fail("something follows the list"));
  }

  // One value and all that it holds, from its first tag on.
  bool value(Tag tag) {
    std::vector<Container> open;
    for (;;) {
      if (!(tag.closes ? closeContainer(tag, open) : openValue(tag, open))) {
        return false;
      }
      if (open.empty()) {
        return true;
      }
      if (!skipMiscellany() || !readTag(tag)) {
        return false;
      }
    }
  }

  bool closeContainer(const Tag& tag, std::vector<Container>& open) {
    if (open.empty() || tag.name != (open.back().dictionary ? "dict" : "array")) {
      return fail("</" + std::string(tag.name) + "> closes nothing");
    }
    if (open.back().keyOpen) {
      return fail("a key without a value");
    }
    open.pop_back();
    out_ += "</";
    out_ += tag.name;
    out_ += '>';
    return true;
  }

  bool openValue(const Tag& tag, std::vector<Container>& open) {
    const bool isKey = tag.name == "key";
    if (!open.empty() && open.back().dictionary) {
      if (isKey == open.back().keyOpen) {
        return fail(isKey ? "a key without a value" : "a value without a key");
      }
      open.back().keyOpen = isKey;
    } else if (isKey) {
      return fail("a key outside a dictionary");
    }
    if (open.size() >= static_cast<std::size_t>(PropertyListMaximumDepth)) {
      return fail("nested too deeply");
    }
    if (++values_ > PropertyListMaximumValues) {
      return fail("too many values");
    }
    if (tag.name != "dict" && tag.name != "array") {
      return leaf(tag);
    }
    out_ += '<';
    out_ += tag.name;
    out_ += '>';
    open.push_back({tag.name == "dict", false});
    return !tag.empty || closeContainer(tag, open);
  }

  bool leaf(const Tag& tag) {
    const std::string name(tag.name);
    static constexpr std::string_view known[] = {"key", "string", "integer", "real", "date", "data", "true", "false"};
    if (std::find(std::begin(known), std::end(known), tag.name) == std::end(known)) {
      return fail("<" + name + "> is unknown");
    }
    std::string text;
    if (!tag.empty && !readText(tag.name, text)) {
      return false;
    }
    if (name == "true" || name == "false") {
      out_ += "<" + name + "/>";
      return trimmed(text).empty() || fail("text within <" + name + ">");
    }
    std::optional<std::string> content = name == "integer" ? canonicalInteger(trimmed(text))
                                         : name == "real"  ? canonicalReal(trimmed(text))
                                         : name == "date"  ? canonicalDate(trimmed(text))
                                         : name == "data"  ? canonicalData(text)
                                                           : std::optional(std::move(text));
    if (!content) {
      return fail("a malformed <" + name + ">");
    }
    out_ += "<" + name + ">" + *content + "</" + name + ">";
    return true;
  }

  std::string_view text_;
  std::string* reason_;
  std::size_t position_ = 0;
  std::uint64_t values_ = 0;
  std::string out_;
};

// The encoding that the XML declaration names, in lower case; empty when it names none.
std::string declaredEncoding(std::string_view text) {
  const std::string_view declaration = text.substr(0, text.find("?>"));
  const std::size_t name = declaration.find("encoding");
  if (!text.starts_with("<?xml") || name == std::string_view::npos) {
    return {};
  }
  const std::size_t open = declaration.find_first_of("\"'", name);
  if (open == std::string_view::npos) {
    return {};
  }
  std::string encoding(declaration.substr(open + 1, declaration.find(declaration[open], open + 1) - open - 1));
  std::transform(encoding.begin(), encoding.end(), encoding.begin(),
                 [](char each) { return each >= 'A' && each <= 'Z' ? static_cast<char>(each - 'A' + 'a') : each; });
  return encoding;
}

bool isAcceptableText(std::string_view text, std::string* reason) {
  bool ascii = true;
  for (std::string_view left = text; !left.empty();) {
    const auto character = takeCodePoint(left);
    if (!character) {
      return refuse(reason, "is not UTF-8");
    }
    if (!isXmlCharacter(*character)) {
      return refuse(reason, "is no property list: it holds control characters");
    }
    ascii = ascii && *character < 0x80;
  }
  const std::string encoding = declaredEncoding(text);
  if (!ascii && !encoding.empty() && encoding != "utf-8" && encoding != "utf8") {
    return refuse(reason, "is in the encoding \"" + encoding + "\"; only UTF-8 is read");
  }
  return true;
}

}  // namespace

std::optional<std::string> prepareXml(std::span<const std::uint8_t> bytes, std::string* reason) {
  std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  if (text.starts_with("\xEF\xBB\xBF")) {
    text.remove_prefix(3);
  }
  if (!isAcceptableText(text, reason)) {
    return std::nullopt;
  }
  const std::string plain = withPlainNewlines(text);
  return XmlWalk(plain, reason).run();
}

}  // namespace propertylist
