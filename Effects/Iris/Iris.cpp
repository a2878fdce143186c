// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/PixelLayout.h"
#include "Effects/Support/TransitionPatch.h"
#include "Effects/kernels/Distance.h"
#include "Effects/kernels/Mix.h"
#include "Effects/kernels/Reveal.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

namespace vorto::effects {
namespace {

constexpr double kDefaultSoftness = 0.1;

enum ShapeIndex : std::uint32_t { kCircle, kDiamond, kRectangle };

// The center in pixels, and what distances are counted in so that the image's furthest corner lies at 1.
struct Opening {
  double centerX, centerY, unitX, unitY;

  static Opening of(ShapeIndex shape, double width, double height, double centerX, double centerY) {
    const double reachX = std::max(std::abs(centerX), std::abs(width - centerX));
    const double reachY = std::max(std::abs(centerY), std::abs(height - centerY));
    if (shape == kRectangle) {  // of the image's proportions
      const double reach = std::max(reachX / width, reachY / height);
      return {centerX, centerY, reach * width, reach * height};
    }
    const double reach = shape == kCircle ? std::hypot(reachX, reachY) : reachX + reachY;
    return {centerX, centerY, reach, reach};
  }
};

template <class Function>
void withShape(ShapeIndex shape, Function function) {
  if (shape == kCircle) function(CircleShape());
  if (shape == kDiamond) function(DiamondShape());
  if (shape == kRectangle) function(RectangleShape());
}

class IrisPatch : public TransitionPatch {
 public:
  static PropertyList description() {
    return describe("Iris", "Opens the second image from a center outwards, in a circle, a diamond or a rectangle.");
  }

  IrisPatch() : TransitionPatch(description()) {
    shape_ =
        addInputPort<QCIndexPort>("inputShape", menuAttributes("Shape", {"Circle", "Diamond", "Rectangle"}, kCircle));
    centerX_ = addInputPort<QCNumberPort>("inputCenterX", numberAttributes("Center X", 0, 1, 0.5));
    centerY_ = addInputPort<QCNumberPort>("inputCenterY", numberAttributes("Center Y", 0, 1, 0.5));
    softness_ = addInputPort<QCNumberPort>("inputSoftness", numberAttributes("Softness", 0, 1, kDefaultSoftness));
  }

 private:
  // As in a wipe, the edge runs from 0 at time 0 to 1 + softness at time 1.
  void mix(const VortoBitmap& a, const VortoBitmap& b, double time, VortoBitmap& out) override {
    const auto shape = static_cast<ShapeIndex>(std::min<std::uint32_t>(shape_->indexValue(), kRectangle));
    const double softness = std::clamp(finiteOr(softness_->doubleValue(), kDefaultSoftness), 0.0, 1.0);
    const auto edge = static_cast<float>(time * (1 + softness));
    const float steepness = softness > 0 ? 1 / static_cast<float>(softness) : std::numeric_limits<float>::infinity();
    const Opening opening =
        Opening::of(shape, out.width, out.height, within(*centerX_) * out.width, within(*centerY_) * out.height);
    std::vector<float> distances(out.width);
    withLayout(out.formatCode, [&](auto layout) {
      using Channel = typename decltype(layout)::Channel;
      std::vector<MixWeight<Channel>> weights(out.width);
      for (std::size_t y = 0; y < out.height; ++y) {
        const auto row =
            DistanceRow::at(static_cast<double>(y), opening.centerX, opening.centerY, opening.unitX, opening.unitY);
        withShape(shape, [&](auto tag) { distanceRow<decltype(tag)>(row, distances.data(), distances.size()); });
        revealRow(distances.data(), edge, steepness, weights.data(), weights.size());
        mixPixels(rowOf<Channel>(a, y), rowOf<Channel>(b, y), rowOf<Channel>(out, y), weights.size(), weights.data());
      }
    });
  }

  static double within(const QCNumberPort& port) {
    return std::clamp(finiteOr(port.doubleValue(), 0.5), -100.0, 100.0);
  }

  std::shared_ptr<QCIndexPort> shape_;
  std::shared_ptr<QCNumberPort> centerX_;
  std::shared_ptr<QCNumberPort> centerY_;
  std::shared_ptr<QCNumberPort> softness_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::IrisPatch>)
