// SPDX-License-Identifier: BSD-3-Clause
#include "Pixels.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace {

PropertyList description() {
  return describe("New Effect", "Lays an image on another as colored light.", "blendMode",
                  {{"inputBackgroundImagePort", "inputBackgroundImage"},
                   {"inputForegroundImagePort", "inputForegroundImage"},
                   {"outputImagePort", "outputImage"}},
                  false);
}

enum Mode : std::uint32_t { Screen, Multiply };

// One component of premultiplied colors with their opacities.
float blended(Mode mode, float behind, float front, float alphaBehind, float alphaFront) {
  if (mode == Screen) return behind + front - behind * front;
  return behind * front + behind * (1 - alphaFront) + front * (1 - alphaBehind);
}

Color blended(Mode mode, Color behind, Color front) {
  const auto of = [&](float a, float b) { return blended(mode, a, b, behind.alpha, front.alpha); };
  return {of(behind.red, front.red), of(behind.green, front.green), of(behind.blue, front.blue),
          behind.alpha + front.alpha - behind.alpha * front.alpha};
}

class Effect : public QCPatch {
 public:
  Effect() : QCPatch(description()) {
    background_ = addInputPort<QCImagePort>("inputBackgroundImage", named("Background"));
    foreground_ = addInputPort<QCImagePort>("inputForegroundImage", named("Foreground"));
    gradient_ = addInputPort<VRTGradientPort>("inputGradient", named("Gradient"));
    gradient_->setValue(gradientOf({{0, 0, 0, 1}, {0.9F, 0.4F, 0.1F, 1}, {1, 0.9F, 0.6F, 1}}));
    colored_ = addInputPort<QCBooleanPort>("inputColored", colored());
    mode_ = addInputPort<QCIndexPort>("inputMode", choice("Mode", {"Screen", "Multiply"}));
    opacity_ = addInputPort<QCNumberPort>("inputOpacity", number("Opacity", 0, 1, 1));
    output_ = addOutputPort<QCImagePort>("outputImage", named("Image"));
  }

 protected:
  // The result has the size of the background; beyond the foreground's edges the background shows.
  bool execute(double, std::string* reason) override {
    VRTImage::setBitmapOfPort(*output_, nullptr);  // a failure leaves no older result behind
    const auto background = VRTImage::bitmapOfPort(*background_), foreground = VRTImage::bitmapOfPort(*foreground_);
    if (!background || !foreground) return true;  // a missing image gives a missing image
    if (background->formatCode != foreground->formatCode) {
      *reason = "the images differ in layout";
      return false;
    }
    const auto result = makeBitmap(background->width, background->height, background->formatCode, reason);
    if (!result) return false;

    const GradientTable table(*gradient_);
    const bool isColored = colored_->booleanValue();
    const Mode mode = mode_->indexValue() == Multiply ? Multiply : Screen;
    const auto opacity = static_cast<float>(std::clamp(opacity_->doubleValue(), 0.0, 1.0));
    paint(
        *result,
        [&](std::uint32_t, std::uint32_t, Color behind, Color front) {
          if (isColored) front = scaled(table.at(brightness(front)), front.alpha);
          return blended(mode, behind, scaled(front, opacity));
        },
        *background, *foreground);
    VRTImage::setBitmapOfPort(*output_, result);
    return true;
  }

 private:
  static PropertyList colored() {
    PropertyList attributes = named("Colored by the Gradient");
    attributes.set("default", PropertyList::boolean(true));
    return attributes;
  }

  std::shared_ptr<QCImagePort> background_;
  std::shared_ptr<QCImagePort> foreground_;
  std::shared_ptr<VRTGradientPort> gradient_;
  std::shared_ptr<QCBooleanPort> colored_;
  std::shared_ptr<QCIndexPort> mode_;
  std::shared_ptr<QCNumberPort> opacity_;
  std::shared_ptr<QCImagePort> output_;
};

void registerNodes(GFNodeManager& manager) {
  manager.registerNodeWithName("New Effect", description(), [] { return std::make_shared<Effect>(); });
}

}  // namespace

QC_PLUGIN_ENTRY(registerNodes)
