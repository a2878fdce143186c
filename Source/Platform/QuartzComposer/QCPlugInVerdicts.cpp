// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPlugInVerdicts.h"

#include "Platform/Foundation/NSCacheFile.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <filesystem>
#include <sstream>

namespace {

namespace fs = std::filesystem;

constexpr const char* kCacheName = "plug-ins";
constexpr std::size_t kLargestCache = 1 << 20;

bool isOneLine(const std::string& text) {
  return text.find_first_of(std::string("\n\t\0", 3)) == std::string::npos;
}

}  // namespace

std::optional<QCPlugInFile> QCPlugInFile::of(const std::string& path) {
  std::error_code error;
  const std::string canonical = fs::canonical(path, error).string();
  std::optional<std::string> state = error ? std::nullopt : NSFileState(canonical);
  if (!state) return std::nullopt;
  return QCPlugInFile{canonical, std::move(*state)};
}

QCPlugInVerdicts::QCPlugInVerdicts(const std::string& program) {
  const std::optional<QCPlugInFile> self = QCPlugInFile::of(program);
  if (!self) return;
  heading_ = "vorto plug-ins, interface " + std::to_string(QCPlugInInterfaceVersion) + ", " + self->state;
  read();
}

// Lines "path, state, cause" with tabs between them; what is no such line is passed over.
void QCPlugInVerdicts::read() {
  const auto bytes = NSReadCacheFile(kCacheName, kLargestCache);
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
  if (heading_.empty()) return;
  std::string text = heading_ + '\n';
  for (const auto& [path, verdict] : verdicts_) text += path + '\t' + verdict.state + '\t' + verdict.cause + '\n';
  NSWriteCacheFile(kCacheName, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
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
