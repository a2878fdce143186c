// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <fcntl.h>
#include <unistd.h>

namespace host {

// Standard error leads nowhere as long as it lives, for those who write there themselves.
class StandardErrorSilenced {
 public:
  StandardErrorSilenced() : kept_(::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0)) {
    const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    if (kept_ >= 0 && nowhere >= 0) ::dup2(nowhere, STDERR_FILENO);
    if (nowhere >= 0) ::close(nowhere);
  }
  ~StandardErrorSilenced() {
    if (kept_ < 0) return;
    ::dup2(kept_, STDERR_FILENO);
    ::close(kept_);
  }
  StandardErrorSilenced(const StandardErrorSilenced&) = delete;
  StandardErrorSilenced& operator=(const StandardErrorSilenced&) = delete;

 private:
  int kept_;
};

}  // namespace host
