// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Presets/PresetFolders.h"

#include <optional>
#include <set>
#include <string>

namespace host {

// Which presets people want at hand, in the file "favorites" in the user's folder: a line each,
// "user/gradients/COLLECTION/FILE". Lines that stand for nothing that is there are kept; what is no line of text counts
// for nothing. No preset depends on this file.
class FavoritePresets {
 public:
  explicit FavoritePresets(const PresetFolders& folders);  // as the file is now

  bool contains(const Preset& preset) const;

  // Read the file again, change it, and write it where that changed it. moved() keeps a preset that was renamed a
  // favorite; without a new file it is gone. Throw Failure; the file is then as it was.
  void set(const Preset& preset, bool isFavorite);
  void moved(const Preset& preset, const std::string& newFile);

 private:
  std::string lineOf(const Preset& preset) const;
  void read();
  void write() const;

  const PresetFolders folders_;
  const std::string path_;  // empty where there is no home
  std::set<std::string> lines_;
  std::string fault_;  // why the file that is there could not be read
};

}  // namespace host
