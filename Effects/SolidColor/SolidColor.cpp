// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/ColorPixel.h"
#include "Effects/Support/GeneratorPatch.h"
#include "Effects/kernels/Paint.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace vorto::effects {
namespace {

class SolidColorPatch : public GeneratorPatch {
 public:
  static PropertyList description() { return describe("Solid Color", "Fills the image with one color."); }

  SolidColorPatch() : GeneratorPatch(description()) {
    color_ = addInputPort<QCColorPort>("inputColor", portAttributes("Color"));
    color_->setValue(std::make_shared<QCColor>(0.5, 0.5, 0.5, 1));
    addSizePorts();
  }

 private:
  void fill(VortoBitmap& out) override {
    withLayout(out.formatCode, [&](auto layout) {
      using Layout = decltype(layout);
      const LaidPixel<Layout> pixel = pixelOf<Layout>(*color_->colorValue());
      const PixelRuns runs(out);
      for (std::size_t y = 0; y < runs.count; ++y) {
        paintRow<Layout>(pixel, rowOf<typename Layout::Channel>(out, y), runs.pixels);
      }
    });
  }

  std::shared_ptr<QCColorPort> color_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::SolidColorPatch>)
