// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Damaged.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What an EXR file is made of.
namespace host::exr {

enum Compression : std::uint8_t {
  kNone,
  kRunLengths,
  kZipRow,
  kZip,
  kPiz,
  kPxr24,
  kB44,
  kB44a,
  kDwaa,
  kDwab,
  kUnknown
};

// The rows of a block of pixels that are not stored in tiles.
std::uint64_t rowsOfBlock(std::uint8_t compression);

enum class SampleKind : std::uint32_t { UInt, Half, Float };

struct Channel {
  std::string name;
  SampleKind kind = SampleKind::Half;
  bool isPerceptuallyLinear = false;
  std::int32_t columns = 1;  // one sample for so many of them
  std::int32_t rows = 1;

  std::uint64_t size() const { return kind == SampleKind::Half ? 2 : 4; }  // of a sample, in bytes
  bool isSubsampled() const { return columns != 1 || rows != 1; }
};

// Both ends are included.
struct Box {
  std::int64_t left = 0, top = 0, right = -1, bottom = -1;

  std::uint64_t width() const { return static_cast<std::uint64_t>(right - left + 1); }
  std::uint64_t height() const { return static_cast<std::uint64_t>(bottom - top + 1); }
  bool operator==(const Box&) const = default;
};

inline bool meets(const Box& box, const Box& other) {
  return box.left <= other.right && other.left <= box.right && box.top <= other.bottom && other.top <= box.bottom;
}

struct Attribute {
  std::string name;
  std::string type;
  std::span<const std::uint8_t> value;
};

struct Part {
  std::string name;
  std::vector<Channel> channels;  // as samples are stored: sorted by name
  std::uint8_t compression = kUnknown;
  Box data;     // the pixels that are stored
  Box display;  // the pixels that the file shows
  bool isTiled = false;
  bool isDeep = false;
  std::uint64_t tileWidth = 0, tileHeight = 0;
  std::uint8_t tileMode = 0;
  std::uint64_t chunkCount = 0;   // all levels together
  std::uint64_t offsetTable = 0;  // where in the file
  std::vector<Attribute> attributes;
};

struct File {
  std::span<const std::uint8_t> bytes;
  bool hasParts = false;  // it may hold several, and says with each block to which it belongs
  std::vector<Part> parts;
};

// Whether a value is as large as its type says; values of types that differ in size always are.
bool isAttributeWhole(std::string_view type, std::span<const std::uint8_t> value);

// Reads the headers of all parts. What makes no sense, and attributes that are not as large as their types are, is
// refused.
bool readHeaders(std::span<const std::uint8_t> bytes, File* file, std::string* reason);

}  // namespace host::exr
