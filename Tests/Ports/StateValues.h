// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSCoder.h"
#include "Platform/Foundation/NSObject.h"
#include "Tests/Support/Lists.h"

// States written out by hand, as documents hold them.

// Entries of gradient arrays: every third one of a group is the interpolation, an integer.
inline PropertyList sampleArray(std::size_t groupSize, std::initializer_list<double> entries) {
  PropertyList array = PropertyList::array();
  std::size_t index = 0;
  for (const double entry : entries) {
    const bool isInterpolation = index++ % groupSize == 2;
    array.append(isInterpolation ? PropertyList::integer(static_cast<int>(entry)) : PropertyList::real(entry));
  }
  return array;
}

inline PropertyList gradientState(std::initializer_list<double> rgbSamples,
                                  std::initializer_list<double> alphaSamples) {
  return dict({{"rgbSamples", sampleArray(6, rgbSamples)}, {"alphaSamples", sampleArray(4, alphaSamples)}});
}

inline constexpr std::array<const char*, 26> levelsKeys{
    "selectedChannel", "blackInRGB",   "blackOutRGB",   "whiteInRGB",   "whiteOutRGB",   "gammaRGB",
    "blackInRed",      "blackOutRed",  "whiteInRed",    "whiteOutRed",  "gammaRed",      "blackInGreen",
    "blackOutGreen",   "whiteInGreen", "whiteOutGreen", "gammaGreen",   "blackInBlue",   "blackOutBlue",
    "whiteInBlue",     "whiteOutBlue", "gammaBlue",     "blackInAlpha", "blackOutAlpha", "whiteInAlpha",
    "whiteOutAlpha",   "gammaAlpha",
};

// A different value under every key, so that no two can be mistaken for each other.
inline PropertyList distinctLevelsState() {
  PropertyList state;
  for (std::size_t i = 0; i < levelsKeys.size(); ++i) {
    state.set(levelsKeys[i],
              i == 0 ? PropertyList::integer(3) : PropertyList::real(0.125 * static_cast<double>(i) - 1));
  }
  return state;
}

// A value object in an archive with a state that it would not write itself.
class Written : public NSObject {
 public:
  Written(std::string className, NSObjectRef state) : className_(std::move(className)), state_(std::move(state)) {}
  std::string className() const override { return className_; }
  void encodeWithCoder(NSCoder& coder) const override {
    if (state_) coder.encodeObject(state_, "state");
  }

 private:
  std::string className_;
  NSObjectRef state_;
};
