// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace host {

// The library's name of a file's format, by its first bytes, or by the extension where a format has no sign of its own;
// null when it is none that is read.
const char* formatNameOf(std::span<const std::uint8_t> file, const std::string& extension);

}  // namespace host
