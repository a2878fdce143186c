// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/StateKind.h"

#include <string>

namespace host {

enum class PresetOrigin { Shipped, User };

// A gradient or levels that people choose by a name. It is a file: its folder is the collection, and its name without
// the extension the preset's (PresetNames.h).
struct Preset {
  StateKind kind = StateKind::Gradient;  // Gradient or Levels
  PresetOrigin origin = PresetOrigin::User;
  std::string name;
  std::string collection;  // "A", or "A/B" of folders in folders; empty of the user's that are in none
  std::string file;
  bool operator==(const Preset&) const = default;
};

// A file in a folder of presets that is none.
struct PresetFault {
  std::string file;
  std::string reason;
};

}  // namespace host
