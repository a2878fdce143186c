// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/TarnKit/TarnThemeProvider.h"
#include "Platform/Visibility.h"

#include <string>

// Theme atoms of the framework.
constexpr std::uint32_t VRTThemeAtomWell = 0xF0381200;            // 0: recessed frame, inner area 2 points inside
constexpr std::uint32_t VRTThemeAtomMarker = 0x10391200;          // 0, 1: stop pointing up, down; 2, 3: middle point
constexpr std::uint32_t VRTThemeAtomMarkerSelected = 0x20391200;  // the same, selected
constexpr std::uint32_t VRTThemeAtomGutterButton = 0x103A1200;    // 0: spread, 1: flop
constexpr std::uint32_t VRTThemeAtomLevelsHandle = 0x10481A00;    // 0: black, 1: gamma, 2: white
constexpr std::uint32_t VRTThemeAtomCursor = 0x10500000;          // 0: eyedropper
constexpr std::uint32_t VRTThemeAtomPickerButton = 0x10510000;    // 0: take a color from the screen

// The framework's theme images: which artwork of Resources/Theme stands for an atom, its size, slices and hot spot.
class TARN_EXPORT VRTThemeStore : public TarnThemeProvider {
 public:
  VRTThemeStore();                             // the artwork in the framework's own bundle
  explicit VRTThemeStore(std::string folder);  // a folder with the subfolders "Light" and "Dark"

  std::optional<TarnThemeArtwork> artworkForAtom(std::uint32_t atom, int index, bool dark) const override;

 private:
  std::string folder_;
};
