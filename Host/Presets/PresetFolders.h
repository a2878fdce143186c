// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Presets/Preset.h"

#include <filesystem>
#include <string>
#include <vector>

namespace host {

// Where presets lie. Below each root the gradients are in the folder "gradients" and the levels in "levels"; folders in
// these are collections.
struct PresetFolders {
  std::filesystem::path shipped;  // with the program; empty where there is none
  std::filesystem::path user;     // may not be there yet; empty where the environment names no home

  // share/vorto/presets beside the program, installed or in a build tree, and $XDG_DATA_HOME/vorto/presets, or
  // ~/.local/share/vorto/presets.
  static PresetFolders standard();

  const std::filesystem::path& root(PresetOrigin origin) const {
    return origin == PresetOrigin::Shipped ? shipped : user;
  }
};

const char* presetFolderName(StateKind kind);  // "gradients", "levels"

struct PresetListing {
  std::vector<Preset> presets;  // the user's first; by collection and name, as people sort them
  std::vector<PresetFault> faults;
};

// The presets of a kind by their names: no file is opened, so that some of them may be none. Hidden files and backups
// are left out; folders that cannot be read are faults, and so is what is beyond kMostPresets files of an origin.
PresetListing listPresets(const PresetFolders& folders, StateKind kind);

inline constexpr std::size_t kMostPresets = 10000;

}  // namespace host
