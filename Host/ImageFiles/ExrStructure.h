// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <span>

namespace host {

// Whether the headers of all parts of an EXR and all their blocks of pixels lie in the file, and whether the blocks of
// the first part hold as many bytes as their rows or tiles take, as far as their compression tells before they are
// decoded. The format's library does not compare: what a block leaves out keeps what was in memory.
bool isWholeExr(std::span<const std::uint8_t> file);

}  // namespace host
