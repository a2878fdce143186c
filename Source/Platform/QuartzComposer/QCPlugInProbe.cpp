// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPlugInProbe.h"

#include "Platform/CoreFoundation/CFBundleSearch.h"
#include "Platform/Foundation/NSReason.h"
#include "Platform/QuartzComposer/QCPlugInBundle.h"
#include "Platform/QuartzComposer/QCPlugInVerdicts.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <cstring>

extern char** environ;

namespace {

constexpr std::chrono::seconds kLongestProbe{5};
constexpr int kReportDescriptor = 3;  // in the probe

bool isProbe = false;  // this process is one: what its plug-in loads in turn is not tried beforehand

enum class Outcome { Survived, Died, Hung, NotTried };

struct Pipe {
  int ends[2] = {-1, -1};
  Pipe() {
    if (::pipe2(ends, O_CLOEXEC) != 0) ends[0] = ends[1] = -1;
  }
  ~Pipe() {
    closeEnd(0);
    closeEnd(1);
  }
  Pipe(const Pipe&) = delete;
  Pipe& operator=(const Pipe&) = delete;
  void closeEnd(int end) {
    if (ends[end] >= 0) ::close(ends[end]);
    ends[end] = -1;
  }
};

// Its standard streams lead nowhere, signals are as in a new program. 0 when it could not be started.
pid_t start(const std::string& program, const std::string& bundle, int report) {
  // In the probe the descriptor gets another number, which also keeps it open there.
  const int source = ::fcntl(report, F_DUPFD_CLOEXEC, kReportDescriptor + 1);
  if (source < 0) return 0;
  posix_spawn_file_actions_t files;
  posix_spawn_file_actions_init(&files);
  posix_spawn_file_actions_addopen(&files, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&files, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_adddup2(&files, source, kReportDescriptor);
  posix_spawnattr_t attributes;
  posix_spawnattr_init(&attributes);
  sigset_t signals;
  sigemptyset(&signals);
  posix_spawnattr_setsigmask(&attributes, &signals);
  sigfillset(&signals);
  posix_spawnattr_setsigdefault(&attributes, &signals);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);
  std::string words[] = {program, bundle, std::to_string(kReportDescriptor)};
  char* arguments[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
  pid_t process = 0;
  const int error = ::posix_spawn(&process, program.c_str(), &files, &attributes, arguments, environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&files);
  ::close(source);
  return error == 0 ? process : 0;
}

// Waits for the byte that the probe writes once it has loaded the bundle, then for the end of the pipe, which is that
// of the process.
Outcome reported(int descriptor) {
  const auto end = std::chrono::steady_clock::now() + kLongestProbe;
  for (Outcome outcome = Outcome::Died;;) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
    pollfd waiting{descriptor, POLLIN, 0};
    const int ready = left.count() > 0 ? ::poll(&waiting, 1, static_cast<int>(left.count())) : 0;
    if (ready < 0 && errno == EINTR) continue;
    if (ready <= 0) return Outcome::Hung;
    char byte = 0;
    const ssize_t count = ::read(descriptor, &byte, 1);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return outcome;
    outcome = Outcome::Survived;
  }
}

// How the process ended, in words; empty when it ended well, and when a host that collects its children itself has
// taken the answer.
std::string endOf(pid_t process) {
  int status = 0;
  pid_t ended;
  do {
    ended = ::waitpid(process, &status, 0);
  } while (ended < 0 && errno == EINTR);
  if (ended != process || status == 0) return {};
  if (WIFSIGNALED(status)) {
    const char* name = ::sigdescr_np(WTERMSIG(status));
    return name ? name : "by a signal";
  }
  return "with the exit code " + std::to_string(WEXITSTATUS(status));
}

Outcome probe(const std::string& program, const std::string& bundle, std::string* reason) {
  Pipe report;
  const pid_t process = report.ends[0] < 0 ? 0 : start(program, bundle, report.ends[1]);
  if (process == 0) return Outcome::NotTried;
  report.closeEnd(1);
  const Outcome outcome = reported(report.ends[0]);
  if (outcome == Outcome::Hung) {
    ::kill(process, SIGKILL);
    NSRefuse(reason, "loading it takes longer than " + std::to_string(kLongestProbe.count()) + " seconds");
  }
  const std::string end = endOf(process);
  if (outcome == Outcome::Hung || (outcome == Outcome::Survived && end.empty())) return outcome;
  NSRefuse(reason, "it ends the process that loads it" + (end.empty() ? end : ": " + end));
  return Outcome::Died;
}

const std::string& probeProgram() {
  static const std::string program = [] {
    const std::string folder = CFOwnFolder();
    const std::string path = folder + "/vorto/vorto-plug-in-probe";
    return !folder.empty() && ::access(path.c_str(), X_OK) == 0 ? path : std::string();
  }();
  return program;
}

}  // namespace

bool QCSurvivesLoading(const std::string& bundle, const std::string& binary, std::string* reason) {
  const std::string& program = probeProgram();
  if (isProbe || program.empty()) return true;
  // Never destroyed: plug-ins may be loaded while the process ends.
  static QCPlugInVerdicts& verdicts = *new QCPlugInVerdicts(program);
  const std::optional<QCPlugInFile> file = QCPlugInFile::of(binary);
  if (const auto known = file ? verdicts.find(*file) : std::nullopt) return known->empty() || NSRefuse(reason, *known);
  std::string cause;
  const Outcome outcome = probe(program, bundle, &cause);
  if (file && (outcome == Outcome::Survived || outcome == Outcome::Died)) verdicts.add(*file, cause);
  return cause.empty() || NSRefuse(reason, cause);
}

int QCPlugInProbeMain(int argc, char** argv) {
  if (argc != 3) return 2;
  isProbe = true;
  const rlimit none{0, 0};
  ::setrlimit(RLIMIT_CORE, &none);
  if (const QCPlugInDescription* description = QCLoadPlugInBundle(argv[1], nullptr, nullptr)) {
    const auto manager = std::make_shared<GFNodeManager>();
    manager->initWithNamespace("org.vorto.probe");
    try {
      description->registerNodes(*manager);
      for (const std::string& name : manager->nodeNames()) manager->nodeInstanceWithName(name);
    } catch (...) {
      // The process that loads it for good says so.
    }
  }
  const char loaded = 1;
  return ::write(std::atoi(argv[2]), &loaded, 1) == 1 ? 0 : 1;
}
