// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/Effects/EffectBench.h"

namespace {

constexpr MeasuredEffect blendMode(const char* name) {
  return {name, "inputBackgroundImage", "inputForegroundImage", nullptr};
}

const MeasuredEffect kModes[] = {
    blendMode("Plus"),        blendMode("Screen"),     blendMode("Overlay"),    blendMode("Darken"),
    blendMode("Lighten"),     blendMode("Difference"), blendMode("Exclusion"),  blendMode("Hard Light"),
    blendMode("Color Dodge"), blendMode("Color Burn"), blendMode("Soft Light"), blendMode("Hue"),
    blendMode("Saturation"),  blendMode("Color"),      blendMode("Luminosity"),
};

const bool registered = registerRows(kModes);

}  // namespace
