// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/OutputFile.h"

#include "Host/Messages/Failure.h"

#include <unistd.h>

#include <algorithm>
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

OutputFile::OutputFile(const std::string& path) : path_(path) {
  checkOutput(path);
  std::string reason;
  if (!file_.begin(path, &reason)) refuse(path, reason);
}

bool OutputFile::write(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  return file_.write(offset, bytes, &fault_);
}

std::size_t OutputFile::read(std::uint64_t offset, std::span<std::uint8_t> bytes) {
  return file_.read(offset, bytes);
}

void OutputFile::commit() {
  std::string reason;
  if (!file_.commit(&reason)) refuse(path_, reason);
}

bool OutputBuffer::write(std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  const std::uint64_t end = offset + bytes.size();
  if (end > bytes_.size()) bytes_.resize(static_cast<std::size_t>(end));
  std::ranges::copy(bytes, bytes_.begin() + static_cast<std::ptrdiff_t>(offset));
  return true;
}

std::size_t OutputBuffer::read(std::uint64_t offset, std::span<std::uint8_t> bytes) {
  if (offset >= bytes_.size()) return 0;
  const std::size_t size = std::min<std::size_t>(bytes.size(), bytes_.size() - static_cast<std::size_t>(offset));
  std::copy_n(bytes_.begin() + static_cast<std::ptrdiff_t>(offset), size, bytes.begin());
  return size;
}

}  // namespace host
