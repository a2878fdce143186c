// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Exr/ExrPart.h"

#include <cstdint>
#include <span>
#include <vector>

namespace host::exr {

// Whether a block of kDwaa or kDwab says that it holds as much as its channels take. The format's library does not
// compare: what is not there it takes from memory that nobody wrote.
bool isDwaBlockWhole(std::span<const std::uint8_t> stored, const std::vector<Channel>& channels, std::uint64_t width,
                     std::uint64_t height);

}  // namespace host::exr
