// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace host {

// What the inspector does with a file that somebody opens or drops.
enum class FileRole {
  State,  // a saved gradient, levels or opaque data, or a gradient of another program: for a parameter
  Input,  // anything else: a picture, a sequence's pattern or a clip
};

// By what is in the file, as far as the first bytes and the name tell; never by reading all of it.
FileRole fileRoleOf(const std::string& path);

// The pattern of the numbered files that a picture is one of, where at least one more of them is there: for
// "shot.0007.png" "shot.%04d.png". The number is the last one in the name. Nothing for a picture that stands alone.
std::optional<std::string> sequenceAround(const std::string& path);

}  // namespace host
