// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>

// The persisted form of gradients and levels: what the keys of their state dictionaries are and what stands under them.
// Numbers are written as numbers; text that begins with one is read as that.
namespace VRTStateKeys {

// What the numbers of a gradient sample mean, by their place in it. Interpolation is an integer (0 constant, 1 linear,
// 2 smooth), the others are reals.
enum SampleEntry : std::size_t {
  kPosition,
  kMiddle,
  kInterpolation,
  kRed,
  kGreen,
  kBlue,
  kAlpha = kRed,  // of an opacity sample
};
inline constexpr std::array kRGBSampleEntries{"position", "middle", "interpolation", "red", "green", "blue"};
inline constexpr std::array kAlphaSampleEntries{"position", "middle", "interpolation", "alpha"};

// An array of a gradient's state: under the key, sample after sample, one number for each of the entries.
struct Samples {
  const char* key;
  std::span<const char* const> entries;
};
inline constexpr Samples kRGBSamples{"rgbSamples", kRGBSampleEntries};
inline constexpr Samples kAlphaSamples{"alphaSamples", kAlphaSampleEntries};

// The state of levels: an integer, the channel that is on view, and then for each channel each of the values, a real.
inline constexpr const char* kSelectedChannel = "selectedChannel";
inline constexpr std::array kLevelsChannels{"RGB", "Red", "Green", "Blue", "Alpha"};
enum LevelsValue : std::size_t { kBlackIn, kBlackOut, kWhiteIn, kWhiteOut, kGamma };
inline constexpr std::array kLevelsValues{"blackIn", "blackOut", "whiteIn", "whiteOut", "gamma"};

inline constexpr std::size_t kLevelsKeyCount = 1 + kLevelsChannels.size() * kLevelsValues.size();
// All keys, in the order in which they are written: "selectedChannel", "blackInRGB", "blackOutRGB", ... "gammaAlpha".
TARN_EXPORT const std::array<std::string, kLevelsKeyCount>& levelsKeys();
// One of them; the channel is an index in kLevelsChannels. Throws std::out_of_range for any other.
TARN_EXPORT const std::string& levelsKey(LevelsValue value, std::size_t channel);

}  // namespace VRTStateKeys
