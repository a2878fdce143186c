// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Processes/ChildProcess.h"

#include "Host/Files/ProgramFolder.h"
#include "Host/Messages/Failure.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <thread>
#include <utility>

namespace host {
namespace {

// Between fork and exec nothing but system calls. Descriptors are copied above those that they are to have first, as
// one may stand where another belongs.
[[noreturn]] void becomeProgram(const char* program, char* const* arguments, std::vector<int>& given, int input,
                                pid_t parent) {
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (::getppid() != parent) ::_exit(127);
  const int free = kChildSocket + static_cast<int>(given.size());
  const int source = input >= 0 ? ::fcntl(input, F_DUPFD_CLOEXEC, free) : ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  for (int& descriptor : given) {
    descriptor = ::fcntl(descriptor, F_DUPFD_CLOEXEC, free);
    if (descriptor < 0) ::_exit(127);
  }
  ::dup2(source, STDIN_FILENO);
  for (std::size_t i = 0; i < given.size(); ++i) ::dup2(given[i], kChildSocket + static_cast<int>(i));
  ::close_range(static_cast<unsigned>(free), ~0u, 0);
  ::execv(program, arguments);
  ::_exit(127);
}

std::string endingText(int status) {
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    return "it was ended by signal " + std::to_string(signal) + " (" + strsignal(signal) + ")";
  }
  return "it ended with exit code " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                           const std::vector<int>& inherited, int input) {
  const auto refuse = [&] {
    throw Failure(ExitCode::Unexpected, program + " could not be started: " + std::strerror(errno));
  };
  std::array<int, 2> ends;
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) refuse();
  socket_ = MessageSocket(ends[0]);
  const MessageSocket other(ends[1]);

  std::vector<std::string> words = arguments;
  words.insert(words.begin(), program);
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  std::vector<int> given = inherited;
  given.insert(given.begin(), other.descriptor());
  const pid_t parent = ::getpid();
  id_ = ::fork();
  if (id_ < 0) refuse();
  if (id_ == 0) becomeProgram(program.c_str(), pointers.data(), given, input, parent);
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : id_(std::exchange(other.id_, -1)), socket_(std::move(other.socket_)), ending_(std::move(other.ending_)) {}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
  std::swap(id_, other.id_);
  std::swap(socket_, other.socket_);
  std::swap(ending_, other.ending_);
  return *this;
}

ChildProcess::~ChildProcess() {
  stop();
}

void ChildProcess::stop() {
  if (id_ < 0) return;
  ::kill(id_, SIGKILL);
  int status = 0;
  while (::waitpid(id_, &status, 0) < 0 && errno == EINTR) {
  }
  id_ = -1;
  ending_ = endingText(status);
}

std::string ChildProcess::ending() {
  for (int turn = 0; turn < 100 && id_ >= 0; ++turn) {
    int status = 0;
    if (::waitpid(id_, &status, WNOHANG) == id_) {
      id_ = -1;
      ending_ = endingText(status);
    } else {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
  }
  if (id_ >= 0) {
    stop();
    ending_ = "it did not end";
  }
  return ending_;
}

std::string helperProgram(const std::string& name) {
  for (const std::string& folder : libraryFolders()) {
    const std::string path = folder + "/" + name;
    if (::access(path.c_str(), X_OK) == 0) return path;
  }
  throw Failure(ExitCode::Unexpected, "the program " + name + " is not installed");
}

}  // namespace host
