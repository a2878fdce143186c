// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSCacheFile.h"

#include "Platform/Foundation/NSFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <limits>

namespace {

namespace fs = std::filesystem;

// Empty when the environment names none: a relative one would depend on where the process stands.
std::string cacheFolder() {
  const char* cache = std::getenv("XDG_CACHE_HOME");
  if (cache && *cache == '/') return std::string(cache) + "/vorto";
  const char* home = std::getenv("HOME");
  return home && *home == '/' ? std::string(home) + "/.cache/vorto" : std::string();
}

// A file of this user's own that nobody else writes.
bool isTrusted(const std::string& path, std::size_t mostBytes) {
  struct stat status;
  return ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid() &&
         (status.st_mode & (S_IWGRP | S_IWOTH)) == 0 && static_cast<std::size_t>(status.st_size) <= mostBytes;
}

}  // namespace

std::optional<PropertyList::Bytes> NSReadCacheFile(const std::string& name, std::size_t mostBytes) {
  const std::string folder = cacheFolder();
  const std::string path = folder + '/' + name;
  if (folder.empty() || !isTrusted(path, mostBytes)) return std::nullopt;
  return NSReadFile(path, nullptr);
}

void NSWriteCacheFile(const std::string& name, std::span<const std::uint8_t> bytes) {
  const fs::path folder = cacheFolder();
  if (folder.empty()) return;
  const std::string path = (folder / name).string();
  std::error_code error;
  if (!fs::exists(folder, error)) {
    fs::create_directories(folder.parent_path(), error);
    ::mkdir(folder.c_str(), 0700);
  }
  if (isTrusted(path, std::numeric_limits<std::size_t>::max()) || !fs::exists(fs::symlink_status(path, error))) {
    NSWriteFile(path, bytes, nullptr);
  }
}

std::optional<std::string> NSFileState(const std::string& path) {
  struct stat status;
  if (::stat(path.c_str(), &status) != 0) return std::nullopt;
  const auto text = [](auto number) { return std::to_string(number); };
  return text(status.st_size) + ' ' + text(status.st_mtim.tv_sec) + '.' + text(status.st_mtim.tv_nsec) + ' ' +
         text(status.st_ctim.tv_sec) + '.' + text(status.st_ctim.tv_nsec) + ' ' + text(status.st_dev) + ' ' +
         text(status.st_ino);
}
