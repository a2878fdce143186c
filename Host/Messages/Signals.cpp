// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Signals.h"

#include "Platform/Foundation/NSFiles.h"

#include <sys/wait.h>

#include <atomic>
#include <ctime>

namespace host {
namespace {

// For a signal's handler: no lock, no memory taken. More children than that end by themselves, a little later.
std::atomic<pid_t> children[1024];

void signalChildren(int signal) {
  for (const auto& child : children) {
    if (const pid_t process = child; process > 0) ::kill(process, signal);
  }
}

bool areChildrenGone() {
  bool gone = true;
  for (auto& child : children) {
    const pid_t process = child;
    if (process > 0 && ::waitpid(process, nullptr, WNOHANG) == 0) {
      gone = false;
    } else {
      child = 0;
    }
  }
  return gone;
}

bool areChildrenGoneAfter(int milliseconds) {
  constexpr int step = 5;
  constexpr timespec pause{0, step * 1000000L};
  for (int waited = 0; !areChildrenGone(); waited += step) {
    if (waited > milliseconds) return false;
    ::nanosleep(&pause, nullptr);
  }
  return true;
}

// The signal has its default action again, which follows once the handler has returned.
void clearUp(int signal) {
  signalChildren(SIGTERM);
  if (!areChildrenGoneAfter(2000)) {
    signalChildren(SIGKILL);
    areChildrenGoneAfter(1000);
  }
  NSRemoveUnfinishedFiles();
  std::raise(signal);
}

}  // namespace

void prepareForSignals() {
  std::signal(SIGXFSZ, SIG_IGN);
  for (const int signal : kEndingSignals) {
    struct sigaction action {};
    if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
    action.sa_handler = clearUp;
    action.sa_flags = SA_RESETHAND;
    ::sigaction(signal, &action, nullptr);
  }
}

void endWithThisProgram(pid_t process) {
  for (auto& child : children) {
    pid_t none = 0;
    if (child.compare_exchange_strong(none, process)) return;
  }
}

void noLongerEnds(pid_t process) {
  for (auto& child : children) {
    pid_t found = process;
    if (child.compare_exchange_strong(found, 0)) return;
  }
}

}  // namespace host
