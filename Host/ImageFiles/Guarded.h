// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSReason.h"

#include <exception>
#include <new>
#include <string>

namespace host {

// Runs a step that may throw (a library, or memory that ran out) and returns false, or null, with the cause, instead.
template <class Step>
auto guarded(std::string* reason, Step step) -> decltype(step()) {
  try {
    return step();
  } catch (const std::bad_alloc&) {
    NSRefuse(reason, "there is not enough memory for it");
  } catch (const std::exception& error) {
    NSRefuse(reason, error.what());
  }
  return {};
}

}  // namespace host
