// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/ColorPixel.h"
#include "Effects/Support/GeneratorPatch.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <algorithm>
#include <cstring>

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
      auto* const first = rowOf<typename Layout::Channel>(out, 0);
      for (std::size_t x = 0; x < out.width; ++x) {
        std::copy_n(pixel.data(), Layout::kChannels, first + x * Layout::kChannels);
      }
      for (std::size_t y = 1; y < out.height; ++y) {
        std::memcpy(rowOf<std::uint8_t>(out, y), first, out.width * sizeof(pixel));
      }
    });
  }

  std::shared_ptr<QCColorPort> color_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::SolidColorPatch>)
