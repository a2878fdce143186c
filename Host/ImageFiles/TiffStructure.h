// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <span>

namespace host {

// When deflated tiles are compared with what they should hold: now, or by the caller.
enum class DeflatedTiles { Now, Later };

// Whether all directories of a TIFF, and the strips and tiles of all its pictures, lie in the file, and whether the
// deflated tiles of the first picture hold as many bytes as a tile takes: the format's library takes a tile that holds
// more for a whole one, and leaves its end unwritten. The first picture has to say how many bits its samples take,
// which the libraries do not guess alike. Not whole are also files that could not have been written so, and would take
// far more time or memory than their size and their picture's: whose directories, strips and tiles overlap again and
// again, or whose tiles are far larger than the picture or than what is stored of them.
bool isWholeTiff(std::span<const std::uint8_t> file, DeflatedTiles tiles = DeflatedTiles::Now);

}  // namespace host
