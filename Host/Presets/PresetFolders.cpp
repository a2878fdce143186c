// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Presets/PresetFolders.h"

#include "Host/Files/ProgramFolder.h"
#include "Host/Presets/PresetNames.h"
#include "Host/Presets/PresetSearch.h"

#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <set>
#include <utility>

namespace host {
namespace {

namespace fs = std::filesystem;

// A relative folder would depend on where the process stands.
fs::path userFolder() {
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data && *data == '/') return fs::path(data) / "vorto/presets";
  const char* home = std::getenv("HOME");
  return home && *home == '/' ? fs::path(home) / ".local/share/vorto/presets" : fs::path();
}

bool isHidden(const std::string& name) {
  return name.starts_with('.') || name.ends_with('~');
}

// Goes through the folders of an origin.
class Walk {
 public:
  Walk(StateKind kind, PresetOrigin origin, PresetListing& listing) : kind_(kind), origin_(origin), listing_(listing) {}

  void enter(const fs::path& folder, const std::string& collection, int depth) {
    if (!isNew(folder)) return;
    std::error_code error;
    fs::directory_iterator files(folder, error);
    for (; !error && files != fs::directory_iterator(); files.increment(error)) {
      if (!take(*files, collection, depth)) return;
    }
    if (error) listing_.faults.push_back({folder.string(), error.message()});
  }

 private:
  // Links may lead in a circle.
  bool isNew(const fs::path& folder) {
    struct stat status;
    return ::stat(folder.c_str(), &status) == 0 && seen_.emplace(status.st_dev, status.st_ino).second;
  }

  bool take(const fs::directory_entry& entry, const std::string& collection, int depth) {
    const fs::path& path = entry.path();
    const std::string fileName = path.filename().string();
    if (isHidden(fileName)) return true;
    if (++count_ > kMostPresets) {
      listing_.faults.push_back({path.parent_path().string(), "there are more than " + std::to_string(kMostPresets) +
                                                                  " files; the others are left out"});
      return false;
    }
    std::error_code error;
    if (entry.is_directory(error)) {
      const std::string name = collectionNameOfFolder(fileName);
      if (depth < kMostCollectionDepth) enter(path, collection.empty() ? name : collection + "/" + name, depth + 1);
    } else {
      listing_.presets.push_back({kind_, origin_, presetNameOfFile(fileName), collection, path.string()});
    }
    return count_ <= kMostPresets;
  }

  const StateKind kind_;
  const PresetOrigin origin_;
  PresetListing& listing_;
  std::set<std::pair<dev_t, ino_t>> seen_;
  std::size_t count_ = 0;
};

void sort(std::vector<Preset>& presets) {
  using Key = std::tuple<bool, std::string, std::string, std::string>;
  std::vector<std::pair<Key, Preset>> keyed;
  keyed.reserve(presets.size());
  for (Preset& preset : presets) {
    Key key{preset.origin == PresetOrigin::Shipped, foldedForSearch(preset.collection), foldedForSearch(preset.name),
            preset.file};
    keyed.emplace_back(std::move(key), std::move(preset));
  }
  std::ranges::sort(keyed, {}, [](const auto& each) -> const Key& { return each.first; });
  for (std::size_t i = 0; i < presets.size(); ++i) presets[i] = std::move(keyed[i].second);
}

}  // namespace

PresetFolders PresetFolders::standard() {
  const std::string data = dataFolder();
  return {data.empty() ? fs::path() : fs::path(data) / "presets", userFolder()};
}

const char* presetFolderName(StateKind kind) {
  return kind == StateKind::Levels ? "levels" : "gradients";
}

PresetListing listPresets(const PresetFolders& folders, StateKind kind) {
  PresetListing listing;
  for (const PresetOrigin origin : {PresetOrigin::User, PresetOrigin::Shipped}) {
    const fs::path& root = folders.root(origin);
    if (!root.empty()) Walk(kind, origin, listing).enter(root / presetFolderName(kind), "", 0);
  }
  sort(listing.presets);
  return listing;
}

}  // namespace host
