// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSReason.h"
#include "Platform/Foundation/PropertyListBinary.h"
#include "Platform/Foundation/PropertyListCoding.h"

#include <algorithm>
#include <bit>
#include <vector>

namespace propertylist {
namespace {

using Bytes = std::span<const std::uint8_t>;

// A big-endian number; of more than 8 bytes the last 8.
std::uint64_t numberOf(Bytes bytes) {
  std::uint64_t value = 0;
  for (const std::uint8_t each : bytes) {
    value = value << 8 | each;
  }
  return value;
}

// An object taken apart: where its contents lie, and how many elements they have.
struct Object {
  ObjectKind kind;
  std::size_t at;
  std::size_t count;
};

// The parts of a file, none of which is trusted: each is checked where it is taken.
class BinaryFile {
 public:
  BinaryFile(Bytes bytes, std::string* reason) : bytes_(bytes), reason_(reason) {}

  bool fail(const char* what) const { return NSRefuse(reason_, what); }

  bool readTrailer() {
    if (bytes_.size() < kBinaryHeader.size() + 1 + 1 + kTrailerSize) {
      return fail("the file ends too early");
    }
    const std::size_t trailer = bytes_.size() - kTrailerSize;
    offsetSize_ = bytes_[trailer + 6];
    referenceSize_ = bytes_[trailer + 7];
    const std::uint64_t count = numberAt(trailer + 8, 8);
    const std::uint64_t root = numberAt(trailer + 16, 8);
    const std::uint64_t table = numberAt(trailer + 24, 8);
    if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8) {
      return fail("the trailer is damaged, or the file ends too early");
    }
    if (table <= kBinaryHeader.size() || table > trailer || count == 0 || count > (trailer - table) / offsetSize_) {
      return fail("the table of objects does not fit the file");
    }
    if (count > PropertyListMaximumValues) {
      return fail("too many objects");
    }
    if (root >= count) {
      return fail("the root object is out of range");
    }
    count_ = static_cast<std::size_t>(count);
    root_ = static_cast<std::size_t>(root);
    table_ = static_cast<std::size_t>(table);
    return true;
  }

  std::size_t count() const { return count_; }
  std::size_t root() const { return root_; }
  Bytes contents(std::size_t at, std::size_t size) const { return bytes_.subspan(at, size); }
  std::uint64_t numberAt(std::size_t at, std::size_t size) const { return numberOf(contents(at, size)); }

  // The n-th reference of a container; count() or more when it leads nowhere.
  std::uint64_t reference(const Object& container, std::size_t n) const {
    return numberAt(container.at + n * referenceSize_, referenceSize_);
  }

  // An object by its number, once its contents are sure to lie before the table.
  bool find(std::size_t number, Object& object) const {
    const std::uint64_t offset = numberAt(table_ + number * offsetSize_, offsetSize_);
    if (offset < kBinaryHeader.size() || offset >= table_) {
      return fail("an object lies outside its section");
    }
    const unsigned mark = bytes_[static_cast<std::size_t>(offset)];
    object = {static_cast<ObjectKind>(mark >> 4), static_cast<std::size_t>(offset) + 1, mark & 0xFU};
    switch (object.kind) {
      case ObjectKind::Simple:
        return object.count == kFalse || object.count == kTrue || fail("an object of an unknown kind");
      case ObjectKind::Integer:
        return object.count <= 4 ? power(object) : fail("an integer of an unknown size");
      case ObjectKind::Real:
        return object.count == 2 || object.count == 3 ? power(object) : fail("a real of an unknown size");
      case ObjectKind::Date:
        return object.count == 3 ? power(object) : fail("a date of an unknown size");
      case ObjectKind::Uid:
        return object.count < 8 ? has(object.at, ++object.count) : fail("a uid of an unknown size");
      case ObjectKind::Data:
      case ObjectKind::Ascii:
        return size(object) && has(object.at, object.count);
      case ObjectKind::Utf16:
        return size(object) && has(object.at, std::uint64_t{2} * object.count);
      case ObjectKind::Array:
        return size(object) && has(object.at, std::uint64_t{object.count} * referenceSize_);
      case ObjectKind::Dictionary:
        return size(object) && has(object.at, std::uint64_t{2} * object.count * referenceSize_);
    }
    return fail("an object of an unknown kind");
  }

 private:
  bool has(std::size_t at, std::uint64_t size) const {
    return (at <= table_ && size <= table_ - at) || fail("an object ends behind its section");
  }

  bool power(Object& object) const {
    object.count = std::size_t{1} << object.count;
    return has(object.at, object.count);
  }

  bool size(Object& object) const {
    if (object.count != kSizeFollows) {
      return true;
    }
    if (!has(object.at, 1) || bytes_[object.at] >> 4 != static_cast<unsigned>(ObjectKind::Integer) ||
        (bytes_[object.at] & 0xF) > 3) {
      return fail("a size that is no integer");
    }
    const std::size_t width = std::size_t{1} << (bytes_[object.at] & 0xF);
    if (!has(object.at + 1, width)) {
      return false;
    }
    const std::uint64_t count = numberAt(object.at + 1, width);
    object.count = static_cast<std::size_t>(count);
    object.at += 1 + width;
    return count <= bytes_.size() || fail("a size beyond the file");
  }

  Bytes bytes_;
  std::string* reason_;
  std::size_t offsetSize_ = 0;
  std::size_t referenceSize_ = 0;
  std::size_t count_ = 0;
  std::size_t root_ = 0;
  std::size_t table_ = 0;
};

// Goes through every object that the root reaches, once, and finds what the list unfolds to before any of it is made.
class BinaryCheck {
 public:
  explicit BinaryCheck(const BinaryFile& file) : file_(file), extents_(file.count()) {}

  bool run() { return visit(file_.root(), 1) != nullptr; }

 private:
  // What an object unfolds to: everything in it as often as it is referred to.
  struct Extent {
    enum class State : std::uint8_t { Unknown, Open, Known } state = State::Unknown;
    std::uint16_t height = 0;  // levels below it
    std::uint32_t values = 0;
    std::uint32_t bytes = 0;
  };
  static_assert(PropertyListMaximumBytes < (std::uint64_t{1} << 30) && PropertyListMaximumValues < (1U << 30));

  const Extent* fail(const char* what) const {
    file_.fail(what);
    return nullptr;
  }

  const Extent* visit(std::size_t number, int depth) {
    Extent& extent = extents_[number];
    if (extent.state == Extent::State::Open) {
      return fail("an object contains itself");
    }
    if (extent.state == Extent::State::Unknown) {
      if (depth > PropertyListMaximumDepth) {
        return fail("nested too deeply");
      }
      extent.state = Extent::State::Open;
      if (!measure(number, depth, extent)) {
        return nullptr;
      }
      extent.state = Extent::State::Known;
    }
    // An object that was measured elsewhere may lie deeper here.
    return depth + extent.height <= PropertyListMaximumDepth ? &extent : fail("nested too deeply");
  }

  bool measure(std::size_t number, int depth, Extent& extent) {
    Object object{};
    if (!file_.find(number, object)) {
      return false;
    }
    extent.values = 1;
    switch (object.kind) {
      case ObjectKind::Integer:
        return object.count < 16 || fitsInteger(object);
      case ObjectKind::Data:
        return grow(extent, 0, object.count);
      case ObjectKind::Ascii:
        return grow(extent, 0, object.count) && plainText(object);
      case ObjectKind::Utf16:
        return grow(extent, 0, std::uint64_t{3} * object.count) && wideText(object);
      case ObjectKind::Array:
        return children(object, object.count, depth, extent);
      case ObjectKind::Dictionary:
        return keys(object) && children(object, 2 * object.count, depth, extent);
      default:
        return true;
    }
  }

  bool grow(Extent& extent, std::uint64_t values, std::uint64_t bytes) const {
    if (extent.values + values > PropertyListMaximumValues) {
      return file_.fail("too many values");
    }
    if (extent.bytes + bytes > PropertyListMaximumBytes) {
      return file_.fail("too large");
    }
    extent.values += static_cast<std::uint32_t>(values);
    extent.bytes += static_cast<std::uint32_t>(bytes);
    return true;
  }

  // 16 bytes hold what 8 signed bytes cannot: up to 2^64 - 1.
  bool fitsInteger(const Object& object) const {
    const std::uint64_t high = file_.numberAt(object.at, 8);
    const bool lowIsNegative = file_.numberAt(object.at + 8, 8) >> 63 != 0;
    return high == 0 || (lowIsNegative && high == ~std::uint64_t{0}) || file_.fail("an integer beyond 64 bits");
  }

  // ASCII by the format; writers that put UTF-8 here are understood.
  bool plainText(const Object& object) const {
    const Bytes text = file_.contents(object.at, object.count);
    const char* fault = faultOfText({reinterpret_cast<const char*>(text.data()), text.size()});
    return fault == nullptr || file_.fail(fault);
  }

  bool wideText(const Object& object) const {
    for (std::size_t i = 0; i < object.count; ++i) {
      const std::uint64_t unit = file_.numberAt(object.at + 2 * i, 2);
      if (unit == 0) {
        return file_.fail("text with a NUL in it");
      }
      if (unit >= 0xD800 && unit < 0xE000) {
        const std::uint64_t next = i + 1 < object.count ? file_.numberAt(object.at + 2 * i + 2, 2) : 0;
        if (unit >= 0xDC00 || next < 0xDC00 || next >= 0xE000) {
          return file_.fail("text that is not UTF-16");
        }
        ++i;
      }
    }
    return true;
  }

  bool keys(const Object& object) const {
    for (std::size_t i = 0; i < object.count; ++i) {
      const std::uint64_t number = file_.reference(object, i);
      Object key{};
      if (number >= file_.count()) {
        return file_.fail("a reference to an object that is not there");
      }
      if (!file_.find(static_cast<std::size_t>(number), key)) {
        return false;
      }
      if (key.kind != ObjectKind::Ascii && key.kind != ObjectKind::Utf16) {
        return file_.fail("a key that is no text");
      }
    }
    return true;
  }

  bool children(const Object& object, std::size_t count, int depth, Extent& extent) {
    for (std::size_t i = 0; i < count; ++i) {
      const std::uint64_t number = file_.reference(object, i);
      if (number >= file_.count()) {
        return file_.fail("a reference to an object that is not there");
      }
      const Extent* child = visit(static_cast<std::size_t>(number), depth + 1);
      if (child == nullptr || !grow(extent, child->values, child->bytes)) {
        return false;
      }
      extent.height = std::max(extent.height, static_cast<std::uint16_t>(child->height + 1));
    }
    return true;
  }

  const BinaryFile& file_;
  std::vector<Extent> extents_;
};

// Makes the values of a file that was checked.
class BinaryBuilder {
 public:
  explicit BinaryBuilder(const BinaryFile& file) : file_(file) {}

  PropertyList value(std::uint64_t number) {
    const Object object = find(number);
    return object.kind == ObjectKind::Array        ? array(object)
           : object.kind == ObjectKind::Dictionary ? dictionary(object)
                                                   : leaf(object);
  }

 private:
  Object find(std::uint64_t number) const {
    Object object{};
    file_.find(static_cast<std::size_t>(number), object);
    return object;
  }

  PropertyList leaf(const Object& object) {
    switch (object.kind) {
      case ObjectKind::Simple:
        return PropertyList::boolean(object.count == kTrue);
      case ObjectKind::Integer:
        return integer(object);
      case ObjectKind::Real:
        return PropertyList::real(real(object));
      case ObjectKind::Date:
        return PropertyList::date(real(object));
      case ObjectKind::Data: {
        const Bytes bytes = file_.contents(object.at, object.count);
        return PropertyList::data(PropertyList::Bytes(bytes.begin(), bytes.end()));
      }
      case ObjectKind::Uid:
        return PropertyList::uid(file_.numberAt(object.at, object.count));
      default:
        return PropertyList::string(std::string(text(object)));
    }
  }

  PropertyList integer(const Object& object) const {
    const std::uint64_t bits = file_.numberAt(object.at, object.count);
    const bool isSigned = object.count == 8 || (object.count == 16 && file_.numberAt(object.at, 8) != 0);
    return isSigned ? PropertyList::integer(static_cast<std::int64_t>(bits)) : PropertyList::unsignedInteger(bits);
  }

  double real(const Object& object) const {
    const std::uint64_t bits = file_.numberAt(object.at, object.count);
    return object.count == 4 ? static_cast<double>(std::bit_cast<float>(static_cast<std::uint32_t>(bits)))
                             : std::bit_cast<double>(bits);
  }

  // Valid until the next one.
  std::string_view text(const Object& object) {
    if (object.kind == ObjectKind::Ascii) {
      const Bytes bytes = file_.contents(object.at, object.count);
      return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
    }
    text_.clear();
    for (std::size_t i = 0; i < object.count; ++i) {
      std::uint64_t code = file_.numberAt(object.at + 2 * i, 2);
      if (code >= 0xD800 && code < 0xE000) {
        ++i;
        code = 0x10000 + ((code & 0x3FF) << 10 | (file_.numberAt(object.at + 2 * i, 2) & 0x3FF));
      }
      append(static_cast<std::uint32_t>(code));
    }
    return text_;
  }

  void append(std::uint32_t code) {
    if (code < 0x80) {
      text_ += static_cast<char>(code);
      return;
    }
    const unsigned following = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
    text_ += static_cast<char>((0xFF00U >> (following + 1) & 0xFF) | code >> (6 * following));
    for (unsigned i = following; i-- > 0;) {
      text_ += static_cast<char>(0x80 | (code >> (6 * i) & 0x3F));
    }
  }

  PropertyList array(const Object& object) {
    PropertyList::Array items;
    items.reserve(object.count);
    for (std::size_t i = 0; i < object.count; ++i) {
      items.push_back(value(file_.reference(object, i)));
    }
    return PropertyList::array(std::move(items));
  }

  PropertyList dictionary(const Object& object) {
    PropertyList::Dictionary entries;
    entries.reserve(object.count);
    for (std::size_t i = 0; i < object.count; ++i) {
      PropertyList child = value(file_.reference(object, object.count + i));
      entries.set(text(find(file_.reference(object, i))), std::move(child));
    }
    return PropertyList::dictionary(std::move(entries));
  }

  const BinaryFile& file_;
  std::string text_;
};

}  // namespace

std::optional<PropertyList> readBinary(std::span<const std::uint8_t> bytes, std::string* reason) {
  if (!std::equal(kBinaryHeader.begin(), kBinaryHeader.end(), bytes.begin(),
                  bytes.begin() + static_cast<std::ptrdiff_t>(std::min(bytes.size(), kBinaryHeader.size())))) {
    NSRefuse(reason, "is a binary list of a version that is not read");
    return std::nullopt;
  }
  BinaryFile file(bytes, reason);
  if (!file.readTrailer() || !BinaryCheck(file).run()) {
    return std::nullopt;
  }
  return BinaryBuilder(file).value(file.root());
}

}  // namespace propertylist
