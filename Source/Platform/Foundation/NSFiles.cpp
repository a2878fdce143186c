// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/PropertyList.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
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

void explain(std::string* reason, const std::string& text) {
  if (reason != nullptr) {
    *reason = text;
  }
}

void explainError(std::string* reason, const char* what) {
  explain(reason, std::string(what) + ": " + std::strerror(errno));
}

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

// Where the bytes go: the file that a chain of symbolic links leads to, also when that file is not there yet.
std::optional<std::string> finalPath(std::string path) {
  for (int links = 0; links < 40; ++links) {
    struct stat status;
    if (::lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode)) {
      return path;
    }
    char target[PATH_MAX];
    const ssize_t length = ::readlink(path.c_str(), target, sizeof target);
    if (length < 0) {
      return std::nullopt;
    }
    const std::string text(target, static_cast<std::size_t>(length));
    const std::size_t slash = path.rfind('/');
    path = text.starts_with('/') || slash == std::string::npos ? text : path.substr(0, slash + 1) + text;
  }
  errno = ELOOP;
  return std::nullopt;
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

// Owner and permissions of the file that is replaced, or those of a new one. The owner is kept where the process may.
bool takeOver(const File& file, const struct stat* former) {
  if (former == nullptr) {
    return ::fchmod(file.descriptor(), permissionsOfNewFiles()) == 0;
  }
  const bool owned = ::fchown(file.descriptor(), former->st_uid, former->st_gid) == 0;
  const mode_t kept = owned ? 07777 : 0777;  // set-id bits never pass to another owner
  return ::fchmod(file.descriptor(), former->st_mode & kept) == 0;
}

bool fillTemporary(File& file, const struct stat* former, std::span<const std::uint8_t> bytes, std::string* reason) {
  if (!writeAll(file.descriptor(), bytes)) {
    explainError(reason, "cannot write");
    return false;
  }
  if (!takeOver(file, former)) {
    explainError(reason, "cannot set the permissions");
    return false;
  }
  if (::fsync(file.descriptor()) != 0 || !file.close()) {
    explainError(reason, "cannot finish writing");
    return false;
  }
  return true;
}

}  // namespace

std::optional<PropertyList::Bytes> NSReadFile(const std::string& path, std::string* reason) {
  // Without waiting: opening a pipe would otherwise wait for somebody to write to it.
  const File file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  struct stat status;
  if (!file.isOpen() || ::fstat(file.descriptor(), &status) != 0) {
    explainError(reason, "cannot open");
    return std::nullopt;
  }
  if (!S_ISREG(status.st_mode)) {
    explain(reason, S_ISDIR(status.st_mode) ? "is a folder" : "is no regular file");
    return std::nullopt;
  }
  // Read to the end rather than by the size: files of the kernel have size 0, and others may grow meanwhile.
  PropertyList::Bytes bytes;
  std::size_t size = 0;
  for (;;) {
    if (size > PropertyListMaximumBytes || static_cast<std::uint64_t>(status.st_size) > PropertyListMaximumBytes) {
      explain(reason, "is larger than " + std::to_string(PropertyListMaximumBytes >> 20) + " MiB");
      return std::nullopt;
    }
    bytes.resize(std::max({size + size / 2, static_cast<std::size_t>(status.st_size) + 1, std::size_t{4096}}));
    const ssize_t count = ::read(file.descriptor(), bytes.data() + size, bytes.size() - size);
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count < 0) {
      explainError(reason, "cannot read");
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
  const std::optional<std::string> target = finalPath(path);
  if (!target) {
    explainError(reason, "cannot follow the symbolic link");
    return false;
  }
  struct stat status;
  const bool exists = ::stat(target->c_str(), &status) == 0;
  if (exists && !S_ISREG(status.st_mode)) {
    explain(reason, S_ISDIR(status.st_mode) ? "is a folder" : "is no regular file");
    return false;
  }
  if (exists && ::access(target->c_str(), W_OK) != 0) {
    explainError(reason, "cannot write");
    return false;
  }
  std::string temporary = folderOf(*target) + ".write-XXXXXX";
  File file(::mkostemp(temporary.data(), O_CLOEXEC));
  if (!file.isOpen()) {
    explainError(reason, "cannot create a file beside it");
    return false;
  }
  if (!fillTemporary(file, exists ? &status : nullptr, bytes, reason)) {
    ::unlink(temporary.c_str());
    return false;
  }
  if (::rename(temporary.c_str(), target->c_str()) != 0) {
    explainError(reason, "cannot replace it");
    ::unlink(temporary.c_str());
    return false;
  }
  syncFolderOf(*target);
  return true;
}

std::optional<PropertyList> PropertyListFromFile(const std::string& path, std::string* reason,
                                                 PropertyListFormat* format) {
  const auto bytes = NSReadFile(path, reason);
  return bytes ? PropertyListFromBytes(*bytes, reason, format) : std::nullopt;
}
