// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// A PNG file is a signature and chunks: a length, a type of four letters, data, and a checksum.
namespace host {

inline constexpr std::uint8_t kPngSignature[8] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

constexpr std::uint32_t pngType(const char (&letters)[5]) {
  std::uint32_t type = 0;
  for (int i = 0; i < 4; ++i) type = type << 8 | static_cast<unsigned char>(letters[i]);
  return type;
}

inline std::uint32_t pngNumber(const std::uint8_t* bytes) {
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}
inline void appendPngNumber(std::uint32_t value, std::vector<std::uint8_t>* bytes) {
  for (int shift = 24; shift >= 0; shift -= 8) bytes->push_back(static_cast<std::uint8_t>(value >> shift));
}

struct PngChunk {
  std::uint32_t type = 0;
  std::span<const std::uint8_t> data;

  // Whether a reader that does not know it must not go on.
  bool isCritical() const { return (type & 0x20000000u) == 0; }
};

// Goes through a file's chunks.
class PngChunks {
 public:
  explicit PngChunks(std::span<const std::uint8_t> file) : file_(file) {}

  // The next chunk, IEND too; false when what stands there is not whole, or its checksum is wrong.
  bool next(PngChunk* chunk);

 private:
  std::span<const std::uint8_t> file_;
  std::size_t position_ = sizeof kPngSignature;
};

// Appends a whole chunk. Its data are of less than 2^31 bytes.
void appendPngChunk(std::uint32_t type, std::span<const std::uint8_t> data, std::vector<std::uint8_t>* file);

}  // namespace host
