// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/FileBytes.h"

#include <zlib.h>

#include <limits>

namespace host {

std::optional<std::uint64_t> inflatedSize(std::span<const std::uint8_t> stream, std::uint64_t maximum) {
  z_stream inflater{};
  if (stream.size() > std::numeric_limits<uInt>::max() || inflateInit(&inflater) != Z_OK) return std::nullopt;
  inflater.next_in = const_cast<Bytef*>(stream.data());
  inflater.avail_in = static_cast<uInt>(stream.size());
  Bytef scratch[1 << 15];
  int state = Z_OK;
  while (state == Z_OK && inflater.total_out <= maximum) {
    inflater.next_out = scratch;
    inflater.avail_out = sizeof scratch;
    state = inflate(&inflater, Z_NO_FLUSH);
  }
  const std::uint64_t size = inflater.total_out;
  inflateEnd(&inflater);
  return state == Z_STREAM_END && size <= maximum ? std::optional(size) : std::nullopt;
}

bool inflateFirst(std::span<const std::uint8_t> stream, std::span<std::uint8_t> bytes) {
  constexpr std::size_t kMost = std::numeric_limits<uInt>::max();
  z_stream inflater{};
  if (stream.size() > kMost || bytes.size() > kMost || inflateInit(&inflater) != Z_OK) return false;
  inflater.next_in = const_cast<Bytef*>(stream.data());
  inflater.avail_in = static_cast<uInt>(stream.size());
  inflater.next_out = bytes.data();
  inflater.avail_out = static_cast<uInt>(bytes.size());
  inflate(&inflater, Z_SYNC_FLUSH);
  const bool isFilled = inflater.avail_out == 0;
  inflateEnd(&inflater);
  return isFilled;
}

}  // namespace host
