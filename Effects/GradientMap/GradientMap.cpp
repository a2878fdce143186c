// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/GradientMap/GradientMapKernel.h"
#include "Effects/Support/EffectPatch.h"
#include "Effects/Support/EvenGradient.h"
#include "Effects/Support/PixelLayout.h"
#include "Platform/QuartzComposer/QCPlugIn.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"

#include <vector>

namespace vorto::effects {
namespace {

template <class Layout>
void mapRows(const VortoBitmap& in, VortoBitmap& out,
             const std::vector<GradientEntry<typename Layout::Channel>>& table) {
  using Channel = typename Layout::Channel;
  const auto opaque = laidTable<Layout>(table);
  for (std::size_t y = 0; y < in.height; ++y) {
    gradientMapRow<Layout>(rowOf<Channel>(in, y), rowOf<Channel>(out, y), in.width, table.data(), opaque.data());
  }
}

void mapFloatRows(const VortoBitmap& in, VortoBitmap& out, const std::vector<GradientEntry<float>>& table) {
  for (std::size_t y = 0; y < in.height; ++y) {
    gradientMapFloatRow(rowOf<float>(in, y), rowOf<float>(out, y), in.width, table.data());
  }
}

class GradientMapPatch : public EffectPatch {
 public:
  static PropertyList description() {
    return effectAttributes("Gradient Map",
                            "Colors an image by its brightness: shadows take the left end of the gradient, highlights "
                            "the right end. The gradient's opacity fades the image out.",
                            "filter", {{"inputImagePort", "inputImage"}, {"outputImagePort", "outputImage"}});
  }

  GradientMapPatch() : EffectPatch(description()) {
    image_ = addInputPort<QCImagePort>("inputImage", portAttributes("Image"));
    gradient_ = addInputPort<VRTGradientPort>("inputGradient", portAttributes("Gradient"));
    gradient_->setValue(evenGradient());
  }

 private:
  std::optional<BitmapRef> render(std::string* reason) override {
    auto image = inputBitmap(*image_, reason);
    if (!image || !*image) return image;
    const BitmapRef& in = *image;
    const auto gradient = std::dynamic_pointer_cast<VRTGradient>(gradient_->value());
    if (!gradient) return in;  // a port that was emptied maps nothing
    auto out = makeBitmap(in->width, in->height, in->formatCode, reason);
    if (!out) return std::nullopt;
    withLayout(in->formatCode, [&](auto layout) {
      using Layout = decltype(layout);
      if constexpr (std::is_same_v<Layout, RGBAFloat>) {
        mapFloatRows(*in, *out, floatGradientTable(*gradient));
      } else if constexpr (std::is_same_v<Layout, RGBA16>) {
        mapRows<Layout>(*in, *out, roundedGradientTable<std::uint16_t>(*gradient));
      } else {
        mapRows<Layout>(*in, *out, byteGradientTable(*gradient));
      }
    });
    return out;
  }

  std::shared_ptr<QCImagePort> image_;
  std::shared_ptr<VRTGradientPort> gradient_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::GradientMapPatch>)
