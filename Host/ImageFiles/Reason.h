// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <utility>

namespace host {

// What a failing function returns: false, with the cause in *reason, which may be null.
inline bool refuse(std::string* reason, std::string cause) {
  if (reason) *reason = std::move(cause);
  return false;
}

}  // namespace host
