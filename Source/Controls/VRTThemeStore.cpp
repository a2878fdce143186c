// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTThemeStore.h"

#include "Controls/VRTLocalizedText.h"

#include "Platform/CoreFoundation/CFBundle.h"

#include <array>

namespace {

struct Entry {
  std::uint32_t atom;
  int index;
  const char* name;
  NSSize size;
  double slice;  // the same on all sides
  NSPoint hotSpot;
};

constexpr NSSize kMarker{11, 14};
constexpr NSSize kGutterButton{13, 13};
constexpr NSSize kLevelsHandle{11, 9};

constexpr std::array kEntries{
    Entry{VRTThemeAtomWell, 0, "Well", {16, 16}, 4, {}},
    Entry{VRTThemeAtomMarker, 0, "MarkerUp", kMarker, 0, {}},
    Entry{VRTThemeAtomMarker, 1, "MarkerDown", kMarker, 0, {}},
    Entry{VRTThemeAtomMarker, 2, "MiddleUp", kMarker, 0, {}},
    Entry{VRTThemeAtomMarker, 3, "MiddleDown", kMarker, 0, {}},
    Entry{VRTThemeAtomMarkerSelected, 0, "MarkerUpSelected", kMarker, 0, {}},
    Entry{VRTThemeAtomMarkerSelected, 1, "MarkerDownSelected", kMarker, 0, {}},
    Entry{VRTThemeAtomMarkerSelected, 2, "MiddleUpSelected", kMarker, 0, {}},
    Entry{VRTThemeAtomMarkerSelected, 3, "MiddleDownSelected", kMarker, 0, {}},
    Entry{VRTThemeAtomGutterButton, 0, "Spread", kGutterButton, 0, {}},
    Entry{VRTThemeAtomGutterButton, 1, "Flop", kGutterButton, 0, {}},
    Entry{VRTThemeAtomLevelsHandle, 0, "HandleBlack", kLevelsHandle, 0, {}},
    Entry{VRTThemeAtomLevelsHandle, 1, "HandleGamma", kLevelsHandle, 0, {}},
    Entry{VRTThemeAtomLevelsHandle, 2, "HandleWhite", kLevelsHandle, 0, {}},
    Entry{VRTThemeAtomCursor, 0, "Eyedropper", {20, 20}, 0, {3, 17}},
    Entry{VRTThemeAtomPickerButton, 0, "PickFromScreen", {16, 16}, 0, {}},
};

std::string folderInBundle() {
  const CFOwned<CFStringRef> identifier(
      CFStringCreateWithCString(nullptr, VRTFrameworkBundleIdentifier, kCFStringEncodingUTF8));
  const CFBundleRef bundle = CFBundleGetBundleWithIdentifier(identifier.get());
  return bundle ? CFBundleGetPath(bundle) + "/Contents/Resources/Theme" : "Theme";
}

}  // namespace

VRTThemeStore::VRTThemeStore() : VRTThemeStore(folderInBundle()) {}

VRTThemeStore::VRTThemeStore(std::string folder) : folder_(std::move(folder)) {}

std::optional<TarnThemeArtwork> VRTThemeStore::artworkForAtom(std::uint32_t atom, int index, bool dark) const {
  for (const Entry& entry : kEntries) {
    if (entry.atom != atom || entry.index != index) continue;
    const std::string file = folder_ + (dark ? "/Dark/" : "/Light/") + entry.name + ".svg";
    return TarnThemeArtwork{file, entry.size, {entry.slice, entry.slice, entry.slice, entry.slice}, entry.hotSpot};
  }
  return std::nullopt;
}
