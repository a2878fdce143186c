// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Fill.h"
#include "Effects/Support/ColorPixel.h"
#include "Effects/Support/PointFilterOf.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <algorithm>

namespace vorto::effects {
namespace {

class FillPatch : public PointFilterOf<FillPatch> {
 public:
  static PropertyList description() {
    return describe("Fill", "Fills the shape of an image with one color; what is transparent stays so.");
  }
  FillPatch() : PointFilterOf(description()) {
    color_ = addInputPort<QCColorPort>("inputColor", portAttributes("Color"));
  }

  template <class Layout, class Channel = typename Layout::Channel>
  void row(const Channel* in, Channel* out, std::size_t count) const {
    LaidPixel<Layout> pixel = pixelOf<Layout>(*prepared_);
    if constexpr (std::is_integral_v<Channel>) {
      for (Channel& channel : pixel) channel = std::min(channel, pixel[Layout::kAlpha]);  // of colors above 1.0
    }
    fillRow<Layout>(in, out, count, pixel);
  }

 private:
  bool prepare() override {
    prepared_ = color_->colorValue();
    return true;
  }

  std::shared_ptr<QCColorPort> color_;
  std::shared_ptr<QCColor> prepared_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::FillPatch>)
