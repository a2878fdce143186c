// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

// Helpers for what a test cannot see or do inside its own process.

// A fresh folder under $TMPDIR or /tmp, removed with all that is in it.
class TemporaryFolder {
 public:
  TemporaryFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "vorto-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) std::abort();
    path_ = std::filesystem::canonical(name).string();
  }
  ~TemporaryFolder() {
    std::error_code error;
    std::filesystem::remove_all(path_, error);
  }
  TemporaryFolder(const TemporaryFolder&) = delete;
  TemporaryFolder& operator=(const TemporaryFolder&) = delete;
  const std::string& path() const { return path_; }
  std::string path(const std::string& name) const { return path_ + "/" + name; }
  // Writes a file, with the folders above it; returns its path.
  std::string write(const std::string& name, std::string_view contents) const {
    const std::filesystem::path file = path(name);
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << contents;
    return file.string();
  }

 private:
  std::string path_;
};

// Collects what is written to a file descriptor of this process until text() is called.
class Capture {
 public:
  explicit Capture(int descriptor) : descriptor_(descriptor), saved_(dup(descriptor)) {
    std::fflush(nullptr);
    file_ = memfd_create("capture", MFD_CLOEXEC);
    dup2(file_, descriptor_);
  }
  ~Capture() { text(); }
  Capture(const Capture&) = delete;
  Capture& operator=(const Capture&) = delete;

  std::string text() {
    if (saved_ < 0) return {};
    std::fflush(nullptr);
    dup2(saved_, descriptor_);
    close(saved_);
    saved_ = -1;
    const std::string result = contents(file_);
    close(file_);
    return result;
  }

  static std::string contents(int file) {
    std::string text(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
    const ssize_t count = pread(file, text.data(), text.size(), 0);
    text.resize(count > 0 ? static_cast<std::size_t>(count) : 0);
    return text;
  }

 private:
  int descriptor_;
  int saved_;
  int file_ = -1;
};

inline std::ptrdiff_t openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

// Two connected stream sockets.
class SocketPair {
 public:
  SocketPair() {
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends_) != 0) std::abort();
  }
  SocketPair(const SocketPair&) = delete;
  SocketPair& operator=(const SocketPair&) = delete;
  ~SocketPair() {
    closeTheirs();
    close(ours());
  }
  int ours() const { return ends_[0]; }
  int theirs() const { return ends_[1]; }
  void closeTheirs() {
    if (theirs() >= 0) close(theirs());
    ends_[1] = -1;
  }

 private:
  int ends_[2];
};

struct ChildResult {
  pid_t process = 0;
  int status = 0;  // as waitpid() gives it
  std::string output;
  std::string errors;

  bool exitedWith(int code) const { return WIFEXITED(status) && WEXITSTATUS(status) == code; }
  bool killedBy(int signal) const { return WIFSIGNALED(status) && WTERMSIG(status) == signal; }
};

// Runs `work` in a forked child, which then exits with what it answers.
inline ChildResult RunInChild(const std::function<int()>& work) {
  std::fflush(nullptr);
  const int output = memfd_create("output", MFD_CLOEXEC);
  const int errors = memfd_create("errors", MFD_CLOEXEC);
  ChildResult result;
  result.process = fork();
  if (result.process == 0) {
    dup2(output, STDOUT_FILENO);
    dup2(errors, STDERR_FILENO);
    const int code = work();
    std::fflush(nullptr);
    _exit(code);
  }
  if (result.process > 0) waitpid(result.process, &result.status, 0);
  result.output = Capture::contents(output);
  result.errors = Capture::contents(errors);
  close(output);
  close(errors);
  return result;
}
