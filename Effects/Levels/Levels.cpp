// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Levels.h"
#include "Effects/Levels/LevelsStage.h"
#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/FilterPatch.h"
#include "Effects/Support/KeptForState.h"
#include "Effects/Support/PixelLayout.h"
#include "Platform/QuartzComposer/QCPlugIn.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"

#include <tuple>

namespace vorto::effects {
namespace {

enum LevelsChannel { RGB, Red, Green, Blue, Alpha };

bool isNeutral(const VRTHistogram& levels) {
  for (int channel = RGB; channel <= Alpha; ++channel) {
    if (!LevelsStage(levels, channel).isNeutral()) return false;
  }
  return true;
}

template <class Channel>
double valueOf(std::size_t i) {
  return static_cast<double>(i) / kFull<Channel>;
}

// Every value of an integer channel, exactly.
template <class Channel>
LevelsBounds everyValue() {
  std::vector<double> values(kFull<Channel> + std::size_t{1});
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = valueOf<Channel>(i);
  return {values, values};
}

// The values of a curve that lie within these bounds: the exact ones where the bounds leave a choice.
template <class Channel, class Curve>
LevelsTable<Channel> tabulated(const LevelsBounds& bounds, const Curve& curve) {
  LevelsTable<Channel> table(kLevelsTableSize<Channel>);
  for (std::size_t i = 0; i <= kFull<Channel>; ++i) {
    table[i] = quantized<Channel>(bounds.low[i]);
    const bool isCertain = quantized<Channel>(bounds.high[i]) == table[i];
    if (!isCertain) table[i] = quantized<Channel>(curve.applyClipped(valueOf<Channel>(i)));
  }
  return table;
}

template <class Channel>
LevelsTables<Channel> tablesOf(const VRTHistogram& levels) {
  const LevelsStage common(levels, RGB), alpha(levels, Alpha);
  LevelsBounds commonBounds = everyValue<Channel>();
  common.applyClipped(commonBounds);
  auto commonTable = tabulated<Channel>(commonBounds, common);
  const auto color = [&](int channel) {
    const LevelsStage own(levels, channel);
    if (own.isNeutral()) return commonTable;
    LevelsBounds bounds = commonBounds;
    own.applyClipped(bounds);
    return tabulated<Channel>(bounds, LevelsCurve{common, own});
  };
  LevelsTables<Channel> tables{color(Red), color(Green), color(Blue), {}};
  if (!alpha.isNeutral()) {
    LevelsBounds bounds = everyValue<Channel>();
    alpha.applyClipped(bounds);
    tables.alpha = tabulated<Channel>(bounds, alpha);
  }
  return tables;
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

class LevelsPatch : public FilterPatch {
 public:
  static PropertyList description() {
    return describe(
        "Levels",
        "Stretches the tones between a black and a white point, shifts the middle tones with gamma and limits "
        "the output range, for all colors together, then for each color and opacity.");
  }

  LevelsPatch() : FilterPatch(description()) {
    levels_ = addInputPort<VRTHistogramPort>("inputLevels", portAttributes("Levels"));
    levels_->setValue(VRTHistogram::histogram());
  }

 private:
  BitmapRef filtered(const BitmapRef& in, std::string* reason) override {
    const auto levels = std::dynamic_pointer_cast<VRTHistogram>(levels_->value());
    if (!levels || isNeutral(*levels)) return in;
    const auto out = makeBitmap(in->width, in->height, in->formatCode, reason);
    if (!out) return nullptr;
    withLayout(in->formatCode, [&](auto layout) {
      using Layout = decltype(layout);
      using Channel = typename Layout::Channel;
      const auto& made =
          std::get<KeptPrepared<Channel>>(kept_).of(levels->stateValue(), [&] { return prepared<Channel>(*levels); });
      const PixelRuns runs(*in, *out);
      for (std::size_t y = 0; y < runs.count; ++y) {
        levelsRow<Layout>(rowOf<Channel>(*in, y), rowOf<Channel>(*out, y), runs.pixels, made);
      }
    });
    return out;
  }

  std::tuple<KeptPrepared<std::uint8_t>, KeptPrepared<std::uint16_t>, KeptPrepared<float>> kept_;
  std::shared_ptr<VRTHistogramPort> levels_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::LevelsPatch>)
