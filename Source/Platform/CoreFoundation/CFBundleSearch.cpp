// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFBundleSearch.h"

#include "Platform/CoreFoundation/CFBundle.h"
#include "Platform/CoreFoundation/CFBundleRegistry.h"
#include "Platform/CoreFoundation/CFRuntime.h"

#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <deque>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

struct Folders {
  std::deque<std::string> unsearched;
  bool ownAdded = false;
};

Folders& TheFolders() {
  // Never destroyed: bundles may be looked for while the process ends.
  static Folders& folders = *new Folders;
  return folders;
}

// Opens every bundle of a folder for good.
void Search(const std::string& folder) {
  std::vector<std::string> paths;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
    if (entry->path().extension() == ".bundle") paths.push_back(entry->path().string());
  }
  std::sort(paths.begin(), paths.end());
  for (const std::string& path : paths) {
    std::string reason;
    if (CFBundleCreate(kCFAllocatorDefault, path, &reason) == nullptr) CFReport("%s: %s", path.c_str(), reason.c_str());
  }
}

}  // namespace

std::string CFOwnFolder() {
  Dl_info info{};
  link_map* map = nullptr;
  if (dladdr1(reinterpret_cast<void*>(&CFOwnFolder), &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP) == 0) {
    return {};
  }
  const bool isProgram = map == nullptr || map->l_name == nullptr || *map->l_name == '\0';
  std::error_code error;
  const fs::path path = fs::canonical(isProgram ? "/proc/self/exe" : map->l_name, error);
  return error ? std::string() : path.parent_path().string();
}

std::vector<std::string> CFBundleFoldersBeside(const std::string& folder) {
  std::vector<std::string> folders;
  if (folder.empty()) return folders;
  for (const char* relative : {"", "../lib", "../share/vorto", "../../share/vorto"}) {
    std::string path = (fs::path(folder) / relative).lexically_normal().string();
    if (path.size() > 1 && path.back() == '/') path.pop_back();
    if (std::find(folders.begin(), folders.end(), path) == folders.end()) folders.push_back(path);
  }
  return folders;
}

CFBundleRef CFBundleGetBundleWithIdentifier(CFStringRef identifier) {
  if (identifier == nullptr) return nullptr;
  Folders& folders = TheFolders();
  for (;;) {
    if (CFBundleRef bundle = CFBundleRegistryFindIdentifier(identifier)) return bundle;
    if (folders.unsearched.empty()) {
      if (folders.ownAdded) return nullptr;
      folders.ownAdded = true;
      const std::vector<std::string> own = CFBundleFoldersBeside(CFOwnFolder());
      folders.unsearched.assign(own.begin(), own.end());
      continue;
    }
    const std::string folder = folders.unsearched.front();
    folders.unsearched.pop_front();
    Search(folder);
  }
}

void CFBundleAddSearchFolder(const std::string& folder) {
  TheFolders().unsearched.push_back(folder);
}
