// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/GradientMap.h"
#include "Effects/Support/EvenGradient.h"
#include "Effects/Support/FilterPatch.h"
#include "Effects/Support/KeptForState.h"
#include "Effects/Support/PixelLayout.h"
#include "Platform/QuartzComposer/QCPlugIn.h"
#include "Ports/VRTObjects.h"
#include "Ports/VRTPorts.h"

#include <tuple>

namespace vorto::effects {
namespace {

template <class Layout>
using KeptTable = KeptForState<MapTable<Layout>>;

template <class Layout>
MapTable<Layout> tableOf(const VRTGradient& gradient) {
  if constexpr (std::is_same_v<Layout, RGBAFloat>) {
    return mapTable<Layout>(floatGradientTable(gradient));
  } else if constexpr (std::is_same_v<Layout, RGBA16>) {
    return mapTable<Layout>(roundedGradientTable<std::uint16_t>(gradient));
  } else {
    return mapTable<Layout>(byteGradientTable(gradient));
  }
}

class GradientMapPatch : public FilterPatch {
 public:
  static PropertyList description() {
    return describe(
        "Gradient Map",
        "Colors an image by its brightness: shadows take the left end of the gradient, highlights the right "
        "end. The gradient's opacity fades the image out.");
  }

  GradientMapPatch() : FilterPatch(description()) {
    gradient_ = addInputPort<VRTGradientPort>("inputGradient", portAttributes("Gradient"));
    gradient_->setValue(evenGradient());
  }

 private:
  BitmapRef filtered(const BitmapRef& in, std::string* reason) override {
    const auto gradient = std::dynamic_pointer_cast<VRTGradient>(gradient_->value());
    if (!gradient) return in;  // a port that was emptied maps nothing
    const auto out = makeBitmap(in->width, in->height, in->formatCode, reason);
    if (!out) return nullptr;
    withLayout(in->formatCode, [&](auto layout) {
      using Layout = decltype(layout);
      using Channel = typename Layout::Channel;
      const auto& table =
          std::get<KeptTable<Layout>>(tables_).of(gradient->stateValue(), [&] { return tableOf<Layout>(*gradient); });
      const PixelRuns runs(*in, *out);
      for (std::size_t y = 0; y < runs.count; ++y) {
        gradientMapRow<Layout>(rowOf<Channel>(*in, y), rowOf<Channel>(*out, y), runs.pixels, table);
      }
    });
    return out;
  }

  std::tuple<KeptTable<RGBA8>, KeptTable<ARGB8>, KeptTable<RGBA16>, KeptTable<RGBAFloat>> tables_;
  std::shared_ptr<VRTGradientPort> gradient_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::GradientMapPatch>)
