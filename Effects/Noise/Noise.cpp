// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Noise.h"
#include "Effects/Noise/NoiseField.h"
#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/GeneratorPatch.h"
#include "Effects/Support/PixelLayout.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <algorithm>

namespace vorto::effects {
namespace {

constexpr double kLargestScale = 4096;
constexpr double kDefaultScale = 200;
constexpr int kMostOctaves = 8;

class NoisePatch : public GeneratorPatch {
 public:
  static PropertyList description() {
    return describe("Noise",
                    "Paints random clouds, from soft fog to fine grain; the same seed gives the same picture.");
  }

  NoisePatch() : GeneratorPatch(description()) {
    scale_ = addInputPort<QCNumberPort>("inputScale", numberAttributes("Scale", 1, kLargestScale, kDefaultScale));
    octaves_ = addInputPort<QCIndexPort>("inputOctaves", indexAttributes("Octaves", 1, kMostOctaves, 5));
    seed_ = addInputPort<QCIndexPort>("inputSeed", indexAttributes("Seed", 0, 65535, 0));
    colors_ = addInputPort<QCIndexPort>("inputColors", menuAttributes("Colors", {"Monochrome", "Colored"}, 0));
    addSizePorts();
  }

 private:
  void fill(VortoBitmap& out) override {
    std::vector<NoiseField> fields;
    const std::uint32_t channels = colors_->indexValue() == 0 ? 1 : 3;
    for (std::uint32_t channel = 0; channel < channels; ++channel) fields.push_back(field(channel, out));
    withLayout(out.formatCode, [&](auto layout) {
      using Layout = decltype(layout);
      if constexpr (!std::is_same_v<Layout, ARGB8>) {
        for (std::size_t y = 0; y < out.height; ++y) {
          const float* const red = fields[0].row(y).data();
          const float* const green = channels == 1 ? red : fields[1].row(y).data();
          const float* const blue = channels == 1 ? red : fields[2].row(y).data();
          opaqueRow<Layout>(red, green, blue, rowOf<typename Layout::Channel>(out, y), out.width);
        }
      }
    });
  }

  NoiseField field(std::uint32_t channel, const VortoBitmap& out) const {
    const double scale = std::clamp(finiteOr(scale_->doubleValue(), kDefaultScale), 1.0, kLargestScale);
    const std::uint32_t octaves = std::clamp<std::uint32_t>(octaves_->indexValue(), 1, kMostOctaves);
    return {seed_->indexValue(), channel, scale, octaves, out.width, out.height};
  }

  std::shared_ptr<QCNumberPort> scale_;
  std::shared_ptr<QCIndexPort> octaves_;
  std::shared_ptr<QCIndexPort> seed_;
  std::shared_ptr<QCIndexPort> colors_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::NoisePatch>)
