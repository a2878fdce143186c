// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/BlendModeOf.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <iterator>

namespace vorto::effects {
namespace {

struct Mode {
  void (*registerAs)(GFNodeManager& manager, const std::string& name, const std::string& description);
  const char* name;
  const char* description;
};

constexpr Mode kModes[] = {
    {&registerBlendMode<PlusMode>, "Plus", "Adds the foreground to the background, as light adds to light."},
    {&registerBlendMode<ScreenMode>, "Screen",
     "Lightens the background with the foreground, as two projectors on one screen do; black leaves it as it is."},
    {&registerBlendMode<OverlayMode>, "Overlay",
     "Raises the contrast: multiplies where the background is dark and screens where it is bright."},
    {&registerBlendMode<DarkenMode>, "Darken", "Keeps the darker of both images, color by color."},
    {&registerBlendMode<LightenMode>, "Lighten", "Keeps the lighter of both images, color by color."},
    {&registerBlendMode<ColorDodgeMode>, "Color Dodge",
     "Brightens the background until it burns out, the more the brighter the foreground is."},
    {&registerBlendMode<ColorBurnMode>, "Color Burn",
     "Darkens the background and deepens its colors, the more the darker the foreground is."},
    {&registerBlendMode<HardLightMode>, "Hard Light",
     "Shines the foreground on the background like a harsh spotlight: dark parts multiply, bright ones screen."},
    {&registerBlendMode<SoftLightMode>, "Soft Light",
     "Shines the foreground on the background like a diffuse light; middle grey leaves it as it is."},
    {&registerBlendMode<DifferenceMode>, "Difference", "Shows how far both images differ; black where they are alike."},
    {&registerBlendMode<ExclusionMode>, "Exclusion", "Shows the difference of both images with less contrast."},
    {&registerBlendMode<HueMode>, "Hue",
     "Takes the hue of the foreground, the saturation and the luminosity of the background."},
    {&registerBlendMode<SaturationMode>, "Saturation",
     "Takes the saturation of the foreground, the hue and the luminosity of the background."},
    {&registerBlendMode<ColorMode>, "Color",
     "Colors the background with the hue and the saturation of the foreground; light and shadow stay."},
    {&registerBlendMode<LuminosityMode>, "Luminosity",
     "Takes light and shadow of the foreground, the colors of the background."},
};

// Over and Multiply are bundles of their own.
static_assert(std::size(kModes) + 2 ==
              PlainModes::kCount + PolynomialModes::kCount + QuotientModes::kCount + NonSeparableModes::kCount);

void registerModes(GFNodeManager& manager) {
  for (const Mode& mode : kModes) mode.registerAs(manager, mode.name, mode.description);
}

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerModes)
