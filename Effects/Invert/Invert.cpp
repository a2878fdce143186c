// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Invert.h"
#include "Effects/Support/PointFilterOf.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace vorto::effects {
namespace {

class InvertPatch : public PointFilterOf<InvertPatch> {
 public:
  static PropertyList description() {
    return describe("Invert", "Turns every color into its complement: bright into dark, red into cyan.");
  }
  InvertPatch() : PointFilterOf(description()) {}

  template <class Layout, class Channel = typename Layout::Channel>
  void row(const Channel* in, Channel* out, std::size_t count) const {
    invertRow<Layout>(in, out, count);
  }

 private:
  bool prepare() override { return true; }
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::InvertPatch>)
