// SPDX-License-Identifier: BSD-3-Clause
#include "Ports/VRTPorts.h"
#include "Registry/VRTExecutionTraits.h"
#include "Registry/VRTProtocols.h"
#include "Tests/Effects/Harness.h"

#include <set>

// Every effect of the plug-in folder, whatever it is, at every depth.

namespace {

// The effects that ship, one a line.
// clang-format off
const char* const kShipped[] = {
    "Checkerboard",
    "Color",
    "Color Burn",
    "Color Dodge",
    "Color Matrix",
    "Crop",
    "Darken",
    "Difference",
    "Dissolve",
    "Drop Shadow",
    "Duotone",
    "Exclusion",
    "Fill",
    "Gaussian Blur",
    "Gradient Map",
    "Gradient Ramp",
    "Gradient Wipe",
    "Hard Light",
    "Hue",
    "Hue Saturation Lightness",
    "Invert",
    "Iris",
    "Levels",
    "Lighten",
    "Luminosity",
    "Multiply",
    "Noise",
    "Over",
    "Overlay",
    "Plus",
    "Radial Ramp",
    "Saturation",
    "Screen",
    "Slide",
    "Soft Light",
    "Solid Color",
    "Transform",
    "Unsharp Mask",
};
// clang-format on

bool playsRole(const QCPatch& patch, const std::string& key) {
  const PropertyList& roles = patch.attributes().find("protocols")->entries().valueAt(0);
  for (std::size_t i = 0; i < roles.entries().size(); ++i) {
    if (roles.entries().valueAt(i).stringValue() == key) return true;
  }
  return false;
}

// Of the images that play a role, without which there is no result, or of all.
enum class Images { Needed, All };
std::vector<std::string> imageKeys(const QCPatch& patch, Images which) {
  std::vector<std::string> keys;
  for (const auto& port : patch.inputPorts()) {
    const bool isImage = std::string(port->kind()) == "image";
    if (isImage && (which == Images::All || playsRole(patch, port->key()))) keys.push_back(port->key());
  }
  return keys;
}

// The effect with an image of its own in every port of images.
std::shared_ptr<QCPatch> withImages(const std::string& name) {
  auto patch = effectNamed(name);
  for (const std::string& key : imageKeys(*patch, Images::Needed)) set(*patch, key, makeImage(layouts[0], 4, 2));
  return patch;
}

// What a host or a broken document may put on the ports that are no images.
void setHarshParameters(QCPatch& patch, double number) {
  for (const auto& port : patch.inputPorts()) {
    if (std::string(port->kind()) == "number") port->setValue(NSNumber::numberWithDouble(number));
    if (dynamic_cast<VRTGradientPort*>(port.get())) {
      const auto state = number > 0 ? linearGradient({}, {})
                                    : linearGradient({{0.5, number, 1, -2}, {0.5, 0, number, 1}}, {{0.2, number}});
      port->setStateValue(state, nullptr);
    }
    if (dynamic_cast<VRTHistogramPort*>(port.get())) {
      PropertyList state = neutralLevels();
      for (std::size_t i = 1; i < state.entries().size(); ++i) {
        state.set(state.entries().keyAt(i), PropertyList::real(i % 2 ? number : 0));
      }
      port->setStateValue(state, nullptr);
    }
  }
}

TEST(EveryEffect, IsLoadedAndDescribesItself) {
  std::string failures;
  for (const auto& failure : effects().loadFailures()) failures += failure.path + ": " + failure.reason + "\n";
  EXPECT_EQ(failures, "");
  const std::vector<std::string> names = effects().nodeNames();
  EXPECT_EQ(std::set<std::string>(names.begin(), names.end()),
            std::set<std::string>(std::begin(kShipped), std::end(kShipped)));
  for (const std::string& name : names) {
    SCOPED_TRACE(name);
    const PropertyList& attributes = *effects().nodeAttributesWithName(name);
    const auto patch = effectNamed(name);
    EXPECT_EQ(attributes.find("name")->stringValue(), name);
    const bool changesWithTime = isVortoTransition(*patch) || name == "Duotone";  // which mixes by a transition
    EXPECT_EQ(dependsOnTime(*patch), changesWithTime);
    EXPECT_FALSE(keepsState(*patch));
    for (const char* const key : {"dependsOnTime", "keepsState"}) {
      ASSERT_TRUE(attributes.find(key)) << key;
      EXPECT_EQ(*attributes.find(key), *patch->attributes().find(key)) << "it is listed as it is made: " << key;
    }
    EXPECT_GT(attributes.find("description")->stringValue().size(), 10U);
    const PropertyList& kinds = *attributes.find("protocols");
    ASSERT_EQ(kinds.entries().size(), 1U);
    const PropertyList& roles = kinds.entries().valueAt(0);
    EXPECT_TRUE(roles.find("outputImagePort"));
    for (std::size_t i = 0; i < roles.entries().size(); ++i) {
      EXPECT_TRUE(patch->portForKey(roles.entries().valueAt(i).stringValue())) << roles.entries().keyAt(i);
    }
    for (const auto& port : patch->inputPorts()) {
      EXPECT_TRUE(port->attributes().find("name")) << port->key();
      if (std::string(port->kind()) != "number") continue;
      const double value = port->attributes().find("default")->doubleValue();
      EXPECT_GE(value, port->attributes().find("minimum")->doubleValue()) << port->key();
      EXPECT_LE(value, port->attributes().find("maximum")->doubleValue()) << port->key();
    }
  }
}

TEST(EveryEffect, RunsAtEveryDepthAndSizeOnAnyPixelsAndLeavesItsInputsAlone) {
  const std::pair<std::uint32_t, std::uint32_t> sizes[] = {{1, 1}, {1, 9}, {7, 5}, {129, 3}};
  for (const std::string& name : effects().nodeNames()) {
    for (const Layout& layout : layouts) {
      const bool isGenerator = isVortoGenerator(*effectNamed(name));
      if (isGenerator && layout.code == 1) continue;
      for (const auto& [width, height] : sizes) {
        SCOPED_TRACE(name + " " + layout.name + " " + std::to_string(width) + " x " + std::to_string(height));
        for (const double parameter : {0.37, std::nan(""), std::numeric_limits<double>::infinity(), -1e300, 1e300}) {
          const auto patch = effectNamed(name);
          std::vector<std::pair<Bitmap, std::vector<std::uint8_t>>> inputs;
          for (const std::string& key : imageKeys(*patch, Images::All)) {
            const auto seed = static_cast<unsigned>(inputs.size()) + 1;
            const std::uint32_t more = playsRole(*patch, key) ? 0 : 5;  // the others have a size of their own
            const Bitmap bitmap = randomImage(layout, width + more, height + more, Noise::Anything, seed);
            inputs.emplace_back(bitmap, pixelBytes(*bitmap));
            set(*patch, key, bitmap);
          }
          setHarshParameters(*patch, parameter);
          if (isGenerator) {
            set(*patch, "inputWidth", double(width));
            set(*patch, "inputHeight", double(height));
            set(*patch, "inputDepth", layout.code == 9 ? 2.0 : layout.code == 4 ? 1.0 : 0.0);
          }
          const Outcome outcome = run(*patch);
          ASSERT_TRUE(outcome.succeeded && outcome.image) << outcome.reason;
          EXPECT_EQ(std::pair(outcome.image->width, outcome.image->height), std::pair(width, height));
          EXPECT_EQ(outcome.image->formatCode, layout.code);
          for (const auto& [bitmap, before] : inputs) EXPECT_EQ(pixelBytes(*bitmap), before);
        }
      }
    }
  }
}

// Without an image that it needs an effect succeeds with none; an image that it cannot read fails it.
TEST(EveryEffect, GivesNoImageWithoutItsInputsAndRefusesThoseThatItCannotRead) {
  std::vector<Bitmap> refused;
  for (const std::uint32_t code : {2U, 5U, 6U, 7U, 8U}) refused.emplace_back(TCCreateBitmap(4, 2, code));
  refused.push_back(makeImage(layouts[0], 4, 2));
  refused.back()->height = 1 << 20;  // more rows than there is memory for
  refused.push_back(makeImage(layouts[0], 4, 2));
  refused.back()->deallocateMemory();
  refused.push_back(nullptr);
  for (const std::string& name : effects().nodeNames()) {
    const auto keys = imageKeys(*effectNamed(name), Images::All);
    const auto needed = imageKeys(*effectNamed(name), Images::Needed);
    for (std::size_t i = 0; i < keys.size() * refused.size(); ++i) {
      const std::string& key = keys[i / refused.size()];
      const Bitmap& image = refused[i % refused.size()];
      SCOPED_TRACE(name + " with the image " + std::to_string(i % refused.size()) + " as " + key);
      const auto patch = withImages(name);
      if (!image) {
        EXPECT_TRUE(run(*patch).image);
      }
      set(*patch, key, image);
      const Outcome outcome = run(*patch);
      EXPECT_EQ(outcome.succeeded, image == nullptr) << outcome.reason;
      const bool isNeeded = std::find(needed.begin(), needed.end(), key) != needed.end();
      EXPECT_EQ(outcome.image != nullptr, !image && !isNeeded);
      EXPECT_EQ(outcome.reason == "", image == nullptr);
    }
    if (needed.size() < 2) continue;
    const auto patch = withImages(name);
    set(*patch, needed[1], makeImage(layouts[3], 4, 2));
    EXPECT_NE(run(*patch).reason.find("differ in layout"), std::string::npos) << name;
  }
}

}  // namespace
