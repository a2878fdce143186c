// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/PixelLayout.h"
#include "Effects/Support/TransitionPatch.h"
#include "Effects/kernels/Mix.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace vorto::effects {
namespace {

class DissolvePatch : public TransitionPatch {
 public:
  static PropertyList description() { return describe("Dissolve", "Fades from one image to the other."); }
  DissolvePatch() : TransitionPatch(description()) {}

 private:
  void mix(const VortoBitmap& a, const VortoBitmap& b, double time, VortoBitmap& out) override {
    withLayout(out.formatCode, [&](auto layout) {
      using Channel = typename decltype(layout)::Channel;
      const MixWeight<Channel> weight = mixWeight<Channel>(time);
      const PixelRuns runs(a, b, out);
      for (std::size_t y = 0; y < runs.count; ++y) {
        mixRow(rowOf<Channel>(a, y), rowOf<Channel>(b, y), rowOf<Channel>(out, y), runs.pixels, weight);
      }
    });
  }
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::DissolvePatch>)
