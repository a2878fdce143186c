// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPlugInVerdicts.h"

#include "Platform/Foundation/NSFiles.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace {

namespace fs = std::filesystem;

constexpr off_t kLargestCache = 1 << 20;

// Empty when the environment names none: a relative one would depend on where the process stands.
std::string cacheFolder() {
  const char* cache = std::getenv("XDG_CACHE_HOME");
  if (cache && *cache == '/') return std::string(cache) + "/vorto";
  const char* home = std::getenv("HOME");
  return home && *home == '/' ? std::string(home) + "/.cache/vorto" : std::string();
}

// A file of this user's own that nobody else writes.
bool isTrusted(const std::string& path) {
  struct stat status;
  return ::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode) && status.st_uid == ::geteuid() &&
         (status.st_mode & (S_IWGRP | S_IWOTH)) == 0 && status.st_size <= kLargestCache;
}

bool isOneLine(const std::string& text) {
  return text.find_first_of(std::string("\n\t\0", 3)) == std::string::npos;
}

}  // namespace

std::optional<QCPlugInFile> QCPlugInFile::of(const std::string& path) {
  std::error_code error;
  const std::string canonical = fs::canonical(path, error).string();
  struct stat status;
  if (error || ::stat(canonical.c_str(), &status) != 0) return std::nullopt;
  std::ostringstream state;
  state.imbue(std::locale::classic());
  state << status.st_size << ' ' << status.st_mtim.tv_sec << '.' << status.st_mtim.tv_nsec << ' '
        << status.st_ctim.tv_sec << '.' << status.st_ctim.tv_nsec << ' ' << status.st_dev << ' ' << status.st_ino;
  return QCPlugInFile{canonical, state.str()};
}

QCPlugInVerdicts::QCPlugInVerdicts(const std::string& program) {
  const std::optional<QCPlugInFile> self = QCPlugInFile::of(program);
  const std::string folder = cacheFolder();
  if (!self || folder.empty()) return;
  path_ = folder + "/plug-ins";
  heading_ = "vorto plug-ins, interface " + std::to_string(QCPlugInInterfaceVersion) + ", " + self->state;
  read();
}

// Lines "path, state, cause" with tabs between them; what is no such line is passed over.
void QCPlugInVerdicts::read() {
  const auto bytes = isTrusted(path_) ? NSReadFile(path_, nullptr) : std::nullopt;
  if (!bytes) return;
  std::istringstream lines(std::string(bytes->begin(), bytes->end()));
  std::string line;
  if (!std::getline(lines, line) || line != heading_) return;
  while (std::getline(lines, line)) {
    const std::size_t first = line.find('\t');
    const std::size_t second = first == std::string::npos ? first : line.find('\t', first + 1);
    if (second == std::string::npos || !isOneLine(line.substr(second + 1))) continue;
    verdicts_[line.substr(0, first)] = {line.substr(first + 1, second - first - 1), line.substr(second + 1)};
  }
}

void QCPlugInVerdicts::write() const {
  if (path_.empty()) return;
  std::string text = heading_ + '\n';
  for (const auto& [path, verdict] : verdicts_) text += path + '\t' + verdict.state + '\t' + verdict.cause + '\n';
  std::error_code error;
  const fs::path folder = fs::path(path_).parent_path();
  if (!fs::exists(folder, error)) {
    fs::create_directories(folder.parent_path(), error);
    ::mkdir(folder.c_str(), 0700);
  }
  if (isTrusted(path_) || !fs::exists(fs::symlink_status(path_, error))) {
    NSWriteFile(path_, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()}, nullptr);
  }
}

std::optional<std::string> QCPlugInVerdicts::find(const QCPlugInFile& file) const {
  const auto found = verdicts_.find(file.path);
  if (found == verdicts_.end() || found->second.state != file.state) return std::nullopt;
  return found->second.cause;
}

void QCPlugInVerdicts::add(const QCPlugInFile& file, const std::string& cause) {
  if (!isOneLine(file.path) || !isOneLine(cause)) return;
  verdicts_[file.path] = {file.state, cause};
  write();
}
