// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/FilterPatch.h"
#include "Effects/Support/GaussianBlur.h"
#include "Effects/Support/PixelLayout.h"
#include "Effects/kernels/Unsharp.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace vorto::effects {
namespace {

// The radius is the sigma of the Gaussian that the image is compared with, in pixels; the threshold is in units of 0 to
// 1 of straight color.
class UnsharpMaskPatch : public FilterPatch {
 public:
  static PropertyList description() {
    return describe("Unsharp Mask",
                    "Sharpens an image by what sets it apart from its blur. Differences below the threshold, like "
                    "grain, stay as they are.");
  }

  UnsharpMaskPatch() : FilterPatch(description()) {
    amount_ = addInputPort<QCNumberPort>("inputAmount", numberAttributes("Amount", 0, kMostAmount, kAmount));
    radius_ = addInputPort<QCNumberPort>("inputRadius", numberAttributes("Radius", 0.1, kLargestSigma, kRadius));
    threshold_ = addInputPort<QCNumberPort>("inputThreshold", numberAttributes("Threshold", 0, 1, 0));
  }

 private:
  static constexpr double kAmount = 0.5, kMostAmount = 5;
  static constexpr double kRadius = 2;

  BitmapRef filtered(const BitmapRef& in, std::string* reason) override {
    const double amount = std::clamp(finiteOr(amount_->doubleValue(), kAmount), 0.0, kMostAmount);
    const double threshold = std::clamp(finiteOr(threshold_->doubleValue(), 0), 0.0, 1.0);
    const double sigma = finiteOr(radius_->doubleValue(), kRadius);
    if (amount == 0 || isNoBlur(sigma)) return in;
    const auto out = makeBitmap(in->width, in->height, in->formatCode, reason);
    if (!out) return nullptr;
    const UnsharpSettings settings{static_cast<float>(amount), static_cast<float>(threshold)};
    const auto sharpen = [&](const BlurredBlock& block) {
      withLayout(in->formatCode, [&](auto layout) { sharpenBlock<decltype(layout)>(*in, block, settings, *out); });
    };
    return gaussianBlur(*in, sigma, GaussianEdges::Repeat, sharpen, reason) ? out : nullptr;
  }

  template <class Layout>
  static void sharpenBlock(const VortoBitmap& in, const BlurredBlock& block, UnsharpSettings settings,
                           VortoBitmap& out) {
    using Channel = typename Layout::Channel;
    constexpr std::size_t kRun = 256;
    float blurred[4 * kRun];
    for (std::size_t row = 0; row < block.rows; ++row) {
      for (std::size_t i = 0; i < block.pixels; i += kRun) {
        const std::size_t count = std::min(kRun, block.pixels - i);
        const std::size_t at = 4 * (block.x + i), y = block.y + row;
        gaussianStore<RGBAFloat>(block.lines + row * block.lanes + 4 * i, block.lanes, 1, count, blurred, 0);
        unsharpRow<Layout>(rowOf<Channel>(in, y) + at, blurred, rowOf<Channel>(out, y) + at, count, settings);
      }
    }
  }

  std::shared_ptr<QCNumberPort> amount_;
  std::shared_ptr<QCNumberPort> radius_;
  std::shared_ptr<QCNumberPort> threshold_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::UnsharpMaskPatch>)
