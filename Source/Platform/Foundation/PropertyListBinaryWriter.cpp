// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/HashIndex.h"
#include "Platform/Foundation/PropertyListBinary.h"
#include "Platform/Foundation/PropertyListCoding.h"

#include <algorithm>
#include <array>
#include <bit>
#include <span>

namespace propertylist {
namespace {

// Objects stand in the order in which the list is walked, a key before its value. Equal leaves are one object; keys and
// strings are kept apart, and so are containers and empty data.
class BinaryWriter {
 public:
  PropertyList::Bytes write(const PropertyList& list) {
    collect(list);
    referenceSize_ = bytesFor(objects_.size());
    out_.assign(kBinaryHeader.begin(), kBinaryHeader.end());
    std::vector<std::uint64_t> offsets;
    offsets.reserve(objects_.size());
    for (const Object& each : objects_) {
      offsets.push_back(out_.size());
      put(each);
    }
    finish(offsets);
    return std::move(out_);
  }

 private:
  struct Object {
    const PropertyList* value;  // null for a key
    const std::string* key;
    std::size_t references;  // of a container: where they begin in references_
  };

  std::uint32_t add(Object object) {
    objects_.push_back(object);
    return static_cast<std::uint32_t>(objects_.size() - 1);
  }

  template <typename IsSame>
  std::uint32_t unique(std::uint64_t hash, Object object, IsSame isSame) {
    const std::size_t known = index_.find(hash, [&](std::size_t place) { return isSame(objects_[place]); });
    if (known != HashIndex::kNone) {
      return static_cast<std::uint32_t>(known);
    }
    index_.add(hash, objects_.size());
    return add(object);
  }

  std::uint32_t collectKey(const std::string& key) {
    return unique(hashOfBytes(key), {nullptr, &key, 0},
                  [&](const Object& other) { return other.key != nullptr && *other.key == key; });
  }

  std::uint32_t collect(const PropertyList& list) {
    if (list.isArray()) {
      return collectArray(list);
    }
    return list.isDictionary() ? collectDictionary(list) : collectLeaf(list, hashOfLeaf(list));
  }

  std::uint32_t collectLeaf(const PropertyList& leaf, std::uint64_t hash) {
    if (leaf.isData() && leaf.bytes().empty()) {
      return add({&leaf, nullptr, 0});
    }
    return unique(hash, {&leaf, nullptr, 0},
                  [&](const Object& other) { return other.value != nullptr && *other.value == leaf; });
  }

  static bool isLeaf(const PropertyList& list) { return !list.isArray() && !list.isDictionary(); }

  void hashAhead(std::span<const PropertyList> items, std::span<std::uint64_t> hashes) const {
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (isLeaf(items[i])) {
        hashes[i] = hashOfLeaf(items[i]);
        index_.prefetch(hashes[i]);
      }
    }
  }

  std::uint32_t collectArray(const PropertyList& list) {
    const std::size_t first = references_.size();
    const std::uint32_t place = add({&list, nullptr, first});
    const PropertyList::Array& items = list.items();
    references_.resize(first + items.size());
    std::array<std::uint64_t, HashIndex::kAhead> hashes{};
    for (std::size_t i = 0; i < items.size(); ++i) {
      if (i % hashes.size() == 0) {
        hashAhead(std::span(items).subspan(i, std::min(hashes.size(), items.size() - i)), hashes);
      }
      const std::uint32_t item =
          isLeaf(items[i]) ? collectLeaf(items[i], hashes[i % hashes.size()]) : collect(items[i]);
      references_[first + i] = item;
    }
    return place;
  }

  std::uint32_t collectDictionary(const PropertyList& list) {
    const PropertyList::Dictionary& entries = list.entries();
    const std::size_t first = references_.size();
    const std::uint32_t place = add({&list, nullptr, first});
    references_.resize(first + 2 * entries.size());
    for (std::size_t i = 0; i < entries.size(); ++i) {
      const std::uint32_t key = collectKey(entries.keyAt(i));
      references_[first + i] = key;
      const std::uint32_t value = collect(entries.valueAt(i));
      references_[first + entries.size() + i] = value;
    }
    return place;
  }

  static unsigned bytesFor(std::uint64_t value) {
    return std::max(1U, static_cast<unsigned>(std::bit_width(value) + 7) / 8);
  }

  void number(std::uint64_t value, unsigned size) {
    std::array<std::uint8_t, 8> bytes{};
    for (unsigned i = 0; i < size; ++i) {
      bytes[i] = static_cast<std::uint8_t>(value >> (8 * (size - 1 - i)));
    }
    out_.insert(out_.end(), bytes.begin(), bytes.begin() + size);
  }

  void mark(ObjectKind kind, unsigned size) {
    out_.push_back(static_cast<std::uint8_t>(static_cast<unsigned>(kind) << 4 | size));
  }

  // Kind and size of what has as many elements.
  void sized(ObjectKind kind, std::uint64_t size) {
    mark(kind, static_cast<unsigned>(std::min<std::uint64_t>(size, kSizeFollows)));
    if (size >= kSizeFollows) {
      integer(size, false);
    }
  }

  void integer(std::uint64_t bits, bool isNegative) {
    if (!isNegative && bits >> 63 != 0) {  // above what 8 signed bytes hold
      mark(ObjectKind::Integer, 4);
      number(0, 8);
      return number(bits, 8);
    }
    const unsigned power = static_cast<unsigned>(std::bit_width(bytesFor(bits) - 1));  // 1, 2, 4 or 8 bytes
    mark(ObjectKind::Integer, power);
    number(bits, 1U << power);
  }

  void real(double value) {
    const auto narrow = static_cast<float>(value);
    if (static_cast<double>(narrow) == value) {
      mark(ObjectKind::Real, 2);
      return number(std::bit_cast<std::uint32_t>(narrow), 4);
    }
    mark(ObjectKind::Real, 3);
    number(std::bit_cast<std::uint64_t>(value), 8);
  }

  void uid(std::uint64_t value) {
    const unsigned size = std::bit_ceil(bytesFor(value));
    mark(ObjectKind::Uid, size - 1);
    number(value, size);
  }

  void text(const std::string& utf8) {
    const bool ascii = std::all_of(utf8.begin(), utf8.end(), [](char each) { return (each & 0x80) == 0; });
    if (ascii) {
      sized(ObjectKind::Ascii, utf8.size());
      out_.insert(out_.end(), utf8.begin(), utf8.end());
      return;
    }
    const std::u16string wide = utf16(utf8);
    sized(ObjectKind::Utf16, wide.size());
    for (const char16_t unit : wide) {
      number(unit, 2);
    }
  }

  // The text is well formed: it was checked.
  static std::u16string utf16(const std::string& utf8) {
    std::u16string wide;
    for (std::size_t at = 0; at < utf8.size();) {
      const auto first = static_cast<unsigned char>(utf8[at]);
      const std::size_t length = first < 0x80 ? 1 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
      std::uint32_t code = length == 1 ? first : first & (0x7FU >> length);
      for (std::size_t i = 1; i < length; ++i) {
        code = code << 6 | (static_cast<unsigned char>(utf8[at + i]) & 0x3FU);
      }
      if (code >= 0x10000) {
        wide += static_cast<char16_t>(0xD7C0 + (code >> 10));
        wide += static_cast<char16_t>(0xDC00 | (code & 0x3FF));
      } else {
        wide += static_cast<char16_t>(code);
      }
      at += length;
    }
    return wide;
  }

  void put(const Object& object) {
    if (object.key != nullptr) {
      return text(*object.key);
    }
    const PropertyList& list = *object.value;
    switch (list.type()) {
      case PropertyList::Type::Boolean:
        return mark(ObjectKind::Simple, list.boolValue() ? kTrue : kFalse);
      case PropertyList::Type::Integer:
        return integer(list.unsignedValue(), list.integerValue() < 0);
      case PropertyList::Type::Real:
        return real(list.doubleValue());
      case PropertyList::Type::String:
        return text(list.stringValue());
      case PropertyList::Type::Data:
        sized(ObjectKind::Data, list.bytes().size());
        out_.insert(out_.end(), list.bytes().begin(), list.bytes().end());
        return;
      case PropertyList::Type::Date:
        mark(ObjectKind::Date, 3);
        return number(std::bit_cast<std::uint64_t>(list.dateValue()), 8);
      case PropertyList::Type::Uid:
        return uid(list.uidValue());
      case PropertyList::Type::Array:
        sized(ObjectKind::Array, list.items().size());
        return references(object.references, list.items().size());
      case PropertyList::Type::Dictionary:
        sized(ObjectKind::Dictionary, list.entries().size());
        return references(object.references, 2 * list.entries().size());
    }
  }

  void references(std::size_t first, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
      number(references_[first + i], referenceSize_);
    }
  }

  void finish(const std::vector<std::uint64_t>& offsets) {
    const std::uint64_t table = out_.size();
    const unsigned offsetSize = bytesFor(table);
    for (const std::uint64_t each : offsets) {
      number(each, offsetSize);
    }
    number(0, 6);
    number(offsetSize, 1);
    number(referenceSize_, 1);
    number(objects_.size(), 8);
    number(0, 8);  // the root
    number(table, 8);
  }

  std::vector<Object> objects_;
  std::vector<std::uint32_t> references_;
  HashIndex index_;  // of the leaves and keys in objects_
  unsigned referenceSize_ = 0;
  PropertyList::Bytes out_;
};

}  // namespace

PropertyList::Bytes writeBinary(const PropertyList& list) {
  return BinaryWriter().write(list);
}

}  // namespace propertylist
