// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSFiles.h"

#include "Platform/Foundation/NSReason.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <utility>

namespace {

// A file descriptor that is closed when it goes out of scope.
class File {
 public:
  explicit File(int descriptor) : descriptor_(descriptor) {}
  ~File() {
    if (descriptor_ >= 0) {
      ::close(descriptor_);
    }
  }
  File(const File&) = delete;
  File& operator=(const File&) = delete;
  bool isOpen() const { return descriptor_ >= 0; }
  int descriptor() const { return descriptor_; }
  // Some file systems tell of a failed write only here.
  bool close() { return ::close(std::exchange(descriptor_, -1)) == 0; }

 private:
  int descriptor_;
};

bool writeAll(int descriptor, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
    if (written < 0 && errno == EINTR) {
      continue;
    }
    if (written <= 0) {
      return false;
    }
    bytes = bytes.subspan(static_cast<std::size_t>(written));
  }
  return true;
}

// The permissions of a file that is not there yet, as open() would give them.
mode_t permissionsOfNewFiles() {
  const mode_t mask = ::umask(0);
  ::umask(mask);
  return 0666 & ~mask;
}

// With its slash, so that a name can follow; empty for the current folder.
std::string folderOf(const std::string& path) {
  const std::size_t slash = path.rfind('/');
  return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// Makes entries of a folder survive a power cut; a file system that cannot is no failure of the write.
void syncFolderOf(const std::string& path) {
  const std::string folder = folderOf(path);
  const File file(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (file.isOpen()) {
    ::fsync(file.descriptor());
  }
}

// Gives a file that is still empty the owner and the permissions of the one that it replaces, or those of a new one.
// The owner is kept where the process may; set-id bits never pass to another owner.
bool takeOver(const File& file, const struct stat* former) {
  if (former == nullptr) {
    return ::fchmod(file.descriptor(), permissionsOfNewFiles()) == 0;
  }
  const bool owned = ::fchown(file.descriptor(), former->st_uid, former->st_gid) == 0;
  return ::fchmod(file.descriptor(), former->st_mode & (owned ? 07777 : 01777)) == 0;
}

// The permissions come first: the kernel then takes the set-id bits away, or not, as it does whenever this process
// writes to a file. Cutting the file counts as writing, also when no bytes follow.
bool fillTemporary(File& file, const struct stat* former, std::span<const std::uint8_t> bytes, std::string* reason) {
  if (!takeOver(file, former)) {
    return NSRefuseWithError(reason, "cannot set the permissions");
  }
  if (::ftruncate(file.descriptor(), 0) != 0 || !writeAll(file.descriptor(), bytes)) {
    return NSRefuseWithError(reason, "cannot write");
  }
  return (::fsync(file.descriptor()) == 0 && file.close()) || NSRefuseWithError(reason, "cannot finish writing");
}

bool isReplaceable(const std::string& target, const struct stat& status, std::string* reason) {
  if (!S_ISREG(status.st_mode)) {
    return NSRefuse(reason, S_ISDIR(status.st_mode) ? "is a folder" : "is no regular file");
  }
  return ::access(target.c_str(), W_OK) == 0 || NSRefuseWithError(reason, "cannot write");
}

}  // namespace

std::optional<PropertyList::Bytes> NSReadFile(const std::string& path, std::string* reason) {
  // Without waiting: opening a pipe would otherwise wait for somebody to write to it.
  const File file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  struct stat status;
  if (!file.isOpen() || ::fstat(file.descriptor(), &status) != 0) {
    NSRefuseWithError(reason, "cannot open");
    return std::nullopt;
  }
  if (!S_ISREG(status.st_mode)) {
    NSRefuse(reason, S_ISDIR(status.st_mode) ? "is a folder" : "is no regular file");
    return std::nullopt;
  }
  // Read to the end rather than by the size: files of the kernel have size 0, and others may grow meanwhile.
  PropertyList::Bytes bytes;
  std::size_t size = 0;
  for (;;) {
    if (size > PropertyListMaximumBytes || static_cast<std::uint64_t>(status.st_size) > PropertyListMaximumBytes) {
      NSRefuse(reason, "is larger than " + std::to_string(PropertyListMaximumBytes >> 20) + " MiB");
      return std::nullopt;
    }
    bytes.resize(std::max({size + size / 2, static_cast<std::size_t>(status.st_size) + 1, std::size_t{4096}}));
    const ssize_t count = ::read(file.descriptor(), bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      NSRefuseWithError(reason, "cannot read");
      return std::nullopt;
    }
    if (count == 0) {
      break;
    }
    size += static_cast<std::size_t>(count);
  }
  bytes.resize(size);
  return bytes;
}

bool NSWriteFile(const std::string& path, std::span<const std::uint8_t> bytes, std::string* reason) {
  const std::string target = path.empty() ? path : NSResolvedPath(path, reason);
  if (target.empty() && !path.empty()) {
    return false;
  }
  struct stat status;
  const bool exists = ::stat(target.c_str(), &status) == 0;
  if (exists && !isReplaceable(target, status, reason)) {
    return false;
  }
  std::string temporary = folderOf(target) + ".write-XXXXXX";
  File file(::mkostemp(temporary.data(), O_CLOEXEC));
  if (!file.isOpen()) {
    return NSRefuseWithError(reason, "cannot create a file beside it");
  }
  if (!fillTemporary(file, exists ? &status : nullptr, bytes, reason)) {
    ::unlink(temporary.c_str());
    return false;
  }
  if (::rename(temporary.c_str(), target.c_str()) != 0) {
    NSRefuseWithError(reason, "cannot replace it");
    ::unlink(temporary.c_str());
    return false;
  }
  syncFolderOf(target);
  return true;
}

std::string NSResolvedPath(const std::string& path, std::string* reason) {
  constexpr int mostLinks = 40;  // as many as the kernel follows
  std::string current = path;
  for (int links = 0; links < mostLinks; ++links) {
    struct stat status;
    if (::lstat(current.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) {
      return current;
    }
    char target[PATH_MAX];
    const ssize_t length = ::readlink(current.c_str(), target, sizeof target);
    if (length < 0) {
      NSRefuseWithError(reason, "cannot follow the symbolic link");
      return {};
    }
    const std::string text(target, static_cast<std::size_t>(length));
    current = text.starts_with('/') ? text : folderOf(current).append(text);
  }
  errno = ELOOP;
  NSRefuseWithError(reason, "cannot follow the symbolic link");
  return {};
}
