// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTLocalizedText.h"

#include "Platform/CoreFoundation/CFBundle.h"
#include "TarnCore/TCString.h"

#include <vector>

namespace {

QString lookedUp(const char* key, const char* missing) {
  const CFStringRef identifier =
      CFStringCreateWithCString(nullptr, VRTFrameworkBundleIdentifier, kCFStringEncodingUTF8);
  const CFStringRef keyString = CFStringCreateWithCString(nullptr, key, kCFStringEncodingUTF8);
  const CFStringRef missingString = CFStringCreateWithCString(nullptr, missing, kCFStringEncodingUTF8);
  const CFStringRef text =
      CFBundleCopyLocalizedString(CFBundleGetBundleWithIdentifier(identifier), keyString, missingString, nullptr);
  const CFIndex length = CFStringGetLength(text);
  std::vector<UniChar> units(static_cast<std::size_t>(length));
  CFStringGetCharacters(text, CFRangeMake(0, length), units.data());
  for (const CFStringRef string : {identifier, keyString, missingString, text}) CFRelease(string);
  return QString::fromUtf16(reinterpret_cast<const char16_t*>(units.data()), static_cast<qsizetype>(units.size()));
}

}  // namespace

QString VRTLocalizedText(const char* english) {
  return lookedUp(english, english);
}

QString VRTLocalizedTitle(const char* key) {
  return lookedUp(key, "");
}

QString VRTTextOfString(const VortoString& text) {
  return QString::fromUtf16(reinterpret_cast<const char16_t*>(text.u_str()), static_cast<qsizetype>(text.size()));
}
