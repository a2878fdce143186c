// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Registry/BrivoCompatability.h"
#include "Tests/Effects/Harness.h"

namespace {

const PropertyList someGradient =
    linearGradient({{0, 0.1, 0.2, 0.9}, {0.3, 1, 0.4, 0}, {1, 1, 1, 0.5}}, {{0, 1}, {1, 0.6}});

PropertyList someLevels() {
  PropertyList state = neutralLevels();
  state.set("gammaRGB", PropertyList::real(1.7));
  state.set("blackInBlue", PropertyList::real(0.125));
  return state;
}

// The object as it comes back from an archive.
template <class Value>
NSObjectRef archived(const PropertyList& state, PropertyListFormat format) {
  const auto value = std::make_shared<Value>();
  EXPECT_TRUE(value->initWithStateValue(state));
  std::string reason;
  const auto bytes = NSKeyedArchiver::archivedData(value, format, &reason);
  EXPECT_TRUE(bytes) << reason;
  return NSKeyedUnarchiver::unarchiveObject(bytes.value(), &reason);
}

void expectSamePicture(const char* effect, const char* port, const PropertyList& state,
                       const std::vector<NSObjectRef>& values) {
  for (const Layout& layout : layouts) {
    const Bitmap image = randomImage(layout, 40, 20, Noise::Premultiplied, 51);
    const auto picture = pixelBytes(*rendered(*effectNamed(effect, {{"inputImage", image}, {port, state}})));
    EXPECT_NE(picture, pixelBytes(*image));
    for (const NSObjectRef& value : values) {
      ASSERT_TRUE(value);
      const auto patch = effectNamed(effect, {{"inputImage", image}, {port, value}});
      EXPECT_EQ(pixelBytes(*rendered(*patch)), picture) << effect << " with a " << value->className();
    }
  }
}

TEST(SavedParameters, RenderTheSamePictureUnderEitherName) {
  using enum PropertyListFormat;
  expectSamePicture("Gradient Map", "inputGradient", someGradient,
                    {archived<VRTGradient>(someGradient, Xml), archived<TarnGradient>(someGradient, Xml),
                     archived<TarnGradient>(someGradient, Binary)});
  expectSamePicture("Levels", "inputLevels", someLevels(),
                    {archived<VRTHistogram>(someLevels(), Binary), archived<TarnHistogram>(someLevels(), Xml),
                     archived<TarnHistogram>(someLevels(), Binary)});
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
