// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Exr/ExrPart.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace host::exr {

// Rows or a tile of a part's largest level.
struct Block {
  Box box;
  std::span<const std::uint8_t> stored;
  std::size_t size = 0;  // in bytes, when it is not compressed: row by row, in each channel by channel
};

// Whether all blocks of all parts lie in the file.
bool areBlocksWhole(const File& file, std::string* reason);

// Refuses a part whose blocks are mostly pixels that it does not show, and so large that they are not to be made for
// the rest.
bool checkUnseen(const Part& part, std::string* reason);

// How many blocks a flat part without subsampled channels has in its largest level, and one of them. It is refused when
// it is another block, or its compression cannot make as many bytes as its pixels take from what is stored.
std::uint64_t blockCount(const Part& part);
bool readBlock(const File& file, std::size_t part, std::uint64_t index, Block* block, std::string* reason);

}  // namespace host::exr
