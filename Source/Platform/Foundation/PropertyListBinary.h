// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

// A binary list:
//
//   "bplist00" | objects | table of offsets, one per object | trailer of 32 bytes
//   trailer: 6 bytes unused, size of an offset, size of a reference, then as 8 bytes each the number of objects, the
//   number of the root object, the place of the table
//   object: a byte of kind (high half) and size (low half), then its contents; numbers are big endian
//
// Private to this room.
namespace propertylist {

inline constexpr std::string_view kBinaryHeader = "bplist00";
inline constexpr std::size_t kTrailerSize = 32;

enum class ObjectKind : std::uint8_t {
  Simple = 0x0,      // sizes 8 and 9: false and true
  Integer = 0x1,     // 2^size bytes; 1, 2 and 4 of them unsigned, 8 and 16 signed
  Real = 0x2,        // 2^size bytes
  Date = 0x3,        // 8 bytes: seconds since 2001
  Data = 0x4,        // size bytes
  Ascii = 0x5,       // size bytes
  Utf16 = 0x6,       // size units
  Uid = 0x8,         // size + 1 bytes
  Array = 0xA,       // size references
  Dictionary = 0xD,  // size references to keys, then as many to values
};
// A size from here on stands as an integer object behind the first byte.
inline constexpr unsigned kSizeFollows = 0xF;
inline constexpr unsigned kFalse = 8;
inline constexpr unsigned kTrue = 9;

}  // namespace propertylist
