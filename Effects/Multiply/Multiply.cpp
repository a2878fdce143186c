// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Multiply.h"
#include "Effects/Support/BlendModePatch.h"
#include "Effects/Support/PixelLayout.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace vorto::effects {
namespace {

class MultiplyPatch : public BlendModePatch {
 public:
  static PropertyList description() {
    return describe(
        "Multiply",
        "Multiplies the foreground with the background, which darkens; white leaves the background as it is.");
  }
  MultiplyPatch() : BlendModePatch(description()) {}

 private:
  void blendRow(std::uint32_t formatCode, const void* background, const void* foreground, void* out,
                std::size_t count) override {
    withLayout(formatCode, [&](auto layout) {
      using Channel = typename decltype(layout)::Channel;
      multiplyRow<decltype(layout)>(static_cast<const Channel*>(background), static_cast<const Channel*>(foreground),
                                    static_cast<Channel*>(out), count);
    });
  }
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::MultiplyPatch>)
