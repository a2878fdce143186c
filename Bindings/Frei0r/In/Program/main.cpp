// SPDX-License-Identifier: BSD-3-Clause
// vorto-frei0r-runner describe|render FILE: runs a frei0r plug-in for the bundle Frei0r.plugin, so that it runs in no
// host.
#include "Bindings/Frei0r/In/Descriptors.h"
#include "Bindings/Frei0r/In/Program/ForeignLibrary.h"
#include "Bindings/Frei0r/In/Program/Rendering.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>

namespace vorto::frei0r {
namespace {

// From here on a signal ends this process when the host has ended, whatever the plug-in is doing.
bool holdOnToHost() {
  if (::fcntl(kLifeline, F_SETOWN, ::getpid()) != 0 || ::fcntl(kLifeline, F_SETFL, O_ASYNC) != 0) return false;
  pollfd end{kLifeline, 0, 0};
  return ::poll(&end, 1, 0) == 0;  // it has not ended before
}

int describe(const std::string& path) {
  Report report;
  ForeignLibrary library;
  ForeignEffect effect;
  if (library.load(path, &report.reason) && library.describe(&effect, &report.reason)) report.effect = effect;
  const Bytes bytes = bytesOf(report);
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t count = ::write(kReport, bytes.data() + done, bytes.size() - done);
    if (count <= 0) return 1;
    done += static_cast<std::size_t>(count);
  }
  return 0;
}

}  // namespace
}  // namespace vorto::frei0r

int main(int argc, char** argv) {
  using namespace vorto::frei0r;
  const std::string task = argc == 3 ? argv[1] : "";
  if (task != "describe" && task != "render") {
    std::fputs("vorto-frei0r-runner is run by vorto's effects\n", stderr);
    return 2;
  }
  const rlimit none{0, 0};
  ::setrlimit(RLIMIT_CORE, &none);
  if (!holdOnToHost()) return 1;
  // What the plug-in does at the end of a process concerns nobody.
  ::_exit(task == "describe" ? describe(argv[2]) : renderWith(argv[2]));
}
