// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Levels/LevelsKernel.h"
#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/EffectPatch.h"
#include "Effects/Support/PixelLayout.h"
#include "Platform/QuartzComposer/QCPlugIn.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"

#include <vector>

namespace vorto::effects {
namespace {

enum LevelsChannel { RGB, Red, Green, Blue, Alpha };

template <class Real>
LevelsCurve<Real> colorCurve(const VRTHistogram& levels, int channel) {
  return {LevelsStage<Real>(levels, RGB), LevelsStage<Real>(levels, channel)};
}

template <class Real>
bool isNeutral(const VRTHistogram& levels) {
  for (int channel = RGB; channel <= Alpha; ++channel) {
    if (!LevelsStage<Real>(levels, channel).isNeutral()) return false;
  }
  return true;
}

// The values of a curve for every value of an integer channel.
template <class Channel, class Curve>
std::vector<Channel> tabulated(const Curve& curve) {
  std::vector<Channel> table(kFull<Channel> + std::size_t{1});
  for (std::size_t i = 0; i < table.size(); ++i) {
    table[i] = quantized<Channel>(curve.applyClipped(static_cast<double>(i) / kFull<Channel>));
  }
  return table;
}

template <class Layout>
void applyByTables(const VRTHistogram& levels, const VortoBitmap& in, VortoBitmap& out) {
  using Channel = typename Layout::Channel;
  std::vector<Channel> common;  // shared by the channels that have no levels of their own
  std::vector<Channel> own[3];
  const Channel* colors[3];
  for (int i = 0; i < 3; ++i) {
    const auto curve = colorCurve<double>(levels, Red + i);
    std::vector<Channel>& table = curve.own.isNeutral() ? common : own[i];
    if (table.empty()) table = tabulated<Channel>(curve);
    colors[i] = table.data();
  }
  const auto alpha = tabulated<Channel>(LevelsStage<double>(levels, Alpha));
  const LevelsTables<Channel> tables{colors[0], colors[1], colors[2], alpha.data()};
  for (std::size_t y = 0; y < in.height; ++y) {
    levelsRow<Layout>(rowOf<Channel>(in, y), rowOf<Channel>(out, y), in.width, tables);
  }
}

void applyToFloats(const VRTHistogram& levels, const VortoBitmap& in, VortoBitmap& out) {
  const LevelsCurves curves{colorCurve<float>(levels, Red), colorCurve<float>(levels, Green),
                            colorCurve<float>(levels, Blue), LevelsStage<float>(levels, Alpha)};
  for (std::size_t y = 0; y < in.height; ++y) {
    levelsFloatRow(rowOf<float>(in, y), rowOf<float>(out, y), in.width, curves);
  }
}

class LevelsPatch : public EffectPatch {
 public:
  static PropertyList description() {
    return effectAttributes("Levels",
                            "Stretches the tones between a black and a white point, shifts the middle tones with gamma "
                            "and limits the output range, for all colors together, then for each color and opacity.",
                            "filter", {{"inputImagePort", "inputImage"}, {"outputImagePort", "outputImage"}});
  }

  LevelsPatch() : EffectPatch(description()) {
    image_ = addInputPort<QCImagePort>("inputImage", portAttributes("Image"));
    levels_ = addInputPort<VRTHistogramPort>("inputLevels", portAttributes("Levels"));
    levels_->setValue(VRTHistogram::histogram());
  }

 private:
  std::optional<BitmapRef> render(std::string* reason) override {
    auto image = inputBitmap(*image_, reason);
    if (!image || !*image) return image;
    const BitmapRef& in = *image;
    const auto levels = std::dynamic_pointer_cast<VRTHistogram>(levels_->value());
    if (!levels || isNeutral<double>(*levels)) return in;
    auto out = makeBitmap(in->width, in->height, in->formatCode, reason);
    if (!out) return std::nullopt;
    withLayout(in->formatCode, [&](auto layout) {
      using Layout = decltype(layout);
      if constexpr (std::is_same_v<Layout, RGBAFloat>) {
        applyToFloats(*levels, *in, *out);
      } else {
        applyByTables<Layout>(*levels, *in, *out);
      }
    });
    return out;
  }

  std::shared_ptr<QCImagePort> image_;
  std::shared_ptr<VRTHistogramPort> levels_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::LevelsPatch>)
