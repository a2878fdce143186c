// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/PngStructure.h"

#include <array>
#include <cstring>

namespace host {
namespace {

constexpr std::size_t kSignatureSize = 8;
constexpr std::size_t kChunkOverhead = 12;  // length, type and checksum, four bytes each

// The checksum of the format's definition (polynomial 0xEDB88320, reflected), a byte at a time.
constexpr std::array<std::uint32_t, 256> makeChecksumTable() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t value = 0; value < 256; ++value) {
    std::uint32_t remainder = value;
    for (int bit = 0; bit < 8; ++bit) remainder = (remainder & 1) ? 0xEDB88320u ^ (remainder >> 1) : remainder >> 1;
    table[value] = remainder;
  }
  return table;
}

std::uint32_t checksum(std::span<const std::uint8_t> bytes) {
  static constexpr auto table = makeChecksumTable();
  std::uint32_t sum = 0xFFFFFFFFu;
  for (const std::uint8_t byte : bytes) sum = table[(sum ^ byte) & 0xFF] ^ (sum >> 8);
  return ~sum;
}

std::uint32_t bigEndian(const std::uint8_t* bytes) {
  return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 | std::uint32_t{bytes[2]} << 8 | bytes[3];
}

}  // namespace

bool isWholePng(std::span<const std::uint8_t> file) {
  std::size_t position = kSignatureSize;
  while (position <= file.size() && file.size() - position >= kChunkOverhead) {
    const std::size_t length = bigEndian(&file[position]);
    if (length > file.size() - position - kChunkOverhead) return false;
    const auto typeAndData = file.subspan(position + 4, length + 4);
    if (checksum(typeAndData) != bigEndian(&file[position + 8 + length])) return false;
    if (std::memcmp(typeAndData.data(), "IEND", 4) == 0) return true;
    position += length + kChunkOverhead;
  }
  return false;
}

}  // namespace host
