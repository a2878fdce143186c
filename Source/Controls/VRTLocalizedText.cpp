// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTLocalizedText.h"

#include "Platform/CoreFoundation/CFBundle.h"
#include "TarnCore/TCString.h"

#include <vector>

namespace {

CFOwned<CFStringRef> stringOf(const char* utf8) {
  return CFOwned<CFStringRef>(CFStringCreateWithCString(nullptr, utf8, kCFStringEncodingUTF8));
}

QString lookedUp(const char* bundleIdentifier, const char* key, const char* missing) {
  const CFBundleRef bundle = CFBundleGetBundleWithIdentifier(stringOf(bundleIdentifier).get());
  const CFOwned<CFStringRef> text(
      CFBundleCopyLocalizedString(bundle, stringOf(key).get(), stringOf(missing).get(), nullptr));
  const CFIndex length = CFStringGetLength(text.get());
  std::vector<UniChar> units(static_cast<std::size_t>(length));
  CFStringGetCharacters(text.get(), CFRangeMake(0, length), units.data());
  return QString::fromUtf16(reinterpret_cast<const char16_t*>(units.data()), static_cast<qsizetype>(units.size()));
}

}  // namespace

QString VRTLocalizedText(const char* english) {
  return VRTLocalizedTextOfBundle(VRTFrameworkBundleIdentifier, english);
}

QString VRTLocalizedTextOfBundle(const char* bundleIdentifier, const char* english) {
  return lookedUp(bundleIdentifier, english, english);
}

QString VRTLocalizedTitle(const char* key) {
  return lookedUp(VRTFrameworkBundleIdentifier, key, "");
}

QString VRTTextOfString(const VortoString& text) {
  return QString::fromUtf16(reinterpret_cast<const char16_t*>(text.u_str()), static_cast<qsizetype>(text.size()));
}
