// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/Search.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <set>
#include <sstream>

namespace vorto::frei0r {
namespace {

namespace fs = std::filesystem;

std::vector<std::string> usualFolders() {
  std::vector<std::string> folders;
  const char* const home = std::getenv("HOME");
  if (home && *home == '/') folders.push_back(std::string(home) + "/.frei0r-1/lib");
  for (const char* const folder : {"/usr/local/lib/frei0r-1", "/usr/lib/frei0r-1", VORTO_FREI0R_MULTIARCH}) {
    folders.emplace_back(folder);
  }
  return folders;
}

std::vector<std::string> folders() {
  const char* const list = std::getenv("FREI0R_PATH");
  if (!list) return usualFolders();
  std::vector<std::string> folders;
  std::istringstream parts(list);
  for (std::string folder; std::getline(parts, folder, ':');) {
    if (!folder.empty()) folders.push_back(folder);
  }
  return folders;
}

// Files and folders of a folder, each by name. Nothing where it cannot be read.
struct Contents {
  explicit Contents(const fs::path& folder) {
    std::error_code error;
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
      std::error_code unknown;
      const fs::path& path = entry->path();
      if (path.filename().string().starts_with('.')) continue;
      if (entry->is_directory(unknown)) folders.push_back(path);
      if (path.extension() == ".so" && entry->is_regular_file(unknown)) files.push_back(path);
    }
    std::sort(files.begin(), files.end());
    std::sort(folders.begin(), folders.end());
  }
  std::vector<fs::path> files;
  std::vector<fs::path> folders;
};

}  // namespace

std::vector<std::string> foreignPlugIns() {
  std::vector<std::string> plugIns;
  std::set<std::string> names;
  const auto take = [&](const std::vector<fs::path>& files) {
    for (const fs::path& file : files) {
      const std::string name = file.filename().string();
      if (!name.starts_with("vorto_") && names.insert(name).second) plugIns.push_back(file.string());
    }
  };
  for (const std::string& folder : folders()) {
    std::error_code error;
    const Contents contents(fs::absolute(folder, error));
    take(contents.files);
    for (const fs::path& vendor : contents.folders) take(Contents(vendor).files);
  }
  return plugIns;
}

}  // namespace vorto::frei0r
