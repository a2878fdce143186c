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

}  // namespace host
