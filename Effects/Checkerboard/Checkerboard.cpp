// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/ColorPixel.h"
#include "Effects/Support/GeneratorPatch.h"
#include "Effects/Support/PixelLayout.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <algorithm>
#include <cstring>

namespace vorto::effects {
namespace {

template <class Layout>
void fillRow(VortoBitmap& out, std::size_t y, std::size_t cell, const LaidPixel<Layout>& first,
             const LaidPixel<Layout>& second) {
  auto* row = rowOf<typename Layout::Channel>(out, y);
  for (std::size_t x = 0; x < out.width; ++x, row += Layout::kChannels) {
    std::copy_n((x / cell) % 2 == 0 ? first.data() : second.data(), Layout::kChannels, row);
  }
}

// Every row is the first or the first with its colors exchanged.
template <class Layout>
void fillBoard(VortoBitmap& out, std::size_t cell, const LaidPixel<Layout>& a, const LaidPixel<Layout>& b) {
  for (std::size_t y = 0; y < out.height; ++y) {
    const bool even = (y / cell) % 2 == 0;
    if (y == 0) {
      fillRow<Layout>(out, y, cell, a, b);
    } else if (y == cell) {
      fillRow<Layout>(out, y, cell, b, a);
    } else {
      const std::size_t pattern = even ? 0 : cell;
      std::memcpy(rowOf<std::uint8_t>(out, y), rowOf<std::uint8_t>(out, pattern), rowBytes(out));
    }
  }
}

// By default the board on which editors show what is transparent: cells of 8 pixels, light grey and white.
class CheckerboardPatch : public GeneratorPatch {
 public:
  static PropertyList description() {
    return describe("Checkerboard", "Paints square cells in two colors, the first one in the upper left corner.");
  }

  CheckerboardPatch() : GeneratorPatch(description()) {
    colorA_ = addInputPort<QCColorPort>("inputColorA", portAttributes("First Color"));
    colorA_->setValue(std::make_shared<QCColor>(192.0 / 255, 192.0 / 255, 192.0 / 255, 1));
    colorB_ = addInputPort<QCColorPort>("inputColorB", portAttributes("Second Color"));
    colorB_->setValue(std::make_shared<QCColor>(1, 1, 1, 1));
    cellSize_ = addInputPort<QCIndexPort>("inputCellSize", indexAttributes("Cell Size", 1, 4096, 8));
    addSizePorts();
  }

 private:
  void fill(VortoBitmap& out) override {
    const std::size_t cell = std::max<std::size_t>(cellSize_->indexValue(), 1);
    const auto a = colorA_->colorValue();
    const auto b = colorB_->colorValue();
    withLayout(out.formatCode, [&](auto layout) {
      using Layout = decltype(layout);
      fillBoard<Layout>(out, cell, pixelOf<Layout>(*a), pixelOf<Layout>(*b));
    });
  }

  std::shared_ptr<QCColorPort> colorA_;
  std::shared_ptr<QCColorPort> colorB_;
  std::shared_ptr<QCIndexPort> cellSize_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::CheckerboardPatch>)
