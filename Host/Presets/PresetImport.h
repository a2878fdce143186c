// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Presets/PresetFolders.h"
#include "Platform/Foundation/PropertyList.h"

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <tuple>
#include <vector>

namespace host {

// What became of files that were to be imported.
struct PresetImport {
  std::vector<Preset> added;  // of either kind: the file decides
  std::size_t known = 0;      // were there already, byte by byte
  std::vector<PresetFault> faults;
};

// Copies files of states and of gradients of other programs among the user's presets, as they are, each for itself:
// what fails is told with its reason. They keep their names; one that another preset has gets a number behind it.
//
// Of a folder those are taken that are called like such files, also in folders inside it; its name becomes their
// collection, to which the names of these are added. Hidden ones are left out, links to folders are not followed, and
// no more than kMostImported files are looked at.
class PresetImporter {
 public:
  // Looks through the folders. Throws Failure where there is no place for the user's presets.
  PresetImporter(PresetFolders folders, const std::vector<std::string>& paths);

  bool isDone() const { return next_ == found_.size(); }
  std::size_t remaining() const { return found_.size() - next_; }
  void step();  // imports the next file
  const PresetImport& report() const { return report_; }

 private:
  struct Found {
    std::filesystem::path file;
    std::string collection;
  };
  using Key = std::tuple<StateKind, std::string, std::string>;  // kind, collection, name

  void enter(const std::filesystem::path& folder, const std::string& collection, int depth);
  void take(const std::filesystem::path& entry, const std::string& collection, int depth);
  void import(const Found& found);
  std::string freeName(StateKind kind, const std::string& name, const std::string& collection,
                       const PropertyList::Bytes& bytes) const;

  const PresetFolders folders_;
  std::map<Key, std::string> taken_;  // the user's presets, with their files
  std::vector<Found> found_;
  std::size_t looked_ = 0;
  std::size_t next_ = 0;
  PresetImport report_;
};

PresetImport importPresets(const PresetFolders& folders, const std::vector<std::string>& paths);

inline constexpr std::size_t kMostImported = 5000;

}  // namespace host
