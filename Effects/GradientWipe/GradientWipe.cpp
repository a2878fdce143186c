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

#include <tuple>

namespace vorto::effects {
namespace {

constexpr double kDefaultSoftness = 0.1;

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
  bool prepare(std::string* reason) override {
    const auto read = inputBitmap(*shapeImage_, reason);
    if (read) shape_ = *read && (*read)->width > 0 && (*read)->height > 0 ? *read : nullptr;
    return read.has_value();
  }

  void mix(const VortoBitmap& a, const VortoBitmap& b, double time, VortoBitmap& out) override {
    const std::vector<double>& places = lumas();
    const double softness = std::clamp(finiteOr(softness_->doubleValue(), kDefaultSoftness), 0.0, 1.0);
    withLayout(out.formatCode, [&](auto layout) {
      using Channel = typename decltype(layout)::Channel;
      auto& weights = std::get<std::vector<MixWeight<Channel>>>(weights_);
      wipeWeights<Channel>(places, time, softness, weights);
      std::vector<MixWeight<Channel>> row(out.width);
      const auto mixRows = [&](auto fillRow) {
        for (std::size_t y = 0; y < out.height; ++y) {
          fillRow(y);
          mixPixels(rowOf<Channel>(a, y), rowOf<Channel>(b, y), rowOf<Channel>(out, y), row.size(), row.data());
        }
      };
      if (shape_) {
        ShapeLumas shape(*shape_, out.width, out.height);
        mixRows([&](std::size_t y) { valueRow(shape.row(y).data(), row.data(), row.size(), weights.data()); });
      } else {
        const Ramp ramp = Ramp::across(out.width, out.height, finiteOr(angle_->doubleValue(), 0));
        mixRows([&](std::size_t y) {
          wipeRow(ramp.rowStart(static_cast<double>(y)), ramp.perColumn, weights.data(), weights.size(), row.data(),
                  row.size());
        });
      }
    });
    shape_ = nullptr;  // a picture is not kept longer than its frame
  }

  const std::vector<double>& lumas() {
    const auto held = std::dynamic_pointer_cast<VRTGradient>(gradient_->value());
    const auto gradient = held ? held : evenGradient();
    return lumas_.of(gradient->stateValue(), [&] { return wipeLumas(floatGradientTable(*gradient)); });
  }

  KeptForState<std::vector<double>> lumas_;
  std::tuple<std::vector<std::uint32_t>, std::vector<float>> weights_;  // memory that is used again
  std::shared_ptr<VRTGradientPort> gradient_;
  std::shared_ptr<QCNumberPort> angle_;
  std::shared_ptr<QCNumberPort> softness_;
  std::shared_ptr<QCImagePort> shapeImage_;
  BitmapRef shape_;  // of the frame that is being made; null without one
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::GradientWipePatch>)
