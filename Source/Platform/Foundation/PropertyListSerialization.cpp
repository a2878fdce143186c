// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/PropertyList.h"

#include "Platform/Foundation/PropertyListGuards.h"

#include <plist/plist.h>

#include <locale.h>
#include <array>
#include <bit>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <memory>

namespace {

using propertylist::refuse;

struct PlistFree {
  void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, PlistFree>;  // a plist_t and all below it

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Allocated = std::unique_ptr<T, Free>;

// The library reads reals by the locale of the thread.
class PlainLocale {
 public:
  PlainLocale() : former_(::uselocale(plain())) {}
  ~PlainLocale() { ::uselocale(former_); }
  PlainLocale(const PlainLocale&) = delete;
  PlainLocale& operator=(const PlainLocale&) = delete;

 private:
  static locale_t plain() {
    static const locale_t made = ::newlocale(LC_ALL_MASK, "C", nullptr);
    return made;
  }
  locale_t former_;
};

bool isUnsignedOnly(std::uint64_t value) {
  return value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
}

// A binary list of one object. Integers above INT64_MAX and dates after 2068 do not pass through the library's
// functions but do pass through its binary form.
Node nodeFromObject(std::span<const std::uint8_t> object) {
  PropertyList::Bytes bytes = {'b', 'p', 'l', 'i', 's', 't', '0', '0'};
  bytes.insert(bytes.end(), object.begin(), object.end());
  const auto table = static_cast<std::uint8_t>(bytes.size());
  bytes.push_back(8);
  std::array<std::uint8_t, 32> trailer{};
  trailer[6] = trailer[7] = trailer[15] = 1;
  trailer[31] = table;
  bytes.insert(bytes.end(), trailer.begin(), trailer.end());
  plist_t node = nullptr;
  plist_from_bin(reinterpret_cast<const char*>(bytes.data()), static_cast<std::uint32_t>(bytes.size()), &node);
  return Node(node);
}

// The bytes of a single object as the binary form has them, from its kind on.
std::array<std::uint8_t, 17> objectFromNode(plist_t node) {
  std::array<std::uint8_t, 17> object{};
  char* bytes = nullptr;
  std::uint32_t size = 0;
  plist_to_bin(node, &bytes, &size);
  const Allocated<char> owned(bytes);
  if (bytes != nullptr && size >= 8 + object.size()) {  // the trailer alone is longer
    std::memcpy(object.data(), bytes + 8, object.size());
  }
  return object;
}

std::array<std::uint8_t, 8> bigEndian(std::uint64_t value) {
  std::array<std::uint8_t, 8> bytes;
  for (std::size_t i = 0; i < 8; ++i) {
    bytes[i] = static_cast<std::uint8_t>(value >> (56 - 8 * i));
  }
  return bytes;
}

Node unsignedNode(std::uint64_t value) {
  std::array<std::uint8_t, 17> object{0x14};
  const auto low = bigEndian(value);
  std::copy(low.begin(), low.end(), object.begin() + 9);
  return nodeFromObject(object);
}

Node dateNode(double seconds) {
  std::array<std::uint8_t, 9> object{0x33};
  const auto bits = bigEndian(std::bit_cast<std::uint64_t>(seconds));
  std::copy(bits.begin(), bits.end(), object.begin() + 1);
  return nodeFromObject(object);
}

double dateOfNode(plist_t node) {
  const auto object = objectFromNode(node);
  std::uint64_t bits = 0;
  for (std::size_t i = 1; i <= 8; ++i) {
    bits = bits << 8 | object[i];
  }
  return std::bit_cast<double>(bits);
}

// ---------------------------------------------------------------- from the library

PropertyList integerOfNode(plist_t node) {
  std::uint64_t value = 0;
  plist_get_uint_val(node, &value);
  if (isUnsignedOnly(value) && objectFromNode(node)[0] == 0x14) {
    return PropertyList::unsignedInteger(value);
  }
  return PropertyList::integer(static_cast<std::int64_t>(value));
}

PropertyList listOfNode(plist_t node, bool xml);

PropertyList arrayOfNode(plist_t node, bool xml) {
  PropertyList::Array items;
  items.reserve(plist_array_get_size(node));
  plist_array_iter iterator = nullptr;
  plist_array_new_iter(node, &iterator);
  const Allocated<void> owned(iterator);
  for (;;) {
    plist_t item = nullptr;
    plist_array_next_item(node, iterator, &item);
    if (item == nullptr) {
      return PropertyList::array(std::move(items));
    }
    items.push_back(listOfNode(item, xml));
  }
}

PropertyList dictionaryOfNode(plist_t node, bool xml) {
  PropertyList::Dictionary entries;
  plist_dict_iter iterator = nullptr;
  plist_dict_new_iter(node, &iterator);
  const Allocated<void> owned(iterator);
  for (;;) {
    char* key = nullptr;
    plist_t value = nullptr;
    plist_dict_next_item(node, iterator, &key, &value);
    const Allocated<char> ownedKey(key);
    if (key == nullptr || value == nullptr) {
      break;
    }
    entries.set(key, listOfNode(value, xml));
  }
  const PropertyList* uid = xml && entries.size() == 1 ? entries.find("CF$UID") : nullptr;
  if (uid != nullptr && uid->type() == PropertyList::Type::Integer && uid->integerValue() >= 0 &&
      uid->integerValue() <= std::numeric_limits<std::uint32_t>::max()) {
    return PropertyList::uid(uid->unsignedValue());
  }
  return PropertyList::dictionary(std::move(entries));
}

PropertyList dataOfNode(plist_t node) {
  std::uint64_t size = 0;
  const char* bytes = plist_get_data_ptr(node, &size);
  return bytes == nullptr ? PropertyList::data({}) : PropertyList::data(PropertyList::Bytes(bytes, bytes + size));
}

PropertyList listOfNode(plist_t node, bool xml) {
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      std::uint8_t value = 0;
      plist_get_bool_val(node, &value);
      return PropertyList::boolean(value != 0);
    }
    case PLIST_UINT:
      return integerOfNode(node);
    case PLIST_REAL: {
      double value = 0;
      plist_get_real_val(node, &value);
      return PropertyList::real(value);
    }
    case PLIST_STRING: {
      const char* text = plist_get_string_ptr(node, nullptr);
      return PropertyList::string(text == nullptr ? "" : text);
    }
    case PLIST_DATA:
      return dataOfNode(node);
    case PLIST_DATE:
      return PropertyList::date(dateOfNode(node));
    case PLIST_UID: {
      std::uint64_t value = 0;
      plist_get_uid_val(node, &value);
      return PropertyList::uid(value);
    }
    case PLIST_ARRAY:
      return arrayOfNode(node, xml);
    default:
      return dictionaryOfNode(node, xml);
  }
}

// ---------------------------------------------------------------- to the library

class Writer {
 public:
  Writer(PropertyListFormat format, std::string* reason) : xml_(format == PropertyListFormat::Xml), reason_(reason) {}

  // Null, with the cause, when the list cannot be written.
  Node node(const PropertyList& list, int depth) {
    if (depth > PropertyListMaximumDepth) {
      return fail("is nested too deeply");
    }
    if (++values_ > PropertyListMaximumValues) {
      return fail("has too many values");
    }
    switch (list.type()) {
      case PropertyList::Type::Boolean:
        return Node(plist_new_bool(list.boolValue() ? 1 : 0));
      case PropertyList::Type::Integer:
        return isUnsignedOnly(list.unsignedValue()) && list.integerValue() >= 0
                   ? unsignedNode(list.unsignedValue())
                   : Node(plist_new_uint(list.unsignedValue()));
      case PropertyList::Type::Real:
        texts_.push_back(propertylist::xmlReal(list.doubleValue()));
        return Node(plist_new_real(list.doubleValue()));
      case PropertyList::Type::String:
        return acceptable(list.stringValue()) ? Node(plist_new_string(list.stringValue().c_str())) : nullptr;
      case PropertyList::Type::Data:
        return grow(list.bytes().size())
                   ? Node(plist_new_data(reinterpret_cast<const char*>(list.bytes().data()), list.bytes().size()))
                   : nullptr;
      case PropertyList::Type::Date:
        return date(list.dateValue());
      case PropertyList::Type::Uid:
        return uid(list.uidValue());
      case PropertyList::Type::Array:
        return array(list, depth);
      case PropertyList::Type::Dictionary:
        return dictionary(list, depth);
    }
    return nullptr;
  }

  // The texts of the reals and dates, in the order of the list.
  const std::vector<std::string>& texts() const { return texts_; }

 private:
  Node fail(const std::string& what) {
    refuse(reason_, what);
    return nullptr;
  }

  bool grow(std::size_t size) {
    bytes_ += size;
    return bytes_ <= PropertyListMaximumBytes / 2 || refuse(reason_, "is too large");
  }

  bool acceptable(std::string_view text) {
    if (const char* fault = propertylist::faultOfText(text)) {
      return refuse(reason_, std::string("holds ") + fault);
    }
    for (std::string_view left = text; xml_ && !left.empty();) {
      if (!propertylist::isXmlCharacter(*propertylist::takeCodePoint(left))) {
        return refuse(reason_, "holds text with control characters, which XML cannot keep");
      }
    }
    return grow(text.size());
  }

  Node date(double seconds) {
    if (xml_) {
      const auto text = propertylist::xmlDate(seconds);
      if (!text) {
        return fail("holds a date outside the years 1 to 9999, which XML cannot keep");
      }
      texts_.push_back(*text);
    }
    return dateNode(xml_ ? 0 : seconds);
  }

  Node uid(std::uint64_t value) {
    return value <= std::numeric_limits<std::uint32_t>::max() ? Node(plist_new_uid(value))
                                                              : fail("holds a uid beyond 32 bits");
  }

  Node array(const PropertyList& list, int depth) {
    Node made(plist_new_array());
    for (const PropertyList& each : list.items()) {
      Node item = node(each, depth + 1);
      if (!item) {
        return nullptr;
      }
      plist_array_append_item(made.get(), item.release());
    }
    return made;
  }

  Node dictionary(const PropertyList& list, int depth) {
    Node made(plist_new_dict());
    const PropertyList::Dictionary& entries = list.entries();
    for (std::size_t i = 0; i < entries.size(); ++i) {
      if (!acceptable(entries.keyAt(i))) {
        return nullptr;
      }
      Node value = node(entries.valueAt(i), depth + 1);
      if (!value) {
        return nullptr;
      }
      ++values_;  // the key
      plist_dict_set_item(made.get(), entries.keyAt(i).c_str(), value.release());
    }
    return made;
  }

  bool xml_;
  std::string* reason_;
  std::uint64_t values_ = 0;
  std::uint64_t bytes_ = 0;
  std::vector<std::string> texts_;
};

// Without the document type, which is optional and points to a place on the network.
std::string withoutDocumentType(std::string_view xml) {
  const std::size_t start = xml.find("<!DOCTYPE");
  const std::size_t end = start == std::string_view::npos ? start : xml.find('<', start + 1);
  if (end == std::string_view::npos) return std::string(xml);
  return std::string(xml.substr(0, start)) + std::string(xml.substr(end));
}

// Puts our texts in the place of the library's reals and dates, and returns as references, which readers of XML would
// otherwise take for newlines. Text has no '<' of its own here, so every tag found is one.
PropertyList::Bytes withOwnTexts(std::string_view xml, const std::vector<std::string>& texts) {
  PropertyList::Bytes out;
  out.reserve(xml.size());
  std::size_t next = 0;
  for (std::size_t at = 0; at < xml.size();) {
    const std::string_view rest = xml.substr(at);
    const std::string_view tag = rest.starts_with("<real>") ? "<real>" : rest.starts_with("<date>") ? "<date>" : "";
    if (!tag.empty() && next < texts.size()) {
      out.insert(out.end(), tag.begin(), tag.end());
      out.insert(out.end(), texts[next].begin(), texts[next].end());
      ++next;
      at = xml.find('<', at + tag.size());
    } else if (xml[at] == '\r') {
      constexpr std::string_view reference = "&#13;";
      out.insert(out.end(), reference.begin(), reference.end());
      ++at;
    } else {
      out.push_back(static_cast<std::uint8_t>(xml[at++]));
    }
  }
  return out;
}

bool isBinary(std::span<const std::uint8_t> bytes) {
  return bytes.size() >= 6 && std::memcmp(bytes.data(), "bplist", 6) == 0;
}

Node parseBinary(std::span<const std::uint8_t> bytes, std::string* reason) {
  if (bytes.size() < 8 || bytes[6] != '0' || bytes[7] != '0') {
    refuse(reason, "is a binary list of a version that is not read");
    return nullptr;
  }
  const auto prepared = propertylist::prepareBinary(bytes, reason);
  if (!prepared) {
    return nullptr;
  }
  plist_t node = nullptr;
  plist_from_bin(reinterpret_cast<const char*>(prepared->data()), static_cast<std::uint32_t>(prepared->size()), &node);
  return Node(node);
}

Node parseXml(std::span<const std::uint8_t> bytes, std::string* reason) {
  const auto prepared = propertylist::prepareXml(bytes, reason);
  if (!prepared) {
    return nullptr;
  }
  const PlainLocale plain;
  plist_t node = nullptr;
  plist_from_xml(prepared->data(), static_cast<std::uint32_t>(prepared->size()), &node);
  return Node(node);
}

}  // namespace

std::optional<PropertyList> PropertyListFromBytes(std::span<const std::uint8_t> bytes, std::string* reason,
                                                  PropertyListFormat* format) {
  if (bytes.empty()) {
    refuse(reason, "is empty");
    return std::nullopt;
  }
  if (bytes.size() > PropertyListMaximumBytes) {
    refuse(reason, "is too large");
    return std::nullopt;
  }
  const bool binary = isBinary(bytes);
  std::string cause = "could not be read by the property-list library";
  const Node node = binary ? parseBinary(bytes, &cause) : parseXml(bytes, &cause);
  if (!node) {
    refuse(reason, cause);
    return std::nullopt;
  }
  if (format != nullptr) {
    *format = binary ? PropertyListFormat::Binary : PropertyListFormat::Xml;
  }
  return listOfNode(node.get(), !binary);
}

std::optional<PropertyList::Bytes> PropertyListToBytes(const PropertyList& list, PropertyListFormat format,
                                                       std::string* reason) {
  Writer writer(format, reason);
  const Node node = writer.node(list, 1);
  if (!node) {
    return std::nullopt;
  }
  char* bytes = nullptr;
  std::uint32_t size = 0;
  const PlainLocale plain;
  if (format == PropertyListFormat::Xml) {
    plist_to_xml(node.get(), &bytes, &size);
  } else {
    plist_to_bin(node.get(), &bytes, &size);
  }
  const Allocated<char> owned(bytes);
  if (bytes == nullptr || size == 0) {
    refuse(reason, "could not be written by the property-list library");
    return std::nullopt;
  }
  PropertyList::Bytes written = format == PropertyListFormat::Xml
                                    ? withOwnTexts(withoutDocumentType({bytes, size}), writer.texts())
                                    : PropertyList::Bytes(bytes, bytes + size);
  if (written.size() > PropertyListMaximumBytes) {
    refuse(reason, "is too large");
    return std::nullopt;
  }
  return written;
}
