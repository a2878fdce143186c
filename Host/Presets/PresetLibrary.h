// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Presets/PresetFolders.h"
#include "Platform/Foundation/PropertyList.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

struct PresetEntry {
  Preset preset;
  PropertyList state;  // what a port takes
  bool isFavorite = false;
};

// All presets of a kind, read.
struct PresetLibrary {
  std::vector<PresetEntry> entries;  // in the order of listPresets()
  std::vector<PresetFault> faults;   // files that are no presets, with the reason
};
PresetLibrary readPresets(const PresetFolders& folders, StateKind kind);

// Changes of the user's presets. Each is whole or did not happen: they throw Failure, and every file is then as it was.

// Writes a state under a name as text, or as a property list where there is no such text. Another of the user's presets
// of that name and collection is replaced where that is wanted, and refused otherwise.
enum class SameName { Refused, Replaced };
Preset savePreset(const PresetFolders& folders, StateKind kind, const std::string& name, const std::string& collection,
                  const PropertyList& state, SameName sameName);
// Whether the user has one of that name, which savePreset() would replace.
std::optional<Preset> userPresetNamed(const PresetFolders& folders, StateKind kind, const std::string& name,
                                      const std::string& collection);
// Gives another name, in the same collection; the file keeps its form. Those that ship cannot be renamed or deleted.
Preset renamePreset(const PresetFolders& folders, const Preset& preset, const std::string& name);
void deletePreset(const PresetFolders& folders, const Preset& preset);

}  // namespace host
