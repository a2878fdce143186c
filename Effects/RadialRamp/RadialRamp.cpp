// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/GeneratorPatch.h"
#include "Effects/Support/GradientTable.h"
#include "Effects/kernels/Distance.h"
#include "Effects/kernels/GradientMap.h"
#include "Effects/kernels/GradientRow.h"
#include "Platform/QuartzComposer/QCPlugIn.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"

#include <algorithm>

namespace vorto::effects {
namespace {

struct Circle {
  double centerX, centerY, radius;  // in pixels
};

// fillRow(positions, y) fills a row.
template <class FillRow>
void fillRows(const Circle& circle, const VortoBitmap& out, FillRow fillRow) {
  std::vector<float> positions(out.width);
  for (std::size_t y = 0; y < out.height; ++y) {
    const auto row =
        DistanceRow::at(static_cast<double>(y), circle.centerX, circle.centerY, circle.radius, circle.radius);
    distanceRow<CircleShape>(row, positions.data(), positions.size());
    fillRow(positions.data(), y);
  }
}

template <class Layout>
void fillByNearest(const Circle& circle, VortoBitmap& out, const VRTGradient& gradient) {
  using Channel = typename Layout::Channel;
  const auto table = laidTable<Layout>(roundedGradientTable<Channel>(gradient));
  fillRows(circle, out, [&](const float* positions, std::size_t y) {
    gradientRow<Layout>(positions, rowOf<Channel>(out, y), out.width, table.data());
  });
}

void fillFloats(const Circle& circle, VortoBitmap& out, const VRTGradient& gradient) {
  const auto table = mapTable<RGBAFloat>(floatGradientTable(gradient));
  fillRows(circle, out, [&](const float* positions, std::size_t y) {
    gradientFloatRow(positions, rowOf<float>(out, y), out.width, table.entries.data());
  });
}

// The center is in fractions of the image's width and height, from the upper left corner; the radius is one of half the
// shorter side.
class RadialRampPatch : public GeneratorPatch {
 public:
  static PropertyList description() {
    return describe("Radial Ramp", "Paints a gradient in circles, from a center outwards.");
  }

  RadialRampPatch() : GeneratorPatch(description()) {
    gradient_ = addInputPort<VRTGradientPort>("inputGradient", portAttributes("Gradient"));
    gradient_->setValue(VRTGradient::gradient());
    centerX_ = addInputPort<QCNumberPort>("inputCenterX", numberAttributes("Center X", 0, 1, 0.5));
    centerY_ = addInputPort<QCNumberPort>("inputCenterY", numberAttributes("Center Y", 0, 1, 0.5));
    radius_ = addInputPort<QCNumberPort>("inputRadius", numberAttributes("Radius", 0, 4, 1));
    addSizePorts();
  }

 private:
  void fill(VortoBitmap& out) override {
    const auto held = std::dynamic_pointer_cast<VRTGradient>(gradient_->value());
    const auto gradient = held ? held : VRTGradient::gradient();
    const double half = std::min(out.width, out.height) / 2.0;
    const Circle circle{nearby(*centerX_, 0.5) * out.width, nearby(*centerY_, 0.5) * out.height,
                        std::max(nearby(*radius_, 1) * half, kLeastRadius)};
    if (out.formatCode == VortoPixelFormat::RGBA8) {
      fillByNearest<RGBA8>(circle, out, *gradient);
    } else if (out.formatCode == VortoPixelFormat::RGBA16) {
      fillByNearest<RGBA16>(circle, out, *gradient);
    } else {
      fillFloats(circle, out, *gradient);
    }
  }

  // Without a radius everything but the center itself has the last color.
  static constexpr double kLeastRadius = 1e-6;

  // What a port holds, no further away than single precision can tell pixels apart.
  static double nearby(const QCNumberPort& port, double fallback) {
    return std::clamp(finiteOr(port.doubleValue(), fallback), -100.0, 100.0);
  }

  std::shared_ptr<VRTGradientPort> gradient_;
  std::shared_ptr<QCNumberPort> centerX_;
  std::shared_ptr<QCNumberPort> centerY_;
  std::shared_ptr<QCNumberPort> radius_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::RadialRampPatch>)
