// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Sanitizer.h"

#include <fcntl.h>
#include <unistd.h>
#include <cstdio>

namespace host {

// While one lives, the process's standard error goes nowhere: image libraries print there what they also report, and
// remarks on files that are fine. Not under the address sanitizer, whose findings are written there.
class SilentStandardError {
 public:
  SilentStandardError() {
    if (kHasAddressSanitizer) return;
    std::fflush(stderr);
    const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (nowhere < 0) return;
    kept_ = fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    if (kept_ >= 0) dup2(nowhere, STDERR_FILENO);
    close(nowhere);
  }
  ~SilentStandardError() {
    if (kept_ < 0) return;
    std::fflush(stderr);
    dup2(kept_, STDERR_FILENO);
    close(kept_);
  }
  SilentStandardError(const SilentStandardError&) = delete;
  SilentStandardError& operator=(const SilentStandardError&) = delete;

 private:
  int kept_ = -1;
};

}  // namespace host
