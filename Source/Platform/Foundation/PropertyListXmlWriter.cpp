// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/PropertyListCoding.h"

#include <algorithm>
#include <charconv>

namespace propertylist {
namespace {

// One element a line, indented by one tab a level. The document type, which is optional and points to a place on the
// network, is left out.
class XmlWriter {
 public:
  PropertyList::Bytes write(const PropertyList& list) {
    put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">\n");
    value(list, 0);
    put("</plist>\n");
    return std::move(out_);
  }

 private:
  void put(std::string_view text) { out_.insert(out_.end(), text.begin(), text.end()); }
  void put(std::size_t count, char each) { out_.insert(out_.end(), count, static_cast<std::uint8_t>(each)); }

  void element(std::string_view name, std::string_view contents) {
    put("<");
    put(name);
    put(">");
    put(contents);
    close(name);
  }

  void close(std::string_view name) {
    put("</");
    put(name);
    put(">\n");
  }

  void textElement(std::string_view name, std::string_view text) {
    put("<");
    put(name);
    put(">");
    escaped(text);
    close(name);
  }

  // A return is a reference, since readers of XML take it for a newline otherwise.
  void escaped(std::string_view text) {
    while (!text.empty()) {
      const std::size_t plain = std::min(text.find_first_of("<>&\r"), text.size());
      put(text.substr(0, plain));
      if (plain == text.size()) {
        return;
      }
      const char special = text[plain];
      put(special == '<' ? "&lt;" : special == '>' ? "&gt;" : special == '&' ? "&amp;" : "&#13;");
      text.remove_prefix(plain + 1);
    }
  }

  void value(const PropertyList& list, std::size_t depth) {
    indent(depth);
    if (list.isArray()) {
      array(list.items(), depth);
    } else if (list.isDictionary()) {
      dictionary(list.entries(), depth);
    } else {
      leaf(list, depth);
    }
  }

  [[gnu::noinline]] void indent(std::size_t depth) { put(depth, '\t'); }

  // Apart from what calls itself, so that its texts do not lie on the stack once a level.
  [[gnu::noinline]] void leaf(const PropertyList& list, std::size_t depth) {
    switch (list.type()) {
      case PropertyList::Type::Boolean:
        return put(list.boolValue() ? "<true/>\n" : "<false/>\n");
      case PropertyList::Type::Integer:
        return integer(list);
      case PropertyList::Type::Real:
        return element("real", xmlReal(list.doubleValue()));
      case PropertyList::Type::String:
        return textElement("string", list.stringValue());
      case PropertyList::Type::Data:
        return data(list.bytes(), depth);
      case PropertyList::Type::Date:
        return element("date", xmlDate(list.dateValue()).value_or(std::string()));
      default:
        return uid(list.uidValue(), depth);
    }
  }

  template <typename Integer>
  void digits(Integer value) {
    char text[24];
    element("integer", {text, std::to_chars(text, text + sizeof text, value).ptr});
  }

  void integer(const PropertyList& list) {
    if (list.integerValue() < 0) {
      digits(list.integerValue());
    } else {
      digits(list.unsignedValue());
    }
  }

  void uid(std::uint64_t value, std::size_t depth) {
    put("<dict>\n");
    indent(depth + 1);
    element("key", kXmlUidKey);
    indent(depth + 1);
    digits(value);
    indent(depth);
    put("</dict>\n");
  }

  void array(const PropertyList::Array& items, std::size_t depth) {
    if (items.empty()) {
      return put("<array/>\n");
    }
    put("<array>\n");
    for (const PropertyList& each : items) {
      value(each, depth + 1);
    }
    indent(depth);
    put("</array>\n");
  }

  void dictionary(const PropertyList::Dictionary& entries, std::size_t depth) {
    if (entries.empty()) {
      return put("<dict/>\n");
    }
    put("<dict>\n");
    for (std::size_t i = 0; i < entries.size(); ++i) {
      indent(depth + 1);
      textElement("key", entries.keyAt(i));
      value(entries.valueAt(i), depth + 1);
    }
    indent(depth);
    put("</dict>\n");
  }

  // Base64 in lines of at most 76 columns, a tab counting eight of them.
  void data(const PropertyList::Bytes& bytes, std::size_t depth) {
    constexpr std::size_t mostTabs = 8;
    const std::size_t tabs = std::min(depth, mostTabs);
    const std::size_t bytesPerLine = (76 - 8 * tabs) / 4 * 3;
    put("<data>\n");
    for (std::size_t at = 0; at < bytes.size(); at += bytesPerLine) {
      indent(tabs);
      base64(std::span(bytes).subspan(at, std::min(bytesPerLine, bytes.size() - at)));
      put("\n");
    }
    indent(depth);
    close("data");
  }

  void base64(std::span<const std::uint8_t> bytes) {
    constexpr const char* alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    for (std::size_t at = 0; at < bytes.size(); at += 3) {
      const std::size_t count = std::min<std::size_t>(bytes.size() - at, 3);
      std::uint32_t bits = 0;
      for (std::size_t i = 0; i < 3; ++i) {
        bits = bits << 8 | (i < count ? bytes[at + i] : 0U);
      }
      const char four[] = {alphabet[bits >> 18], alphabet[bits >> 12 & 63], count > 1 ? alphabet[bits >> 6 & 63] : '=',
                           count > 2 ? alphabet[bits & 63] : '='};
      put({four, sizeof four});
    }
  }

  PropertyList::Bytes out_;
};

}  // namespace

PropertyList::Bytes writeXml(const PropertyList& list) {
  return XmlWriter().write(list);
}

}  // namespace propertylist
