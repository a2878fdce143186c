// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/PropertyList.h"
#include "Platform/Visibility.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

// What is kept from run to run to be faster, and may be lost at any time: files in $XDG_CACHE_HOME/vorto or
// ~/.cache/vorto. Where the environment names neither by an absolute path there are none.

// Nothing when the file is not there, larger than `mostBytes`, or may have been written by somebody else.
TARN_EXPORT std::optional<PropertyList::Bytes> NSReadCacheFile(const std::string& name, std::size_t mostBytes);

// Makes the folder, for this user alone. Does nothing where that cannot be, or something else has the name.
TARN_EXPORT void NSWriteCacheFile(const std::string& name, std::span<const std::uint8_t> bytes);

// A text that is another one once the file that a path leads to was replaced or changed. Nothing when there is none.
TARN_EXPORT std::optional<std::string> NSFileState(const std::string& path);
