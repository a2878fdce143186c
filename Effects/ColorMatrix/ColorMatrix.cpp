// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/ColorMatrix.h"
#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/PointFilterOf.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

namespace vorto::effects {
namespace {

constexpr const char* kComponents[] = {"Red", "Green", "Blue", "Alpha"};
constexpr std::size_t kOffset = 4;

// The ports are "inputRedFromGreen" and so on, and "inputRedOffset", in the order of the matrix; inspectors have room
// for names such as "R from G".
class ColorMatrixPatch : public PointFilterOf<ColorMatrixPatch> {
 public:
  static PropertyList description() {
    return describe(
        "Color Matrix",
        "Mixes each component of an image's color, and its opacity, from shares of all four and a constant.");
  }

  ColorMatrixPatch() : PointFilterOf(description()) {
    for (std::size_t to = 0; to < 4; ++to) {
      const std::string component = kComponents[to];
      for (std::size_t from = 0; from < 4; ++from) {
        const std::string source = kComponents[from];
        ports_[to][from] = addInputPort<QCNumberPort>(
            "input" + component + "From" + source,
            numberAttributes(component.substr(0, 1) + " from " + source.substr(0, 1), -4, 4, neutral(to, from)));
      }
      ports_[to][kOffset] = addInputPort<QCNumberPort>("input" + component + "Offset",
                                                       numberAttributes(component.substr(0, 1) + " Offset", -4, 4, 0));
    }
  }

  template <class Layout, class Channel = typename Layout::Channel>
  void row(const Channel* in, Channel* out, std::size_t count) const {
    colorMatrixRow<Layout>(in, out, count, matrix_);
  }

 private:
  static double neutral(std::size_t to, std::size_t from) { return to == from ? 1 : 0; }

  bool prepare() override {
    constexpr double kMost = 1e6;  // products of what is larger could leave what floats hold
    bool isNeutral = true;
    for (std::size_t to = 0; to < 4; ++to) {
      for (std::size_t from = 0; from <= kOffset; ++from) {
        const double weight = finiteOr(ports_[to][from]->doubleValue(), neutral(to, from));
        matrix_[to][from] = static_cast<float>(std::clamp(weight, -kMost, kMost));
        isNeutral = isNeutral && weight == neutral(to, from);
      }
    }
    return !isNeutral;
  }

  std::array<std::array<std::shared_ptr<QCNumberPort>, 5>, 4> ports_;
  ColorMatrix matrix_{};
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::ColorMatrixPatch>)
