// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSFiles.h"
#include "Platform/Foundation/NSReason.h"
#include "Platform/Foundation/PropertyListCoding.h"

namespace propertylist {
namespace {

// Walks a list that is to be written, in the order in which it will be.
class WriteCheck {
 public:
  WriteCheck(PropertyListFormat format, std::string* reason)
      : xml_(format == PropertyListFormat::Xml), reason_(reason) {}

  bool value(const PropertyList& list, int depth) {
    if (depth > PropertyListMaximumDepth) {
      return NSRefuse(reason_, "is nested too deeply");
    }
    if (++values_ > PropertyListMaximumValues) {
      return NSRefuse(reason_, "has too many values");
    }
    switch (list.type()) {
      case PropertyList::Type::String:
        return text(list.stringValue());
      case PropertyList::Type::Data:
        return grow(list.bytes().size());
      case PropertyList::Type::Date:
        return !xml_ || xmlDate(list.dateValue()) ||
               NSRefuse(reason_, "holds a date outside the years 1 to 9999, which XML cannot keep");
      case PropertyList::Type::Uid:
        return !xml_ || list.uidValue() <= kXmlUidMaximum || NSRefuse(reason_, "holds a uid beyond 32 bits");
      case PropertyList::Type::Array:
        return array(list.items(), depth);
      case PropertyList::Type::Dictionary:
        return dictionary(list.entries(), depth);
      default:
        return true;
    }
  }

 private:
  bool grow(std::size_t size) {
    bytes_ += size;
    return bytes_ <= PropertyListMaximumBytes / 2 || NSRefuse(reason_, "is too large");
  }

  bool text(const std::string& text) {
    if (const char* fault = xml_ ? faultOfXmlText(text) : faultOfText(text)) {
      return NSRefuse(reason_, std::string("holds ") + fault);
    }
    return grow(text.size());
  }

  bool array(const PropertyList::Array& items, int depth) {
    for (const PropertyList& each : items) {
      if (!value(each, depth + 1)) {
        return false;
      }
    }
    return true;
  }

  bool dictionary(const PropertyList::Dictionary& entries, int depth) {
    for (std::size_t i = 0; i < entries.size(); ++i) {
      ++values_;  // the key
      if (!text(entries.keyAt(i)) || !value(entries.valueAt(i), depth + 1)) {
        return false;
      }
    }
    return true;
  }

  bool xml_;
  std::string* reason_;
  std::uint64_t values_ = 0;
  std::uint64_t bytes_ = 0;
};

bool isBinary(std::string_view bytes) {
  return bytes.starts_with("bplist");
}

}  // namespace

bool canBeWritten(const PropertyList& list, PropertyListFormat format, std::string* reason) {
  return WriteCheck(format, reason).value(list, 1);
}

}  // namespace propertylist

std::optional<PropertyList> PropertyListFromBytes(std::span<const std::uint8_t> bytes, std::string* reason,
                                                  PropertyListFormat* format) {
  if (bytes.empty()) {
    NSRefuse(reason, "is empty");
    return std::nullopt;
  }
  if (bytes.size() > PropertyListMaximumBytes) {
    NSRefuse(reason, "is too large");
    return std::nullopt;
  }
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  const bool binary = propertylist::isBinary(text);
  auto list = binary ? propertylist::readBinary(bytes, reason) : propertylist::readXml(text, reason);
  if (list && format != nullptr) {
    *format = binary ? PropertyListFormat::Binary : PropertyListFormat::Xml;
  }
  return list;
}

std::optional<PropertyList::Bytes> PropertyListToBytes(const PropertyList& list, PropertyListFormat format,
                                                       std::string* reason) {
  if (!propertylist::canBeWritten(list, format, reason)) {
    return std::nullopt;
  }
  PropertyList::Bytes bytes =
      format == PropertyListFormat::Xml ? propertylist::writeXml(list) : propertylist::writeBinary(list);
  if (bytes.size() > PropertyListMaximumBytes) {
    NSRefuse(reason, "is too large");
    return std::nullopt;
  }
  return bytes;
}

std::optional<PropertyList> PropertyListFromFile(const std::string& path, std::string* reason,
                                                 PropertyListFormat* format) {
  const auto bytes = NSReadFile(path, reason);
  return bytes ? PropertyListFromBytes(*bytes, reason, format) : std::nullopt;
}
