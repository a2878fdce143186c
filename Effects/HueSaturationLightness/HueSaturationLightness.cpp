// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/PointFilterOf.h"
#include "Effects/kernels/HueShift.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace vorto::effects {
namespace {

// Saturation goes from grey at -1 to twice as much at 1; lightness from black at -1 to white at 1.
class HueSaturationLightnessPatch : public PointFilterOf<HueSaturationLightnessPatch> {
 public:
  static PropertyList description() {
    return describe(
        "Hue Saturation Lightness",
        "Turns the hues of an image around the color wheel, and makes its colors stronger or paler, lighter "
        "or darker.");
  }

  HueSaturationLightnessPatch() : PointFilterOf(description()) {
    hue_ = addInputPort<QCNumberPort>("inputHue", numberAttributes("Hue", -180, 180, 0));
    saturation_ = addInputPort<QCNumberPort>("inputSaturation", numberAttributes("Saturation", -1, 1, 0));
    lightness_ = addInputPort<QCNumberPort>("inputLightness", numberAttributes("Lightness", -1, 1, 0));
  }

  template <class Layout, class Channel = typename Layout::Channel>
  void row(const Channel* in, Channel* out, std::size_t count) const {
    hueShiftRow<Layout>(in, out, count, shift_);
  }

 private:
  bool prepare() override {
    const double turned = std::fmod(finiteOr(hue_->doubleValue(), 0), 360.0);
    const double saturation = std::clamp(finiteOr(saturation_->doubleValue(), 0), -1.0, 1.0);
    const double lightness = std::clamp(finiteOr(lightness_->doubleValue(), 0), -1.0, 1.0);
    const auto sextants = static_cast<float>((turned < 0 ? turned + 360 : turned) / 60);
    shift_.sextants = sextants < 6 ? sextants : 0.0F;
    shift_.saturation = static_cast<float>(1 + saturation);
    shift_.lightScale = static_cast<float>(1 - std::abs(lightness));
    shift_.lightness = static_cast<float>(std::max(lightness, 0.0));
    return turned != 0 || saturation != 0 || lightness != 0;
  }

  std::shared_ptr<QCNumberPort> hue_;
  std::shared_ptr<QCNumberPort> saturation_;
  std::shared_ptr<QCNumberPort> lightness_;
  HueShift shift_{};
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::HueSaturationLightnessPatch>)
