// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace host::exr {

// Whether what an attribute's value says of its own length is what it holds, of the types that say it: lists of texts,
// numbers or channels, and small pictures. Values of other types always are.
bool isValueSound(std::string_view type, std::span<const std::uint8_t> value);

}  // namespace host::exr
