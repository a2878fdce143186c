#include "Effects/GradientRamp/GradientRampKernel.h"
#include "Effects/Support/GeneratorPatch.h"
#include "Effects/Support/PixelLayout.h"
#include "Effects/Support/Ramp.h"
#include "Platform/QuartzComposer/QCPlugIn.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"

#include <vector>

namespace vorto::effects {
namespace {

template <class Layout, class Table>
void fillRows(const Ramp& ramp, VortoBitmap& out, const Table& table) {
  using Channel = typename Layout::Channel;
  for (std::size_t y = 0; y < out.height; ++y) {
    gradientRampRow<Layout>(ramp.rowStart(static_cast<double>(y)), ramp.perColumn, rowOf<Channel>(out, y), out.width,
                            table.data());
  }
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
    if (out.formatCode == formatRGBA8) {
      fillRows<RGBA8>(ramp, out, roundedGradientTable<std::uint8_t>(*gradient));
    } else if (out.formatCode == formatRGBA16) {
      fillRows<RGBA16>(ramp, out, roundedGradientTable<std::uint16_t>(*gradient));
    } else {
      fillRows<RGBAFloat>(ramp, out, floatGradientTable(*gradient));
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
