// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/GaussianBlur.h"
#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/FilterPatch.h"
#include "Effects/Support/PixelLayout.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace vorto::effects {
namespace {

// The radius is the Gaussian's standard deviation, sigma, in pixels; 0 is the image itself. Outside the image lies
// nothing, or its edge pixels go on, so that a photograph's edges stay opaque.
class GaussianBlurPatch : public FilterPatch {
 public:
  static PropertyList description() {
    return describe(
        "Gaussian Blur",
        "Blurs an image softly and evenly. The radius is the standard deviation in pixels; beyond its edges "
        "the image is transparent, or its edge pixels repeat.");
  }

  GaussianBlurPatch() : FilterPatch(description()) {
    radius_ = addInputPort<QCNumberPort>("inputRadius", numberAttributes("Radius", 0, kLargestSigma, kRadius));
    edges_ = addInputPort<QCIndexPort>("inputEdges", menuAttributes("Edges", {"Transparent", "Repeat"}, 1));
  }

 private:
  static constexpr double kRadius = 10;

  BitmapRef filtered(const BitmapRef& in, std::string* reason) override {
    const double sigma = finiteOr(radius_->doubleValue(), kRadius);
    const std::uint32_t edges = edges_->indexValue();
    if (edges > 1) {
      if (reason) *reason = "inputEdges: there is no rule " + std::to_string(edges) + " for edges";
      return nullptr;
    }
    if (isNoBlur(sigma)) return in;
    const auto out = makeBitmap(in->width, in->height, in->formatCode, reason);
    if (!out) return nullptr;
    const auto rule = edges == 0 ? GaussianEdges::Transparent : GaussianEdges::Repeat;
    const auto store = [&](const BlurredBlock& block) {
      withLayout(out->formatCode, [&](auto layout) {
        using Layout = decltype(layout);
        gaussianStore<Layout>(block.lines, block.lanes, block.rows, block.pixels,
                              rowOf<typename Layout::Channel>(*out, block.y) + 4 * block.x, rowBytes(*out));
      });
    };
    return gaussianBlur(*in, sigma, rule, store, reason) ? out : nullptr;
  }

  std::shared_ptr<QCNumberPort> radius_;
  std::shared_ptr<QCIndexPort> edges_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::GaussianBlurPatch>)
