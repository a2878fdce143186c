// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Png/Deflate.h"

#include <libdeflate.h>

#include <algorithm>
#include <memory>
#include <new>

namespace host {
namespace {

struct Decompressor {
  libdeflate_decompressor* const value = libdeflate_alloc_decompressor();
  Decompressor() {
    if (value == nullptr) throw std::bad_alloc();
  }
  Decompressor(const Decompressor&) = delete;
  Decompressor& operator=(const Decompressor&) = delete;
  ~Decompressor() { libdeflate_free_decompressor(value); }
};

struct Compressor {
  libdeflate_compressor* const value;
  explicit Compressor(int level) : value(libdeflate_alloc_compressor(level)) {
    if (value == nullptr) throw std::bad_alloc();
  }
  Compressor(const Compressor&) = delete;
  Compressor& operator=(const Compressor&) = delete;
  ~Compressor() { libdeflate_free_compressor(value); }
};

}  // namespace

Bytes inflated(std::span<const std::uint8_t> stream, std::size_t largest) {
  const Decompressor decompressor;
  Bytes bytes;
  for (std::size_t room = std::size_t{1} << 16;; room *= 4) {
    bytes.resize(std::min(room, largest));
    std::size_t size = 0;
    const auto result =
        libdeflate_zlib_decompress(decompressor.value, stream.data(), stream.size(), bytes.data(), bytes.size(), &size);
    if (result == LIBDEFLATE_INSUFFICIENT_SPACE && bytes.size() < largest) continue;
    bytes.resize(result == LIBDEFLATE_SUCCESS ? size : 0);
    return bytes;
  }
}

Inflated inflateInto(std::span<const std::uint8_t> stream, std::span<std::uint8_t> room) {
  const Decompressor decompressor;
  const auto result =
      libdeflate_zlib_decompress(decompressor.value, stream.data(), stream.size(), room.data(), room.size(), nullptr);
  return result == LIBDEFLATE_SUCCESS              ? Inflated::Whole
         : result == LIBDEFLATE_INSUFFICIENT_SPACE ? Inflated::TooMuch
                                                   : Inflated::Damaged;
}

std::optional<std::size_t> inflateUpTo(std::span<const std::uint8_t> stream, std::span<std::uint8_t> room) {
  const Decompressor decompressor;
  std::size_t size = 0;
  const auto result =
      libdeflate_zlib_decompress(decompressor.value, stream.data(), stream.size(), room.data(), room.size(), &size);
  return result == LIBDEFLATE_SUCCESS ? std::optional(size) : std::nullopt;
}

Bytes deflated(std::span<const std::uint8_t> bytes, int level) {
  const Compressor compressor(level);
  Bytes stream(libdeflate_zlib_compress_bound(compressor.value, bytes.size()));
  stream.resize(libdeflate_zlib_compress(compressor.value, bytes.data(), bytes.size(), stream.data(), stream.size()));
  return stream;
}

}  // namespace host
