// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Exr/ExrPart.h"

#include <cstdint>

namespace host::exr {

// Whether a part in tiles says of which size and in which levels they are.
bool hasTiles(const Part& part);

// How many tiles lie side by side in the largest level, or on top of each other.
std::uint64_t tilesAcross(const Part& part);
std::uint64_t tilesDown(const Part& part);

// Of blocks of rows, or of tiles in all levels. Counts above `most`, which no file can hold, may be any number above
// it.
std::uint64_t chunkCount(const Part& part, std::uint64_t most);

}  // namespace host::exr
