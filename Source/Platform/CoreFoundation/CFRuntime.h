// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/CoreFoundation/CFBase.h"

#include <atomic>
#include <limits>
#include <string>

// Base of every object of this room. It must stay the first and only base, so that a CFTypeRef made from any of them is
// the address of its CFObject.
struct CFObject {
  static constexpr CFIndex kConstant = std::numeric_limits<CFIndex>::max();  // never destroyed

  CFObject() = default;
  CFObject(const CFObject&) = delete;
  CFObject& operator=(const CFObject&) = delete;
  virtual ~CFObject() = default;
  virtual std::string description() const = 0;  // in UTF-8

  mutable std::atomic<CFIndex> references = 1;  // strings of several threads may share one object
};

// One line on standard error.
void CFReport(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Whether the range lies within `length` units; what does not is reported under the function's name.
bool CFCheckRange(const char* function, CFRange range, CFIndex length);
