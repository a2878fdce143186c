// SPDX-License-Identifier: BSD-3-Clause
#include "Pixels.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace {

PropertyList description() {
  return describe("New Effect", "Colors an image by its brightness.", "filter",
                  {{"inputImagePort", "inputImage"}, {"outputImagePort", "outputImage"}}, false);
}

enum Measure : std::uint32_t { Brightness, Opacity };

class Effect : public QCPatch {
 public:
  Effect() : QCPatch(description()) {
    image_ = addInputPort<QCImagePort>("inputImage", named("Image"));
    gradient_ = addInputPort<VRTGradientPort>("inputGradient", named("Gradient"));
    gradient_->setValue(gradientOf({{0.05F, 0.05F, 0.25F, 1}, {0.85F, 0.3F, 0.2F, 1}, {1, 0.95F, 0.7F, 1}}));
    measure_ = addInputPort<QCIndexPort>("inputMeasure", choice("Measure", {"Brightness", "Opacity"}));
    reversed_ = addInputPort<QCBooleanPort>("inputReversed", named("Reversed"));
    amount_ = addInputPort<QCNumberPort>("inputAmount", number("Amount", 0, 1, 1));
    output_ = addOutputPort<QCImagePort>("outputImage", named("Image"));
  }

 protected:
  bool execute(double, std::string* reason) override {
    VRTImage::setBitmapOfPort(*output_, nullptr);  // a failure leaves no older result behind
    const auto image = VRTImage::bitmapOfPort(*image_);
    if (!image) return true;  // a missing image gives a missing image
    const auto result = makeBitmap(image->width, image->height, image->formatCode, reason);
    if (!result) return false;

    const GradientTable table(*gradient_);
    const bool isReversed = reversed_->booleanValue();
    const bool isOfOpacity = measure_->indexValue() == Opacity;
    const auto amount = static_cast<float>(amount_->doubleValue());
    paint(
        *result,
        [&](std::uint32_t, std::uint32_t, Color color) {
          const float position = isOfOpacity ? color.alpha : brightness(color);
          const Color mapped = scaled(table.at(isReversed ? 1 - position : position), color.alpha);
          return between(color, mapped, amount);
        },
        *image);
    VRTImage::setBitmapOfPort(*output_, result);
    return true;
  }

 private:
  std::shared_ptr<QCImagePort> image_;
  std::shared_ptr<VRTGradientPort> gradient_;
  std::shared_ptr<QCIndexPort> measure_;
  std::shared_ptr<QCBooleanPort> reversed_;
  std::shared_ptr<QCNumberPort> amount_;
  std::shared_ptr<QCImagePort> output_;
};

void registerNodes(GFNodeManager& manager) {
  manager.registerNodeWithName("New Effect", description(), [] { return std::make_shared<Effect>(); });
}

}  // namespace

QC_PLUGIN_ENTRY(registerNodes)
