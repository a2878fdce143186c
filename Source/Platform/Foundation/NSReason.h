// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cerrno>
#include <cstring>
#include <string>

// Stores why something was refused, where the caller wants to know (reason may be null); false, to be returned.
inline bool NSRefuse(std::string* reason, std::string text) {
  if (reason != nullptr) {
    *reason = std::move(text);
  }
  return false;
}

// The same with what the system says of errno: "cannot open: No such file or directory".
inline bool NSRefuseWithError(std::string* reason, const char* what) {
  return NSRefuse(reason, std::string(what) + ": " + std::strerror(errno));
}
