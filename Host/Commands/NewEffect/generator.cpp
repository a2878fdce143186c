// SPDX-License-Identifier: BSD-3-Clause
#include "Pixels.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <cmath>
#include <iterator>
#include <numbers>

namespace {

PropertyList description() {
  return describe("New Effect", "Paints the bands of a gradient at an angle.", "generator",
                  {{"outputImagePort", "outputImage"}}, false);
}

constexpr std::uint32_t kFormats[] = {VortoPixelFormat::RGBA8, VortoPixelFormat::RGBA16, VortoPixelFormat::RGBAFloat};

class Effect : public QCPatch {
 public:
  Effect() : QCPatch(description()) {
    gradient_ = addInputPort<VRTGradientPort>("inputGradient", named("Gradient"));
    gradient_->setValue(gradientOf({{0.1F, 0.3F, 0.5F, 1}, {0.95F, 0.9F, 0.8F, 1}, {0.8F, 0.3F, 0.2F, 1}}));
    count_ = addInputPort<QCNumberPort>("inputCount", number("Count", 0, 100, 3));
    angle_ = addInputPort<QCNumberPort>("inputAngle", number("Angle", -360, 360, 30));  // degrees, clockwise
    mirrored_ = addInputPort<QCBooleanPort>("inputMirrored", named("Mirrored"));
    background_ =
        addInputPort<QCColorPort>("inputBackground", named("Background"));  // where the gradient lets it through
    // The size and depth that hosts ask for.
    width_ = addInputPort<QCIndexPort>("inputWidth", wholeNumber("Width", 1, 65536, 1920));
    height_ = addInputPort<QCIndexPort>("inputHeight", wholeNumber("Height", 1, 65536, 1080));
    depth_ = addInputPort<QCIndexPort>("inputDepth", choice("Depth", {"8-bit", "16-bit", "Float"}));
    output_ = addOutputPort<QCImagePort>("outputImage", named("Image"));
  }

 protected:
  bool execute(double, std::string* reason) override {
    VRTImage::setBitmapOfPort(*output_, nullptr);  // a failure leaves no older result behind
    const std::uint32_t depth = std::min<std::uint32_t>(depth_->indexValue(), std::size(kFormats) - 1);
    const auto result = makeBitmap(width_->indexValue(), height_->indexValue(), kFormats[depth], reason);
    if (!result) return false;

    const GradientTable table(*gradient_);
    const auto color = background_->colorValue();
    const Color background =
        premultiplied(float(color->red), float(color->green), float(color->blue), float(color->alpha));
    const double angle = angle_->doubleValue() * std::numbers::pi / 180;
    const double bands = count_->doubleValue() / std::min(result->width, result->height);
    const double stepX = std::cos(angle) * bands, stepY = std::sin(angle) * bands;
    const bool isMirrored = mirrored_->booleanValue();
    paint(*result, [&](std::uint32_t x, std::uint32_t y) {
      const double place = x * stepX + y * stepY;
      const double part = place - std::floor(place);
      const Color band = table.at(static_cast<float>(isMirrored ? 1 - std::abs(2 * part - 1) : part));
      return sum(band, scaled(background, 1 - band.alpha));
    });
    VRTImage::setBitmapOfPort(*output_, result);
    return true;
  }

 private:
  std::shared_ptr<VRTGradientPort> gradient_;
  std::shared_ptr<QCNumberPort> count_;
  std::shared_ptr<QCNumberPort> angle_;
  std::shared_ptr<QCBooleanPort> mirrored_;
  std::shared_ptr<QCColorPort> background_;
  std::shared_ptr<QCIndexPort> width_;
  std::shared_ptr<QCIndexPort> height_;
  std::shared_ptr<QCIndexPort> depth_;
  std::shared_ptr<QCImagePort> output_;
};

void registerNodes(GFNodeManager& manager) {
  manager.registerNodeWithName("New Effect", description(), [] { return std::make_shared<Effect>(); });
}

}  // namespace

QC_PLUGIN_ENTRY(registerNodes)
