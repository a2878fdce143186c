// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/StateKind.h"

#include <filesystem>
#include <string>
#include <string_view>

namespace host {

// A name, in any script, as a file's: what a file cannot be called by is written %XX, so that no name leads out of its
// folder, hides its file, or is another name's.

// The name without blanks at its ends. Throws Failure for one that is empty, no UTF-8, too long for a file, or has
// characters that cannot be seen.
std::string checkedPresetName(std::string_view name);

// The file of a name, "NAME.gradient" or "NAME.levels", and the folders of a collection, "A/B". Throw Failure as
// checkedPresetName() does; an empty collection is an empty path.
std::string fileNameOfPreset(std::string_view name, const std::string& extension);
std::filesystem::path foldersOfCollection(std::string_view collection);
const char* presetExtension(StateKind kind);  // ".gradient", ".levels"

// The way back, of any file: without the extension of a state or gradient. Bytes that are no UTF-8 become U+FFFD.
std::string presetNameOfFile(const std::string& fileName);
std::string collectionNameOfFolder(const std::string& folderName);
// Whether a file is called like a state, or like a gradient of another program.
bool hasStateExtension(const std::filesystem::path& path);

// How deep folders of collections may be in each other.
inline constexpr int kMostCollectionDepth = 4;

}  // namespace host
