// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Messages/Signals.h"

#include "Platform/Foundation/NSFiles.h"

#include <csignal>

namespace host {
namespace {

// The signal has its default action again, which follows once the handler has returned.
void clearUp(int signal) {
  NSRemoveUnfinishedFiles();
  std::raise(signal);
}

}  // namespace

void prepareForSignals() {
  std::signal(SIGXFSZ, SIG_IGN);
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction action {};
    if (::sigaction(signal, nullptr, &action) != 0 || action.sa_handler != SIG_DFL) continue;
    action.sa_handler = clearUp;
    action.sa_flags = SA_RESETHAND;
    ::sigaction(signal, &action, nullptr);
  }
}

}  // namespace host
