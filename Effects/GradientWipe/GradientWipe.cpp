// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/GradientWipe/ShapeLumas.h"
#include "Effects/GradientWipe/WipeWeights.h"
#include "Effects/Support/EvenGradient.h"
#include "Effects/Support/KeptForState.h"
#include "Effects/Support/PixelLayout.h"
#include "Effects/Support/Ramp.h"
#include "Effects/Support/TransitionPatch.h"
#include "Effects/kernels/GradientRow.h"
#include "Effects/kernels/Mix.h"
#include "Effects/kernels/Wipe.h"
#include "Platform/QuartzComposer/QCPlugIn.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"

#include <algorithm>
#include <tuple>

namespace vorto::effects {
namespace {

constexpr double kDefaultSoftness = 0.1;

// The rows of two images that one row is wiped from, on a ramp.
template <class Channel>
struct WipedRow {
  const Channel* a;
  const Channel* b;
  Channel* out;
  std::size_t width;
  double start, step;

  // The pixels of a row that lie in one run are neighbours, for positions never turn back.
  void wipe(const WipeWeights<Channel>& weights, std::vector<MixWeight<Channel>>& scratch) const {
    for (std::size_t x = 0; x < width;) {
      const auto run = runAt(weights, x);
      const std::size_t end = endOfRun(weights, run, x);
      wipeRun(weights, run->kind, x, end - x, scratch);
      x = end;
    }
  }

 private:
  using Weights = WipeWeights<Channel>;
  using RunRef = typename std::vector<typename Weights::Run>::const_iterator;

  std::size_t indexAt(std::size_t x) const { return wipeIndex(start, step, x, kGradientSteps); }

  RunRef runAt(const Weights& weights, std::size_t x) const {
    const auto isBefore = [](std::size_t index, const auto& run) { return index < run.first; };
    return std::upper_bound(weights.runs().begin(), weights.runs().end(), indexAt(x), isBefore) - 1;
  }

  // The first pixel after x that lies in another run; the width where there is none.
  std::size_t endOfRun(const Weights& weights, RunRef run, std::size_t x) const {
    std::size_t inside = x, outside = width;
    const auto isInside = [&](std::size_t pixel) { return runAt(weights, pixel) == run; };
    const std::size_t guess = guessedEnd(weights, run);
    for (const std::size_t near : {guess, guess - 1, guess + 1}) {
      if (near > inside && near < outside) (isInside(near) ? inside : outside) = near;
    }
    while (outside - inside > 1) {
      const std::size_t middle = inside + (outside - inside) / 2;
      (isInside(middle) ? inside : outside) = middle;
    }
    return outside;
  }

  // About where the ramp leaves a run.
  std::size_t guessedEnd(const Weights& weights, RunRef run) const {
    const bool climbs = step > 0;
    if (climbs && run + 1 == weights.runs().end()) return width;
    const std::size_t last = climbs ? (run + 1)->first : run->first;
    const double pixel = ((static_cast<double>(last) - 0.5) / (kGradientSteps - 1) - start) / step;
    return pixel > 0 && pixel < static_cast<double>(width) ? static_cast<std::size_t>(pixel) + 1 : width;
  }

  void wipeRun(const Weights& weights, typename Weights::Kind kind, std::size_t x, std::size_t count,
               std::vector<MixWeight<Channel>>& scratch) const {
    if (kind == Weights::Kind::Mixed) {
      wipeRow(start, step, x, weights.weights(), kGradientSteps, scratch.data(), count);
      mixPixels(a + 4 * x, b + 4 * x, out + 4 * x, count, scratch.data());
    } else {
      std::copy_n((kind == Weights::Kind::First ? a : b) + 4 * x, 4 * count, out + 4 * x);
    }
  }
};

// Places follow the direction, or the luma of a picture where there is one; the gradient says of each place when it
// changes.
class GradientWipePatch : public TransitionPatch {
 public:
  static PropertyList description() {
    return describe("Gradient Wipe",
                    "Reveals the second image along a direction, where the gradient is dark first and where it is "
                    "bright last; or by the brightness of a picture.");
  }

  GradientWipePatch() : TransitionPatch(description()) {
    gradient_ = addInputPort<VRTGradientPort>("inputGradient", portAttributes("Shape"));
    gradient_->setValue(evenGradient());
    angle_ = addInputPort<QCNumberPort>("inputAngle", numberAttributes("Angle", -360, 360, 0));
    softness_ = addInputPort<QCNumberPort>("inputSoftness", numberAttributes("Softness", 0, 1, kDefaultSoftness));
    shapeImage_ = addInputPort<QCImagePort>("inputShapeImage", portAttributes("Shape Image"));
  }

 private:
  bool prepare(std::string* reason) override { return inputBitmap(*shapeImage_, reason).has_value(); }

  void mix(const VortoBitmap& a, const VortoBitmap& b, double time, VortoBitmap& out) override {
    const double softness = std::clamp(finiteOr(softness_->doubleValue(), kDefaultSoftness), 0.0, 1.0);
    withLayout(out.formatCode, [&](auto layout) {
      using Channel = typename decltype(layout)::Channel;
      auto& weights = std::get<WipeWeights<Channel>>(weights_);
      weights.set(lumas(), time, softness);
      std::vector<MixWeight<Channel>> scratch(out.width);
      const BitmapRef picture = inputBitmap(*shapeImage_, nullptr).value_or(nullptr);
      if (picture && picture->width > 0 && picture->height > 0) {
        ShapeLumas shape(*picture, out.width, out.height);
        const auto* const every = weights.everyWeight();
        for (std::size_t y = 0; y < out.height; ++y) {
          valueRow(shape.row(y).data(), scratch.data(), scratch.size(), every);
          mixPixels(rowOf<Channel>(a, y), rowOf<Channel>(b, y), rowOf<Channel>(out, y), out.width, scratch.data());
        }
      } else {
        const Ramp ramp = Ramp::across(out.width, out.height, finiteOr(angle_->doubleValue(), 0));
        for (std::size_t y = 0; y < out.height; ++y) {
          const double start = ramp.rowStart(static_cast<double>(y));
          const WipedRow<Channel> row{
              rowOf<Channel>(a, y), rowOf<Channel>(b, y), rowOf<Channel>(out, y), out.width, start, ramp.perColumn};
          row.wipe(weights, scratch);
        }
      }
    });
  }

  const WipeLumas& lumas() {
    const auto held = std::dynamic_pointer_cast<VRTGradient>(gradient_->value());
    const auto gradient = held ? held : evenGradient();
    return lumas_.of(gradient->stateValue(), [&] { return WipeLumas(floatGradientTable(*gradient)); });
  }

  KeptForState<WipeLumas> lumas_;
  std::tuple<WipeWeights<std::uint8_t>, WipeWeights<std::uint16_t>, WipeWeights<float>> weights_;  // used again
  std::shared_ptr<VRTGradientPort> gradient_;
  std::shared_ptr<QCNumberPort> angle_;
  std::shared_ptr<QCNumberPort> softness_;
  std::shared_ptr<QCImagePort> shapeImage_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::GradientWipePatch>)
