// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/OutputFile.h"

#include "Host/Messages/Failure.h"
#include "Platform/Foundation/NSFiles.h"
#include "Platform/Foundation/PropertyList.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

namespace host {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void refuse(const std::string& path, const std::string& reason) {
  throw Failure(ExitCode::Output, "cannot write " + path + ": " + reason);
}

}  // namespace

void checkOutput(const std::string& path) {
  std::string reason = "it has no name";
  const fs::path target = NSResolvedPath(path, &reason);
  if (target.empty()) refuse(path, reason);
  const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
  std::error_code error;
  if (!fs::is_directory(folder, error)) refuse(path, "there is no folder " + folder.string());
  if (fs::is_directory(target, error)) refuse(path, "it is a folder");
  if (fs::exists(target, error) && !fs::is_regular_file(target, error)) refuse(path, "it is not a regular file");
  if (access(folder.c_str(), W_OK | X_OK) != 0)
    refuse(path, "the folder " + folder.string() + ": " + std::strerror(errno));
  if (fs::exists(target, error) && access(target.c_str(), W_OK) != 0) refuse(path, std::strerror(errno));
}

void replaceFile(const std::string& path, std::span<const std::uint8_t> bytes) {
  checkOutput(path);
  std::string reason;
  if (!NSWriteFile(path, bytes, &reason)) refuse(path, reason);
}

}  // namespace host
