// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Levels.h"
#include "Effects/Levels/LevelsStage.h"
#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/EffectPatch.h"
#include "Effects/Support/KeptForState.h"
#include "Effects/Support/PixelLayout.h"
#include "Platform/QuartzComposer/QCPlugIn.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"

#include <tuple>

namespace vorto::effects {
namespace {

enum LevelsChannel { RGB, Red, Green, Blue, Alpha };

LevelsCurve colorCurve(const VRTHistogram& levels, int channel) {
  return {LevelsStage(levels, RGB), LevelsStage(levels, channel)};
}

bool isNeutral(const VRTHistogram& levels) {
  for (int channel = RGB; channel <= Alpha; ++channel) {
    if (!LevelsStage(levels, channel).isNeutral()) return false;
  }
  return true;
}

// The values of a curve for every value of an integer channel.
template <class Channel, class Curve>
LevelsTable<Channel> tabulated(const Curve& curve) {
  LevelsTable<Channel> table(kLevelsTableSize<Channel>);
  for (std::size_t i = 0; i <= kFull<Channel>; ++i) {
    table[i] = quantized<Channel>(curve.applyClipped(static_cast<double>(i) / kFull<Channel>));
  }
  return table;
}

template <class Channel>
LevelsTables<Channel> tablesOf(const VRTHistogram& levels) {
  const auto common = tabulated<Channel>(LevelsCurve{LevelsStage(levels, RGB), {}});
  const auto color = [&](int channel) {
    const LevelsCurve curve = colorCurve(levels, channel);
    return curve.own.isNeutral() ? common : tabulated<Channel>(curve);
  };
  const LevelsStage alpha(levels, Alpha);
  return {color(Red), color(Green), color(Blue), tabulated<Channel>(alpha), alpha.isNeutral()};
}

// What rows of a depth are put through.
template <class Channel>
auto prepared(const VRTHistogram& levels) {
  if constexpr (std::is_same_v<Channel, float>) {
    const auto stage = [&](int channel) { return LevelsStage(levels, channel).forFloats(); };
    return FloatLevels{stage(RGB), stage(Red), stage(Green), stage(Blue), stage(Alpha)};
  } else {
    return tablesOf<Channel>(levels);
  }
}
template <class Channel>
using KeptPrepared = KeptForState<decltype(prepared<Channel>(std::declval<const VRTHistogram&>()))>;

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
    if (!levels || isNeutral(*levels)) return in;
    auto out = makeBitmap(in->width, in->height, in->formatCode, reason);
    if (!out) return std::nullopt;
    withLayout(in->formatCode, [&](auto layout) {
      using Layout = decltype(layout);
      using Channel = typename Layout::Channel;
      const auto& made =
          std::get<KeptPrepared<Channel>>(kept_).of(levels->stateValue(), [&] { return prepared<Channel>(*levels); });
      for (std::size_t y = 0; y < in->height; ++y) {
        levelsRow<Layout>(rowOf<Channel>(*in, y), rowOf<Channel>(*out, y), in->width, made);
      }
    });
    return out;
  }

  std::tuple<KeptPrepared<std::uint8_t>, KeptPrepared<std::uint16_t>, KeptPrepared<float>> kept_;
  std::shared_ptr<QCImagePort> image_;
  std::shared_ptr<VRTHistogramPort> levels_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::LevelsPatch>)
