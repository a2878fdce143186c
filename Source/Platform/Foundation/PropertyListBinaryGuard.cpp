// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/PropertyListGuards.h"

#include <algorithm>
#include <cstring>
#include <vector>

// A binary list:
//
//   "bplist00" | objects | table of offsets, one per object | trailer of 32 bytes
//   trailer: 6 bytes unused, size of an offset, size of a reference, then as 8 bytes each the number of objects, the
//   number of the root object, the place of the table object: a byte of kind (high half) and size (low half), then its
//   contents; numbers are big endian
namespace propertylist {
namespace {

constexpr std::size_t headerSize = 8;
constexpr std::size_t trailerSize = 32;

// What an object unfolds to. Sums saturate well above the limits.
struct Extent {
  enum class State : std::uint8_t { Unknown, Open, Known } state = State::Unknown;
  std::uint16_t height = 0;
  std::uint64_t values = 0;
  std::uint64_t bytes = 0;
};

class BinaryWalk {
 public:
  BinaryWalk(PropertyList::Bytes& bytes, bool mayRewrite, std::string* reason)
      : bytes_(bytes), mayRewrite_(mayRewrite), reason_(reason) {}

  bool rewrote() const { return rewrote_; }

  bool run() {
    if (!readTrailer()) {
      return false;
    }
    extents_.resize(count_);
    Extent extent;
    return visit(root_, 1, extent);
  }

 private:
  bool fail(const char* what) { return refuse(reason_, what); }

  // A big-endian number of 1 to 8 bytes.
  std::uint64_t number(std::size_t at, std::size_t size) const {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
      value = value << 8 | bytes_[at + i];
    }
    return value;
  }

  bool readTrailer() {
    if (bytes_.size() < headerSize + 1 + 1 + trailerSize) {
      return fail("the file ends too early");
    }
    const std::size_t trailer = bytes_.size() - trailerSize;
    offsetSize_ = bytes_[trailer + 6];
    referenceSize_ = bytes_[trailer + 7];
    const std::uint64_t count = number(trailer + 8, 8);
    const std::uint64_t root = number(trailer + 16, 8);
    const std::uint64_t table = number(trailer + 24, 8);
    if (offsetSize_ < 1 || offsetSize_ > 8 || referenceSize_ < 1 || referenceSize_ > 8) {
      return fail("the trailer is damaged, or the file ends too early");
    }
    if (table <= headerSize || table > trailer || count == 0 || count > (trailer - table) / offsetSize_) {
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

  bool visit(std::size_t object, int depth, Extent& result) {
    Extent& known = extents_[object];
    if (known.state == Extent::State::Open) {
      return fail("an object contains itself");
    }
    if (known.state == Extent::State::Unknown) {
      if (depth > PropertyListMaximumDepth) {
        return fail("nested too deeply");
      }
      known.state = Extent::State::Open;
      if (!measure(object, depth, known)) {
        return false;
      }
      known.state = Extent::State::Known;
    }
    if (depth + known.height > PropertyListMaximumDepth) {
      return fail("nested too deeply");
    }
    if (known.values > PropertyListMaximumValues) {
      return fail("too many values");
    }
    if (known.bytes > PropertyListMaximumBytes) {
      return fail("too large");
    }
    result = known;
    return true;
  }

  // The place of an object's contents, once `size` bytes of them are sure to be there.
  bool has(std::size_t at, std::uint64_t size) {
    return (at <= table_ && size <= table_ - at) || fail("an object ends behind its section");
  }

  bool measure(std::size_t object, int depth, Extent& extent) {
    const std::uint64_t offset = number(table_ + object * offsetSize_, offsetSize_);
    if (offset < headerSize || offset >= table_) {
      return fail("an object lies outside its section");
    }
    const auto at = static_cast<std::size_t>(offset);
    const unsigned kind = bytes_[at] >> 4;
    const unsigned size = bytes_[at] & 0xF;
    extent.values = 1;
    switch (kind) {
      case 0x0:
        return size == 8 || size == 9 || fail("an object of an unknown kind");
      case 0x1:
        return size <= 4 ? has(at + 1, std::uint64_t{1} << size) && integer(at, size)
                         : fail("an integer of an unknown size");
      case 0x2:
        return size == 2 || size == 3 ? has(at + 1, std::uint64_t{1} << size) : fail("a real of an unknown size");
      case 0x3:
        return size == 3 ? has(at + 1, 8) : fail("a date of an unknown size");
      case 0x8:
        return size < 8 ? has(at + 1, size + 1) : fail("a uid of an unknown size");
      default:
        return sized(kind, at, depth, extent);
    }
  }

  // 16 bytes hold what 8 signed bytes cannot: up to 2^64 - 1. Smaller ones lose their first half.
  bool integer(std::size_t at, unsigned size) {
    if (size < 4) {
      return true;
    }
    const std::uint64_t high = number(at + 1, 8);
    const std::uint64_t low = number(at + 9, 8);
    const bool lowIsNegative = (low >> 63) != 0;
    if (high == 0 && lowIsNegative) {
      return true;
    }
    if (high != (lowIsNegative ? ~std::uint64_t{0} : 0)) {
      return fail("an integer beyond 64 bits");
    }
    if (!mayRewrite_) {
      return fail("objects that overlap");
    }
    rewrote_ = true;
    bytes_[at] = 0x13;
    std::memmove(&bytes_[at + 1], &bytes_[at + 9], 8);
    return true;
  }

  bool sized(unsigned kind, std::size_t at, int depth, Extent& extent) {
    std::size_t contents = at + 1;
    std::uint64_t size = bytes_[at] & 0xF;
    if (size == 0xF) {
      if (!has(contents, 1) || bytes_[contents] >> 4 != 1 || (bytes_[contents] & 0xF) > 3) {
        return fail("a size that is no integer");
      }
      const std::size_t width = std::size_t{1} << (bytes_[contents] & 0xF);
      if (!has(contents + 1, width)) {
        return false;
      }
      size = number(contents + 1, width);
      contents += 1 + width;
    }
    if (size > bytes_.size()) {
      return fail("a size beyond the file");
    }
    extent.bytes = size;
    switch (kind) {
      case 0x4:
        return has(contents, size);
      case 0x5:
        return has(contents, size) && plainText(contents, static_cast<std::size_t>(size));
      case 0x6:
        extent.bytes = 3 * size;
        return has(contents, 2 * size) && wideText(contents, static_cast<std::size_t>(size));
      case 0xA:
        return has(contents, size * referenceSize_) && children(contents, size, depth, extent);
      case 0xD:
        return has(contents, 2 * size * referenceSize_) && keys(contents, size) &&
               children(contents, 2 * size, depth, extent);
      default:
        return fail("an object of an unknown kind");
    }
  }

  // ASCII by the format; writers that put UTF-8 here are understood.
  bool plainText(std::size_t at, std::size_t size) {
    const char* fault = faultOfText({reinterpret_cast<const char*>(bytes_.data()) + at, size});
    return fault == nullptr || fail(fault);
  }

  bool wideText(std::size_t at, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) {
      const std::uint64_t unit = number(at + 2 * i, 2);
      if (unit == 0) {
        return fail("text with a NUL in it");
      }
      if (unit >= 0xD800 && unit < 0xE000) {
        const std::uint64_t next = i + 1 < size ? number(at + 2 * i + 2, 2) : 0;
        if (unit >= 0xDC00 || next < 0xDC00 || next >= 0xE000) {
          return fail("text that is not UTF-16");
        }
        ++i;
      }
    }
    return true;
  }

  bool keys(std::size_t at, std::uint64_t size) {
    for (std::uint64_t i = 0; i < size; ++i) {
      const std::uint64_t object = number(at + static_cast<std::size_t>(i) * referenceSize_, referenceSize_);
      if (object >= count_) {
        return fail("a reference to an object that is not there");
      }
      const std::uint64_t offset = number(table_ + static_cast<std::size_t>(object) * offsetSize_, offsetSize_);
      if (offset >= table_ ||
          (bytes_[static_cast<std::size_t>(offset)] >> 4 != 5 && bytes_[static_cast<std::size_t>(offset)] >> 4 != 6)) {
        return fail("a key that is no text");
      }
    }
    return true;
  }

  bool children(std::size_t at, std::uint64_t size, int depth, Extent& extent) {
    extent.bytes = 0;
    for (std::uint64_t i = 0; i < size; ++i) {
      const std::uint64_t object = number(at + static_cast<std::size_t>(i) * referenceSize_, referenceSize_);
      if (object >= count_) {
        return fail("a reference to an object that is not there");
      }
      Extent child;
      if (!visit(static_cast<std::size_t>(object), depth + 1, child)) {
        return false;
      }
      extent.height = std::max<std::uint16_t>(extent.height, child.height + 1);
      extent.values += child.values;
      extent.bytes += child.bytes;
      if (extent.values > PropertyListMaximumValues) {
        return fail("too many values");
      }
      if (extent.bytes > PropertyListMaximumBytes) {
        return fail("too large");
      }
    }
    return true;
  }

  PropertyList::Bytes& bytes_;
  bool mayRewrite_;
  bool rewrote_ = false;
  std::string* reason_;
  std::size_t offsetSize_ = 0;
  std::size_t referenceSize_ = 0;
  std::size_t count_ = 0;
  std::size_t root_ = 0;
  std::size_t table_ = 0;
  std::vector<Extent> extents_;
};

}  // namespace

std::optional<PropertyList::Bytes> prepareBinary(std::span<const std::uint8_t> bytes, std::string* reason) {
  PropertyList::Bytes prepared(bytes.begin(), bytes.end());
  BinaryWalk walk(prepared, true, reason);
  if (!walk.run()) {
    return std::nullopt;
  }
  // Hostile objects overlap, so that rewriting one changes another: what was rewritten is walked again.
  if (walk.rewrote() && !BinaryWalk(prepared, false, reason).run()) {
    return std::nullopt;
  }
  return prepared;
}

}  // namespace propertylist
