// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSFiles.h"

#include "Platform/Foundation/NSReason.h"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

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

bool writeAll(int descriptor, std::uint64_t offset, std::span<const std::uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t written = ::pwrite(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
    if (written < 0 && errno == EINTR) {
      continue;
    }
    if (written <= 0) {
      return false;
    }
    bytes = bytes.subspan(static_cast<std::size_t>(written));
    offset += static_cast<std::uint64_t>(written);
  }
  return true;
}

// Up to the end of the file, or of the bytes.
std::size_t readUpTo(int descriptor, std::uint64_t offset, std::span<std::uint8_t> bytes) {
  std::size_t size = 0;
  while (size < bytes.size()) {
    const ssize_t count =
        ::pread(descriptor, bytes.data() + size, bytes.size() - size, static_cast<off_t>(offset + size));
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      break;
    }
    size += static_cast<std::size_t>(count);
  }
  return size;
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

// Gives a file that is still empty the owner and the permissions of the one that it replaces; one that replaces none
// has those of a new file. The owner is kept where the process may; set-id bits never pass to another owner.
bool takeOver(const File& file, const struct stat* former) {
  if (former == nullptr) {
    return true;
  }
  const bool owned = ::fchown(file.descriptor(), former->st_uid, former->st_gid) == 0;
  return ::fchmod(file.descriptor(), former->st_mode & (owned ? 07777 : 01777)) == 0;
}

// The names of unfinished files, for a signal's handler: no lock, no memory taken.
std::atomic<const char*> unfinished[16];

// A name beside a target that no file had a moment ago. While it is in use NSRemoveUnfinishedFiles() removes the file.
class TemporaryName {
 public:
  explicit TemporaryName(const std::string& target) : folder_(folderOf(target)) { renew(); }
  ~TemporaryName() { withdraw(); }
  TemporaryName(const TemporaryName&) = delete;
  TemporaryName& operator=(const TemporaryName&) = delete;

  // Has `make`, which returns a negative value and sets errno when it fails, try names until one is free.
  template <class Make>
  int firstFree(Make make) {
    constexpr int mostAttempts = 100;
    int result = -1;
    for (int attempt = 0; attempt < mostAttempts; ++attempt) {
      result = make(path_.c_str());
      if (result >= 0 || errno != EEXIST) {
        break;
      }
      renew();
    }
    return result;
  }
  const std::string& path() const { return path_; }

 private:
  void renew() {
    static constexpr std::string_view letters = "abcdefghijklmnopqrstuvwxyz012345";
    std::uint8_t numbers[8] = {};
    if (::getrandom(numbers, sizeof numbers, 0) < 0) {
      numbers[0] = static_cast<std::uint8_t>(++attempts_);
    }
    withdraw();
    path_ = folder_ + ".write-";
    for (const std::uint8_t number : numbers) {
      path_ += letters[number % letters.size()];
    }
    for (auto& slot : unfinished) {
      const char* free = nullptr;
      if (slot.compare_exchange_strong(free, path_.c_str())) {
        slot_ = &slot;
        break;
      }
    }
  }
  void withdraw() {
    if (slot_ != nullptr) {
      slot_->store(nullptr);
    }
    slot_ = nullptr;
  }

  std::string folder_;
  std::string path_;
  std::atomic<const char*>* slot_ = nullptr;
  unsigned attempts_ = 0;
};

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

// A file that has no name until it is complete, where the file system knows such files: whatever ends the process
// before leaves nothing behind. Elsewhere one beside the target, under a temporary name.
class NSReplacementFile::Private {
 public:
  bool begin(const std::string& path, std::string* reason) {
    target_ = path.empty() ? path : NSResolvedPath(path, reason);
    if (target_.empty() && !path.empty()) {
      return false;
    }
    struct stat status;
    const bool exists = ::stat(target_.c_str(), &status) == 0;
    if (exists && !isReplaceable(target_, status, reason)) {
      return false;
    }
    if (exists) {
      former_ = status;
    }
    const std::string folder = folderOf(target_);
    file_.emplace(::open(folder.empty() ? "." : folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666));
    return (file_->isOpen() || openNamed(reason)) && prepare(reason);
  }

  ~Private() {
    if (name_) {
      ::unlink(name_->path().c_str());
    }
  }

  int descriptor() const { return file_->descriptor(); }

  bool commit(std::string* reason) {
    if (::fsync(descriptor()) != 0) {
      return NSRefuseWithError(reason, "cannot finish writing");
    }
    if (!name_ && !linkIn() && !copyToNamed(reason)) {
      return false;
    }
    if (!file_->close()) {
      return NSRefuseWithError(reason, "cannot finish writing");
    }
    if (::rename(name_->path().c_str(), target_.c_str()) != 0) {
      return NSRefuseWithError(reason, "cannot replace it");
    }
    name_.reset();
    syncFolderOf(target_);
    return true;
  }

 private:
  bool openNamed(std::string* reason) {
    name_.emplace(target_);
    file_.emplace(
        name_->firstFree([](const char* path) { return ::open(path, O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666); }));
    if (file_->isOpen()) {
      return true;
    }
    NSRefuseWithError(reason, "cannot create a file beside it");
    name_.reset();
    return false;
  }

  // The permissions come first: the kernel then takes the set-id bits away, or not, as it does whenever this process
  // writes to a file. Cutting the file counts as writing, also when no bytes follow.
  bool prepare(std::string* reason) {
    if (!takeOver(*file_, former_ ? &*former_ : nullptr)) {
      return NSRefuseWithError(reason, "cannot set the permissions");
    }
    return ::ftruncate(descriptor(), 0) == 0 || NSRefuseWithError(reason, "cannot write");
  }

  // Gives the file without a name a temporary one.
  bool linkIn() {
    const std::string own = "/proc/self/fd/" + std::to_string(descriptor());
    name_.emplace(target_);
    const int linked = name_->firstFree(
        [&](const char* path) { return ::linkat(AT_FDCWD, own.c_str(), AT_FDCWD, path, AT_SYMLINK_FOLLOW); });
    if (linked != 0) {
      name_.reset();
    }
    return linked == 0;
  }

  // For file systems that know files without a name and do not let them have one later.
  bool copyToNamed(std::string* reason) {
    File unnamed(::dup(descriptor()));
    if (!unnamed.isOpen() || !openNamed(reason) || !prepare(reason)) {
      return unnamed.isOpen() ? false : NSRefuseWithError(reason, "cannot finish writing");
    }
    std::vector<std::uint8_t> block(std::size_t{1} << 16);
    for (std::uint64_t offset = 0;;) {
      const std::size_t size = readUpTo(unnamed.descriptor(), offset, block);
      if (size == 0) {
        break;
      }
      if (!writeAll(descriptor(), offset, std::span(block).first(size))) {
        return NSRefuseWithError(reason, "cannot write");
      }
      offset += size;
    }
    return ::fsync(descriptor()) == 0 || NSRefuseWithError(reason, "cannot finish writing");
  }

  std::string target_;
  std::optional<struct stat> former_;
  std::optional<TemporaryName> name_;
  std::optional<File> file_;
};

NSReplacementFile::NSReplacementFile() : private_(std::make_unique<Private>()) {}

NSReplacementFile::~NSReplacementFile() = default;

bool NSReplacementFile::begin(const std::string& path, std::string* reason) {
  return private_->begin(path, reason);
}

bool NSReplacementFile::write(std::uint64_t offset, std::span<const std::uint8_t> bytes, std::string* reason) {
  return writeAll(private_->descriptor(), offset, bytes) || NSRefuseWithError(reason, "cannot write");
}

std::size_t NSReplacementFile::read(std::uint64_t offset, std::span<std::uint8_t> bytes) const {
  return readUpTo(private_->descriptor(), offset, bytes);
}

bool NSReplacementFile::commit(std::string* reason) {
  return private_->commit(reason);
}

bool NSWriteFile(const std::string& path, std::span<const std::uint8_t> bytes, std::string* reason) {
  NSReplacementFile file;
  return file.begin(path, reason) && file.write(0, bytes, reason) && file.commit(reason);
}

void NSRemoveUnfinishedFiles() {
  for (const auto& slot : unfinished) {
    if (const char* path = slot.load()) {
      ::unlink(path);
    }
  }
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
