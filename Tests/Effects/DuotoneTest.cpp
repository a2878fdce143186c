// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Effects/Harness.h"

namespace {

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
