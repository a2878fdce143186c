// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <span>
#include <string>

namespace host {

// Throws Failure when a file of that name could not be written: no such folder, no permission, or something that is no
// regular file has the name. Called before the work starts.
void checkOutput(const std::string& path);

// Writes beside the target and renames, through symbolic links. Throws Failure, with the old file as it was, when that
// does not succeed.
void replaceFile(const std::string& path, std::span<const std::uint8_t> bytes);

}  // namespace host
