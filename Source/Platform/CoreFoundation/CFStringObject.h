// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/CoreFoundation/CFEncodings.h"
#include "Platform/CoreFoundation/CFRuntime.h"
#include "Platform/CoreFoundation/CFString.h"

struct CFStringObject final : CFObject {
  std::string description() const override { return CFReadableUTF8(units); }
  CFIndex length() const { return static_cast<CFIndex>(units.size()); }
  std::span<const UniChar> text() const { return units; }

  CFUnits units;
  bool isMutable = false;
  CFIndex capacity = kCFStringMaximumLength;  // of a mutable string
};

// The units of a string, none for null.
inline std::span<const UniChar> CFStringUnits(CFStringRef string) {
  return string == nullptr ? std::span<const UniChar>() : string->text();
}

// An immutable string that takes over the units.
CFStringRef CFStringCreateWithUnits(CFUnits units);
