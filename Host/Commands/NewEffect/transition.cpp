// SPDX-License-Identifier: BSD-3-Clause
#include "Pixels.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace {

PropertyList description() {
  return describe("New Effect", "Sweeps from one image to the other with an edge that glows.", "transition",
                  {{"inputImageAPort", "inputImageA"},
                   {"inputImageBPort", "inputImageB"},
                   {"inputTimePort", "inputTime"},
                   {"outputImagePort", "outputImage"}},
                  true);
}

enum Direction : std::uint32_t { Across, Down };

class Effect : public QCPatch {
 public:
  Effect() : QCPatch(description()) {
    from_ = addInputPort<QCImagePort>("inputImageA", named("From"));
    to_ = addInputPort<QCImagePort>("inputImageB", named("To"));
    time_ = addInputPort<QCNumberPort>("inputTime", number("Time", 0, 1, 0));
    gradient_ = addInputPort<VRTGradientPort>("inputEdge", named("Edge"));
    gradient_->setValue(gradientOf({{0.9F, 0.2F, 0.05F, 1}, {1, 0.85F, 0.4F, 1}}));
    glows_ = addInputPort<QCBooleanPort>("inputGlows", glowing());
    direction_ = addInputPort<QCIndexPort>("inputDirection", choice("Direction", {"Across", "Down"}));
    softness_ = addInputPort<QCNumberPort>("inputSoftness", number("Softness", 0, 1, 0.3));
    output_ = addOutputPort<QCImagePort>("outputImage", named("Image"));
  }

 protected:
  // The result has the size of the first image, is exactly that one at time 0 and the second one at time 1.
  bool execute(double, std::string* reason) override {
    VRTImage::setBitmapOfPort(*output_, nullptr);  // a failure leaves no older result behind
    const auto from = VRTImage::bitmapOfPort(*from_), to = VRTImage::bitmapOfPort(*to_);
    if (!from || !to) return true;  // a missing image gives a missing image
    if (from->formatCode != to->formatCode) {
      *reason = "the images differ in layout";
      return false;
    }
    const auto result = makeBitmap(from->width, from->height, from->formatCode, reason);
    if (!result) return false;

    const GradientTable table(*gradient_);
    const bool isDown = direction_->indexValue() == Down;
    const float length = static_cast<float>(isDown ? result->height : result->width);
    const auto softness = static_cast<float>(std::clamp(softness_->doubleValue(), 0.001, 1.0));
    const auto time = static_cast<float>(std::clamp(time_->doubleValue(), 0.0, 1.0));
    const float glow = glows_->booleanValue() ? 4 : 0;
    paint(
        *result,
        [&](std::uint32_t x, std::uint32_t y, Color a, Color b) {
          const float place = (static_cast<float>(isDown ? y : x) + 0.5F) / length;
          const float part = std::clamp((time * (1 + softness) - place) / softness, 0.0F, 1.0F);
          const Color mixed = between(a, b, part);
          const Color edge = scaled(table.at(part), mixed.alpha);
          return between(mixed, edge, glow * part * (1 - part));
        },
        *from, *to);
    VRTImage::setBitmapOfPort(*output_, result);
    return true;
  }

 private:
  static PropertyList glowing() {
    PropertyList attributes = named("Glows");
    attributes.set("default", PropertyList::boolean(true));
    return attributes;
  }

  std::shared_ptr<QCImagePort> from_;
  std::shared_ptr<QCImagePort> to_;
  std::shared_ptr<QCNumberPort> time_;
  std::shared_ptr<VRTGradientPort> gradient_;
  std::shared_ptr<QCBooleanPort> glows_;
  std::shared_ptr<QCIndexPort> direction_;
  std::shared_ptr<QCNumberPort> softness_;
  std::shared_ptr<QCImagePort> output_;
};

void registerNodes(GFNodeManager& manager) {
  manager.registerNodeWithName("New Effect", description(), [] { return std::make_shared<Effect>(); });
}

}  // namespace

QC_PLUGIN_ENTRY(registerNodes)
