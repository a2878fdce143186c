// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/EffectRendering.h"

#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTImage.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"
#include "Registry/VRTNodeManager.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"
#include "Tests/Support/Lists.h"

#include <gtest/gtest.h>

namespace {

using namespace host;
using P = PropertyList;

int executions = 0;

BitmapRef newBitmap() {
  return BitmapRef(TCCreateBitmap(2, 1, VortoPixelFormat::RGBA8));
}

// Gives its image; counts how often.
struct CountingPatch : QCPatch {
  explicit CountingPatch(PropertyList attributes) : QCPatch(std::move(attributes)) {
    gradient->setValue(VRTGradient::gradient());
  }
  bool execute(double, std::string* reason) override {
    ++executions;
    if (amount->doubleValue() < 0) {
      *reason = "it is negative";
      return false;
    }
    return outputImage->setValue(image->value());
  }
  std::shared_ptr<QCImagePort> image = addInputPort<QCImagePort>("inputImage");
  std::shared_ptr<QCImagePort> shape = addInputPort<QCImagePort>("inputShape");
  std::shared_ptr<QCNumberPort> amount = addInputPort<QCNumberPort>("inputAmount");
  std::shared_ptr<VRTGradientPort> gradient = addInputPort<VRTGradientPort>("inputGradient");
  std::shared_ptr<QCImagePort> outputImage = addOutputPort<QCImagePort>("outputImage");
};

// A filter of that name that declares what the list holds.
EffectRendering renderingOf(const std::string& name, const PropertyList& declared) {
  PropertyList attributes = declared;
  attributes.set(
      "protocols",
      dict({{"filter", dict({{"inputImagePort", text("inputImage")}, {"outputImagePort", text("outputImage")}})}}));
  VRTNodeManager::manager()->registerNodeWithName(name, attributes,
                                                  [attributes] { return std::make_shared<CountingPatch>(attributes); });
  return {name, 1, {}, std::nullopt};
}

InputPictures pictureOf(const BitmapRef& bitmap) {
  InputPictures pictures;
  pictures.bitmaps = {bitmap};
  return pictures;
}

// How often the effect runs for that.
template <class Action>
int runs(Action action) {
  executions = 0;
  action();
  return executions;
}

}  // namespace

TEST(EffectRendering, RunsOnlyWhenSomethingChanged) {
  EffectRendering rendering =
      renderingOf("Counting", dict({{"dependsOnTime", P::boolean(false)}, {"keepsState", P::boolean(false)}}));
  auto& patch = dynamic_cast<CountingPatch&>(rendering.patch());
  const BitmapRef first = newBitmap(), second = newBitmap();
  const auto render = [&] { return rendering.result(0.5); };
  rendering.connect(pictureOf(first));
  EXPECT_EQ(runs(render), 1);
  EXPECT_EQ(runs(render), 0);
  EXPECT_EQ(runs([&] { EXPECT_EQ(rendering.result(0.75), first); }), 0) << "of another time";
  rendering.connect(pictureOf(first));
  EXPECT_EQ(runs(render), 0);

  rendering.connect(pictureOf(second));
  EXPECT_EQ(runs([&] { EXPECT_EQ(render(), second); }), 1);
  const std::function<void()> changes[] = {
      [&] { patch.amount->setDoubleValue(2); },
      [&] { VRTImage::setBitmapOfPort(*patch.shape, first); },
      [&] { patch.gradient->setValue(VRTGradient::gradient()); },
      [&] {
        patch.gradient->willChangeValue();  // as editors change it in place
        patch.gradient->didChangeValue();
      },
      [&] { EXPECT_TRUE(patch.amount->setStateValue(P::real(3), nullptr)); },
  };
  for (const auto& change : changes) {
    change();
    EXPECT_EQ(runs(render), 1) << &change - changes;
    EXPECT_EQ(runs(render), 0) << &change - changes;
  }

  patch.amount->setDoubleValue(-1);
  for (int i = 0; i < 2; ++i) EXPECT_EQ(runs([&] { EXPECT_ANY_THROW(render()); }), 1) << "a failure is no result";
}

TEST(EffectRendering, RunsAsOftenAsWhatItDeclaresDemands) {
  const struct {
    const char* name;
    PropertyList declared;
    int forSameTime, forOtherTime;
  } cases[] = {
      {"Timed", dict({{"dependsOnTime", P::boolean(true)}, {"keepsState", P::boolean(false)}}), 0, 1},
      {"Stateful", dict({{"dependsOnTime", P::boolean(false)}, {"keepsState", P::boolean(true)}}), 1, 1},
      {"Undeclared", {}, 1, 1},
  };
  for (const auto& each : cases) {
    SCOPED_TRACE(each.name);
    EffectRendering rendering = renderingOf(each.name, each.declared);
    rendering.connect(pictureOf(newBitmap()));
    EXPECT_EQ(runs([&] { rendering.result(0); }), 1);
    EXPECT_EQ(runs([&] { rendering.result(0); }), each.forSameTime);
    EXPECT_EQ(runs([&] { rendering.result(1); }), each.forOtherTime);
  }
}
