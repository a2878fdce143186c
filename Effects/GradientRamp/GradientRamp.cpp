// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/GradientRamp/GradientRampKernel.h"
#include "Effects/Support/GeneratorPatch.h"
#include "Effects/Support/PixelLayout.h"
#include "Effects/Support/Ramp.h"
#include "Platform/QuartzComposer/QCPlugIn.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"

#include <cstring>

namespace vorto::effects {
namespace {

// fillRow(y) fills a row; the rows of a ramp that runs along them are all alike.
template <class FillRow>
void fillRows(const Ramp& ramp, VortoBitmap& out, FillRow fillRow) {
  for (std::size_t y = 0; y < out.height; ++y) {
    if (y > 0 && ramp.perRow == 0) {
      std::memcpy(rowOf<std::uint8_t>(out, y), rowOf<std::uint8_t>(out, 0), rowBytes(out));
    } else {
      fillRow(y);
    }
  }
}

template <class Layout>
void fillByNearest(const Ramp& ramp, VortoBitmap& out, const VRTGradient& gradient) {
  using Channel = typename Layout::Channel;
  const auto table = laidTable<Layout>(roundedGradientTable<Channel>(gradient));
  fillRows(ramp, out, [&](std::size_t y) {
    gradientRampRow<Layout>(ramp.rowStart(static_cast<double>(y)), ramp.perColumn, rowOf<Channel>(out, y), out.width,
                            table.data());
  });
}

void fillFloats(const Ramp& ramp, VortoBitmap& out, const VRTGradient& gradient) {
  const auto table = floatGradientTable(gradient);
  fillRows(ramp, out, [&](std::size_t y) {
    gradientRampFloatRow(ramp.rowStart(static_cast<double>(y)), ramp.perColumn, rowOf<float>(out, y), out.width,
                         table.data());
  });
}

// The points are in fractions of the image's width and height, from the upper left corner.
class GradientRampPatch : public GeneratorPatch {
 public:
  static PropertyList description() {
    return describe("Gradient Ramp", "Paints a gradient from a start to an end point.");
  }

  GradientRampPatch() : GeneratorPatch(description()) {
    gradient_ = addInputPort<VRTGradientPort>("inputGradient", portAttributes("Gradient"));
    gradient_->setValue(VRTGradient::gradient());
    startX_ = addInputPort<QCNumberPort>("inputStartX", numberAttributes("Start X", 0, 1, 0));
    startY_ = addInputPort<QCNumberPort>("inputStartY", numberAttributes("Start Y", 0, 1, 0.5));
    endX_ = addInputPort<QCNumberPort>("inputEndX", numberAttributes("End X", 0, 1, 1));
    endY_ = addInputPort<QCNumberPort>("inputEndY", numberAttributes("End Y", 0, 1, 0.5));
    addSizePorts();
  }

 private:
  void fill(VortoBitmap& out) override {
    const auto held = std::dynamic_pointer_cast<VRTGradient>(gradient_->value());
    const auto gradient = held ? held : VRTGradient::gradient();
    const Ramp ramp = Ramp::between(
        finiteOr(startX_->doubleValue(), 0) * out.width, finiteOr(startY_->doubleValue(), 0.5) * out.height,
        finiteOr(endX_->doubleValue(), 1) * out.width, finiteOr(endY_->doubleValue(), 0.5) * out.height);
    if (out.formatCode == VortoPixelFormat::RGBA8) {
      fillByNearest<RGBA8>(ramp, out, *gradient);
    } else if (out.formatCode == VortoPixelFormat::RGBA16) {
      fillByNearest<RGBA16>(ramp, out, *gradient);
    } else {
      fillFloats(ramp, out, *gradient);
    }
  }

  std::shared_ptr<VRTGradientPort> gradient_;
  std::shared_ptr<QCNumberPort> startX_;
  std::shared_ptr<QCNumberPort> startY_;
  std::shared_ptr<QCNumberPort> endX_;
  std::shared_ptr<QCNumberPort> endY_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::GradientRampPatch>)
