// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/CoreFoundation/CFString.h"

inline CFOwned<CFStringRef> MakeString(std::u16string_view text) {
  const std::vector<UniChar> units(text.begin(), text.end());
  return CFOwned<CFStringRef>(
      CFStringCreateWithCharacters(kCFAllocatorDefault, units.data(), static_cast<CFIndex>(units.size())));
}

inline CFOwned<CFMutableStringRef> MakeMutable(std::u16string_view text) {
  return CFOwned<CFMutableStringRef>(CFStringCreateMutableCopy(kCFAllocatorDefault, 0, MakeString(text).get()));
}

inline std::u16string TextOf(CFStringRef string) {
  std::u16string text;
  for (CFIndex i = 0; i < CFStringGetLength(string); ++i) {
    text.push_back(static_cast<char16_t>(CFStringGetCharacterAtIndex(string, i)));
  }
  return text;
}
