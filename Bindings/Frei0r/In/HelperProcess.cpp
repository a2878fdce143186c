// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/HelperProcess.h"

#include "Bindings/Frei0r/In/Descriptors.h"
#include "Platform/Foundation/NSReason.h"
#include "Platform/QuartzComposer/QCPatch.h"

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <charconv>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <utility>
#include <vector>

extern char** environ;

namespace vorto::frei0r {
namespace {

constexpr int kAboveTheirs = 16;  // no number that a descriptor has in the other process

// The arguments of posix_spawn() that need to be given back.
class SpawnSettings {
 public:
  SpawnSettings() {
    posix_spawn_file_actions_init(&files);
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  }
  ~SpawnSettings() {
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&files);
  }
  SpawnSettings(const SpawnSettings&) = delete;
  SpawnSettings& operator=(const SpawnSettings&) = delete;

  posix_spawn_file_actions_t files;
  posix_spawnattr_t attributes;
};

std::string signalText(int signal) {
  const char* const name = ::sigdescr_np(signal);
  return "was ended by signal " + std::to_string(signal) + (name ? " (" + std::string(name) + ")" : "");
}

// Whether the process has ended within that time; without the means to wait for it, whether it has now.
bool hasEnded(pid_t process, std::chrono::milliseconds patience) {
  const Descriptor handle(static_cast<int>(::syscall(SYS_pidfd_open, process, 0)));
  pollfd waiting{handle.number(), POLLIN, 0};
  int ready;
  do {
    ready = ::poll(&waiting, 1, static_cast<int>(patience.count()));
  } while (ready < 0 && errno == EINTR);
  return ready > 0;
}

}  // namespace

Descriptor::Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept {
  if (this != &other) {
    close();
    number_ = std::exchange(other.number_, -1);
  }
  return *this;
}

Descriptor::~Descriptor() {
  close();
}

void Descriptor::close() {
  if (number_ >= 0) ::close(std::exchange(number_, -1));
}

std::chrono::milliseconds patience(std::chrono::seconds unlessToldOtherwise) {
  constexpr double kLongest = 1e6;
  const std::string text = [] {
    const char* const value = std::getenv("VORTO_FREI0R_TIMEOUT");
    return std::string(value ? value : "");
  }();
  double seconds = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), seconds);
  const bool isNumber = parsed.ec == std::errc() && parsed.ptr == text.data() + text.size();
  if (!isNumber || !(seconds > 0)) return unlessToldOtherwise;
  return std::chrono::milliseconds(static_cast<std::int64_t>(std::min(seconds, kLongest) * 1000) + 1);
}

const std::string& helperProgram() {
  static const std::string program = [] {
    Dl_info library{};
    if (::dladdr(reinterpret_cast<const void*>(&QCPatch::registerPatch), &library) == 0) return std::string();
    std::error_code error;
    const auto folder = std::filesystem::canonical(library.dli_fname, error).parent_path();
    const std::string path = (folder / "vorto" / "vorto-frei0r-runner").string();
    return !error && ::access(path.c_str(), X_OK) == 0 ? path : std::string();
  }();
  return program;
}

HelperProcess::HelperProcess(HelperProcess&& other) noexcept
    : id_(std::exchange(other.id_, 0)), lifeline_(std::move(other.lifeline_)) {}

HelperProcess& HelperProcess::operator=(HelperProcess&& other) noexcept {
  if (this != &other) {
    end(std::chrono::milliseconds(0));
    id_ = std::exchange(other.id_, 0);
    lifeline_ = std::move(other.lifeline_);
  }
  return *this;
}

HelperProcess::~HelperProcess() {
  end(std::chrono::milliseconds(0));
}

bool HelperProcess::start(const char* task, const std::string& plugIn, std::initializer_list<int> descriptors,
                          Complaints complaints, std::string* reason) {
  end(std::chrono::milliseconds(0));
  int ends[2];
  if (::pipe2(ends, O_CLOEXEC) != 0) return NSRefuseWithError(reason, "no pipe to the process of the plug-in");
  const Descriptor theirs(ends[0]);
  lifeline_ = Descriptor(ends[1]);

  SpawnSettings settings;
  std::vector<Descriptor> copies;
  int number = kLifeline;
  const auto pass = [&](int descriptor) {
    copies.emplace_back(::fcntl(descriptor, F_DUPFD_CLOEXEC, kAboveTheirs));
    posix_spawn_file_actions_adddup2(&settings.files, copies.back().number(), number++);
  };
  posix_spawn_file_actions_addopen(&settings.files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&settings.files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  if (complaints == Complaints::Dropped) {
    posix_spawn_file_actions_addopen(&settings.files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  }
  pass(theirs.number());
  for (const int descriptor : descriptors) pass(descriptor);
  posix_spawn_file_actions_addclosefrom_np(&settings.files, number);

  std::string words[] = {helperProgram(), task, plugIn};
  char* arguments[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
  const int error = ::posix_spawn(&id_, words[0].c_str(), &settings.files, &settings.attributes, arguments, environ);
  if (error == 0) return true;
  id_ = 0;
  errno = error;
  return NSRefuseWithError(reason, "the process of the plug-in cannot be started");
}

std::string HelperProcess::end(std::chrono::milliseconds patience) {
  if (id_ <= 0) return "ended";
  if (patience.count() == 0 || !hasEnded(id_, patience)) ::kill(id_, SIGKILL);
  const pid_t process = std::exchange(id_, 0);
  lifeline_.close();
  int status = 0;
  pid_t ended;
  do {
    ended = ::waitpid(process, &status, 0);
  } while (ended < 0 && errno == EINTR);
  if (ended != process) return "ended";  // a host that collects its children itself has taken the answer
  if (WIFSIGNALED(status)) return signalText(WTERMSIG(status));
  return "ended with exit code " + std::to_string(WEXITSTATUS(status));
}

}  // namespace vorto::frei0r
