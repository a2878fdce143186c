// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Presets/PresetFolders.h"
#include "Host/States/StateFile.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

// "preset:NAME" in the place of a state's file. NAME is the preset's, COLLECTION/NAME, or either with its file's
// extension, with "gradients/" or "levels/" in front where the kind is not known; where none is called exactly so, case
// and accents do not matter. The user's presets come before those that ship. A file of such a name is "./preset:NAME".
bool isPresetReference(std::string_view text);

// Throws Failure for an unknown name, with those that are close, and for one that several have.
Preset presetOfReference(const PresetFolders& folders, std::string_view reference, std::optional<StateKind> kind);

// The state's file that a text stands for: of a preset's name its file, otherwise the text itself. Throws Failure.
std::string stateFileOfText(const std::string& text, std::optional<StateKind> kind);
// What is in that file, which of a preset is of its kind. Throws Failure.
StateFile readStateOfText(const std::string& text, std::optional<StateKind> kind = std::nullopt);

// A preset's file. Throws Failure naming it: also for one of another kind, and for more than kLargestPreset bytes.
StateFile readPreset(const Preset& preset);

inline constexpr std::size_t kLargestPreset = std::size_t{1} << 20;

}  // namespace host
