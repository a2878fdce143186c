// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Processes/ChildProcess.h"

#include "Host/Files/ProgramFolder.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Signals.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <thread>
#include <utility>

namespace host {
namespace {

// Signals wait while there is a child that is not yet its program: what this one does when they come is not for it.
class SignalsHeld {
 public:
  SignalsHeld() {
    sigset_t all;
    ::sigfillset(&all);
    ::sigprocmask(SIG_SETMASK, &all, &former_);
  }
  ~SignalsHeld() { ::sigprocmask(SIG_SETMASK, &former_, nullptr); }
  SignalsHeld(const SignalsHeld&) = delete;
  SignalsHeld& operator=(const SignalsHeld&) = delete;

  // In the child: those that are ignored stay so.
  void letGoInChild() const {
    for (const int signal : kEndingSignals) {
      struct sigaction action {};
      if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) ::signal(signal, SIG_DFL);
    }
    ::sigprocmask(SIG_SETMASK, &former_, nullptr);
  }

 private:
  sigset_t former_;
};

// Between fork and exec nothing but system calls. Descriptors are copied above those that they are to have first, as
// one may stand where another belongs.
[[noreturn]] void becomeProgram(const char* program, char* const* arguments, std::vector<int>& given, int input,
                                pid_t parent, const SignalsHeld& signals, int failure) {
  const auto fail = [&] {
    const int cause = errno;
    (void)!::write(failure, &cause, sizeof cause);
    ::_exit(127);
  };
  signals.letGoInChild();
  ::prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (::getppid() != parent) ::_exit(127);
  const int free = kChildSocket + static_cast<int>(given.size());
  failure = ::fcntl(failure, F_DUPFD_CLOEXEC, free);
  if (failure < 0) ::_exit(127);
  const int source = input >= 0 ? ::fcntl(input, F_DUPFD_CLOEXEC, free) : ::open("/dev/null", O_RDONLY | O_CLOEXEC);
  for (int& descriptor : given) {
    descriptor = ::fcntl(descriptor, F_DUPFD_CLOEXEC, free);
    if (descriptor < 0) fail();
  }
  // Of two equal numbers nothing would be copied, and the descriptor closed with the others.
  if (source == STDIN_FILENO) ::fcntl(source, F_SETFD, 0);
  bool isInPlace = source >= 0 && ::dup2(source, STDIN_FILENO) >= 0;
  for (std::size_t i = 0; i < given.size(); ++i) {
    isInPlace = isInPlace && ::dup2(given[i], kChildSocket + static_cast<int>(i)) >= 0;
  }
  if (!isInPlace) fail();
  ::close_range(static_cast<unsigned>(free), ~0u, CLOSE_RANGE_CLOEXEC);
  ::execv(program, arguments);
  fail();
  ::_exit(127);
}

std::string causeOf(int status) {
  if (WIFSIGNALED(status)) {
    const int signal = WTERMSIG(status);
    const char* const name = ::sigdescr_np(signal);
    return "signal " + std::to_string(signal) + (name ? " (" + std::string(name) + ")" : "");
  }
  return "exit code " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

ChildProcess::ChildProcess(const std::string& program, const std::vector<std::string>& arguments,
                           const std::vector<int>& inherited, int input, Start start) {
  const auto refuse = [&] {
    throw Failure(ExitCode::Unexpected, program + " could not be started: " + std::strerror(errno));
  };
  std::array<int, 2> ends;
  if (::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) refuse();
  socket_ = MessageSocket(ends[0]);
  const MessageSocket other(ends[1]);

  std::array<int, 2> failure;
  if (::pipe2(failure.data(), O_CLOEXEC) != 0) refuse();
  const MessageSocket failureEnd(failure[0]);  // closes it
  MessageSocket childsFailureEnd(failure[1]);

  std::vector<std::string> words = arguments;
  words.insert(words.begin(), program);
  std::vector<char*> pointers;
  pointers.reserve(words.size() + 1);
  for (std::string& word : words) pointers.push_back(word.data());
  pointers.push_back(nullptr);
  std::vector<int> given = inherited;
  given.insert(given.begin(), other.descriptor());
  const pid_t parent = ::getpid();
  const SignalsHeld signals;
  id_ = ::fork();
  if (id_ < 0) refuse();
  if (id_ == 0) becomeProgram(program.c_str(), pointers.data(), given, input, parent, signals, failure[1]);
  childsFailureEnd = MessageSocket();
  if (start == Start::Unwatched) {
    endWithThisProgram(id_);
    return;
  }
  int cause = 0;  // why it is no program; nothing comes once it is one
  ssize_t size;
  while ((size = ::read(failure[0], &cause, sizeof cause)) < 0 && errno == EINTR) {
  }
  if (size == sizeof cause) {
    ::waitpid(std::exchange(id_, -1), nullptr, 0);
    errno = cause;
    refuse();
  }
  endWithThisProgram(id_);
}

std::size_t mostDescriptors() {
  rlimit limit{};
  if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) return 1024;
  const rlim_t former = std::exchange(limit.rlim_cur, limit.rlim_max);
  return static_cast<std::size_t>(::setrlimit(RLIMIT_NOFILE, &limit) == 0 ? limit.rlim_max : former);
}

ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : id_(std::exchange(other.id_, -1)), socket_(std::move(other.socket_)), status_(other.status_) {}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
  std::swap(id_, other.id_);
  std::swap(socket_, other.socket_);
  std::swap(status_, other.status_);
  return *this;
}

ChildProcess::~ChildProcess() {
  stop();
}

void ChildProcess::kill() {
  if (id_ >= 0) ::kill(id_, SIGKILL);
}

bool ChildProcess::hasEnded(std::chrono::milliseconds patience) {
  const auto end = std::chrono::steady_clock::now() + patience;
  while (id_ >= 0) {
    const SignalsHeld signals;  // one that comes must not meet the number of a process that is no more
    const pid_t found = ::waitpid(id_, &status_, WNOHANG);
    if (found == id_ || (found < 0 && errno != EINTR)) {
      noLongerEnds(std::exchange(id_, -1));
    } else if (std::chrono::steady_clock::now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(2));
    } else {
      return false;
    }
  }
  return true;
}

void ChildProcess::stop() {
  if (id_ < 0) return;
  ::kill(id_, SIGTERM);
  if (hasEnded(std::chrono::seconds(1))) return;
  ::kill(id_, SIGKILL);
  while (!hasEnded(std::chrono::seconds(1))) {
  }
}

bool ChildProcess::waitForEnd() {
  if (hasEnded(std::chrono::seconds(1))) return true;
  stop();
  return false;
}

std::optional<std::string> ChildProcess::causeIfEnded() const {
  if (id_ >= 0) return std::nullopt;
  return causeOf(status_);
}

std::string ChildProcess::ending() {
  if (!waitForEnd()) return "it did not end";
  return std::string(WIFSIGNALED(status_) ? "it was ended by " : "it ended with ") + causeOf(status_);
}

std::string ChildProcess::cause() {
  return waitForEnd() ? causeOf(status_) : "silence";
}

std::string helperProgram(const std::string& name) {
  for (const std::string& folder : libraryFolders()) {
    std::string path = folder + "/" + name;
    if (::access(path.c_str(), X_OK) == 0) return path;
  }
  throw Failure(ExitCode::Unexpected, "the program " + name + " is not installed");
}

}  // namespace host
