// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <utility>

// Inside this room only.

// What a failing function returns: false, with the cause in *reason, which may be null.
inline bool QCRefuse(std::string* reason, std::string cause) {
  if (reason) {
    *reason = std::move(cause);
  }
  return false;
}
