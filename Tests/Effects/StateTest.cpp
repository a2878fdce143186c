// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSClassTable.h"
#include "Ports/VRTObjects.h"
#include "Registry/BrivoCompatability.h"
#include "Tests/Effects/Harness.h"

namespace {

TEST(SavedParameters, RenderTheSamePictureAsObjectsOfEitherName) {
  PropertyList levels = neutralLevels();
  levels.set("gammaRGB", PropertyList::real(1.7));
  levels.set("blackInBlue", PropertyList::real(0.125));
  const struct {
    std::string effect, port, className, olderName;
    PropertyList state;
  } rows[] = {{"Gradient Map", "inputGradient", "VRTGradient", "TarnGradient",
               linearGradient({{0, 0.1, 0.2, 0.9}, {0.3, 1, 0.4, 0}, {1, 1, 1, 0.5}}, {{0, 1}, {1, 0.6}})},
              {"Levels", "inputLevels", "VRTHistogram", "TarnHistogram", levels}};
  for (const auto& row : rows) {
    const Bitmap image = randomImage(layouts[2], 40, 20, Noise::Premultiplied, 51);
    const auto picture =
        pixelBytes(*rendered(*effectNamed(row.effect, {{"inputImage", image}, {row.port, row.state}})));
    EXPECT_NE(picture, pixelBytes(*image));
    for (const std::string& name : {row.className, row.olderName}) {
      const NSObjectRef value = NSClassFromString(name)->factory();
      ASSERT_TRUE(dynamic_cast<VRTObject&>(*value).initWithStateValue(row.state));
      const auto patch = effectNamed(row.effect, {{"inputImage", image}, {row.port, value}});
      EXPECT_EQ(pixelBytes(*rendered(*patch)), picture) << name;
    }
  }
}

// Levels, then Gradient Map, with the parameters that the composition holds.
ConstBitmap byHand(QCPatch& duotone, ConstBitmap image) {
  for (const auto& [name, key] : {std::pair{"Levels", "inputLevels"}, {"Gradient Map", "inputGradient"}}) {
    image = rendered(*effectNamed(name, {{"inputImage", image}, {key, duotone.portForKey(key)->value()}}));
  }
  return image;
}

TEST(Duotone, IsItsNodesInOrder) {
  for (const Layout& layout : layouts) {
    const Bitmap image = randomImage(layout, 30, 20, Noise::Premultiplied, 52);
    const auto duotone = effectNamed("Duotone", {{"inputImage", image}});
    const auto full = pixelBytes(*rendered(*duotone));
    EXPECT_EQ(full, pixelBytes(*byHand(*duotone, image))) << layout.name;
    EXPECT_NE(full, pixelBytes(*image));
    set(*duotone, "inputAmount", 0.0);
    EXPECT_EQ(pixelBytes(*rendered(*duotone)), pixelBytes(*image)) << layout.name;
    set(*duotone, "inputAmount", 0.5);
    const auto half = pixelBytes(*rendered(*duotone));
    EXPECT_NE(half, full);
    EXPECT_NE(half, pixelBytes(*image));
  }
}

}  // namespace
