// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/FilterPatch.h"
#include "Effects/Support/PixelLayout.h"
#include "Effects/Transform/Mapping.h"
#include "Effects/kernels/Resample.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <cstring>

namespace vorto::effects {
namespace {

enum Filter : std::uint32_t { kNearest, kBilinear, kLanczos3, kFilters };

constexpr double kMostPixels = 1e9;  // of a shift: farther than any image is wide
constexpr double kMostScale = 1e6;
constexpr double kLeastScale = 1.0 / (1 << 16);  // less is nothing
constexpr double kMostAnchor = 1000;

double limited(double value, double most) {
  return std::min(std::max(value, -most), most);
}

bool isWhole(double value) {
  return value == std::floor(value);
}

// Every pixel in its new place, and nothing where none comes to lie.
void copyShifted(const VortoBitmap& in, std::int64_t shiftX, std::int64_t shiftY, VortoBitmap& out) {
  const std::size_t pixelBytes = std::size_t{in.bitsPerChannel} / 8 * in.channels;
  const std::int64_t width = in.width, height = in.height;
  const auto left = static_cast<std::size_t>(std::clamp<std::int64_t>(shiftX, 0, width));
  const auto right = static_cast<std::size_t>(std::clamp<std::int64_t>(width + shiftX, 0, width));
  const auto from = static_cast<std::size_t>(std::max<std::int64_t>(-shiftX, 0));
  for (std::int64_t y = 0; y < height; ++y) {
    auto* const row = rowOf<std::uint8_t>(out, static_cast<std::size_t>(y));
    const std::int64_t source = y - shiftY;
    const bool isCovered = source >= 0 && source < height && right > left;
    const std::size_t begin = isCovered ? left * pixelBytes : 0, end = isCovered ? right * pixelBytes : 0;
    std::memset(row, 0, begin);
    if (isCovered) {
      const auto* const pixels = rowOf<std::uint8_t>(in, static_cast<std::size_t>(source));
      std::memcpy(row + begin, pixels + from * pixelBytes, end - begin);
    }
    std::memset(row + end, 0, out.width * pixelBytes - end);
  }
}

// The kernels become wider along the image's own columns and rows, by which it is scaled before it is turned.
class TransformPatch : public FilterPatch {
 public:
  static PropertyList description() {
    return describe("Transform",
                    "Moves, turns and scales an image within its frame, about a point that is a share of its width and "
                    "height; what leaves the frame is cut off.");
  }

  TransformPatch() : FilterPatch(description()) {
    shiftX_ = addInputPort<QCNumberPort>("inputTranslateX", numberAttributes("Translate X", -16384, 16384, 0));
    shiftY_ = addInputPort<QCNumberPort>("inputTranslateY", numberAttributes("Translate Y", -16384, 16384, 0));
    rotation_ = addInputPort<QCNumberPort>("inputRotation", numberAttributes("Rotation", -360, 360, 0));
    scaleX_ = addInputPort<QCNumberPort>("inputScaleX", numberAttributes("Scale X", -10, 10, 1));
    scaleY_ = addInputPort<QCNumberPort>("inputScaleY", numberAttributes("Scale Y", -10, 10, 1));
    anchorX_ = addInputPort<QCNumberPort>("inputAnchorX", numberAttributes("Anchor X", 0, 1, 0.5));
    anchorY_ = addInputPort<QCNumberPort>("inputAnchorY", numberAttributes("Anchor Y", 0, 1, 0.5));
    filter_ = addInputPort<QCIndexPort>("inputFilter",
                                        menuAttributes("Filter", {"Nearest", "Bilinear", "Lanczos 3"}, kBilinear));
  }

 private:
  Movement movementOf(const VortoBitmap& in) const {
    Movement movement;
    movement.shiftX = limited(finiteOr(shiftX_->doubleValue(), 0), kMostPixels);
    movement.shiftY = limited(finiteOr(shiftY_->doubleValue(), 0), kMostPixels);
    movement.degrees = finiteOr(rotation_->doubleValue(), 0);
    movement.scaleX = limited(finiteOr(scaleX_->doubleValue(), 1), kMostScale);
    movement.scaleY = limited(finiteOr(scaleY_->doubleValue(), 1), kMostScale);
    movement.anchorX = in.width * limited(finiteOr(anchorX_->doubleValue(), 0.5), kMostAnchor);
    movement.anchorY = in.height * limited(finiteOr(anchorY_->doubleValue(), 0.5), kMostAnchor);
    return movement;
  }

  BitmapRef filtered(const BitmapRef& in, std::string* reason) override {
    const std::uint32_t filter = filter_->indexValue();
    if (filter >= kFilters) {
      if (reason) *reason = "inputFilter: there is no filter " + std::to_string(filter);
      return nullptr;
    }
    const Movement movement = movementOf(*in);
    const bool isShift = std::remainder(movement.degrees, 360.0) == 0 && movement.scaleX == 1 && movement.scaleY == 1;
    if (isShift && movement.shiftX == 0 && movement.shiftY == 0) return in;
    const auto out = makeBitmap(in->width, in->height, in->formatCode, reason);
    if (!out) return nullptr;
    const double least = std::min(std::abs(movement.scaleX), std::abs(movement.scaleY));
    if (isShift && isWhole(movement.shiftX) && isWhole(movement.shiftY)) {
      copyShifted(*in, static_cast<std::int64_t>(movement.shiftX), static_cast<std::int64_t>(movement.shiftY), *out);
    } else if (least < kLeastScale) {
      copyShifted(*in, in->width, 0, *out);
    } else {
      withLayout(in->formatCode, [&](auto layout) { resample<decltype(layout)>(*in, movement, filter, *out); });
    }
    return out;
  }

  template <class Layout>
  static void resample(const VortoBitmap& in, const Movement& movement, std::uint32_t filter, VortoBitmap& out) {
    using Channel = typename Layout::Channel;
    const Mapping mapping = Mapping::backFrom(movement);
    const auto kind = filter == kLanczos3 ? ResampleKernel::Kind::Lanczos3 : ResampleKernel::Kind::Linear;
    const ResampleKernel kernel(kind, std::abs(movement.scaleX), std::abs(movement.scaleY));
    const double reachX = filter == kNearest ? 1 : kernel.reachX() + 1;
    const double reachY = filter == kNearest ? 1 : kernel.reachY() + 1;
    const ResampleSource<Channel> source{rowOf<Channel>(in, 0), rowBytes(in), in.width, in.height};
    for (std::size_t y = 0; y < out.height; ++y) {
      auto* const row = rowOf<Channel>(out, y);
      const double atY = static_cast<double>(y) + 0.5;
      const ResamplePlaces places{mapping.x(0.5, atY), mapping.y(0.5, atY), mapping.xPerX, mapping.yPerX};
      Stretch stretch{0, static_cast<double>(out.width)};
      stretch.limit(places.x, places.stepX, -reachX, in.width + reachX);
      stretch.limit(places.y, places.stepY, -reachY, in.height + reachY);
      const auto first = static_cast<std::size_t>(std::min<double>(stretch.first, out.width));
      const auto end = static_cast<std::size_t>(std::min<double>(stretch.end, out.width));
      std::fill_n(row, 4 * first, Channel{0});
      if (filter == kNearest) {
        nearestRow(source, places, first, end, row);
      } else {
        resampleRow<Layout>(source, kernel, places, first, end, row);
      }
      std::fill(row + 4 * end, row + 4 * std::size_t{out.width}, Channel{0});
    }
  }

  std::shared_ptr<QCNumberPort> shiftX_;
  std::shared_ptr<QCNumberPort> shiftY_;
  std::shared_ptr<QCNumberPort> rotation_;
  std::shared_ptr<QCNumberPort> scaleX_;
  std::shared_ptr<QCNumberPort> scaleY_;
  std::shared_ptr<QCNumberPort> anchorX_;
  std::shared_ptr<QCNumberPort> anchorY_;
  std::shared_ptr<QCIndexPort> filter_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::TransformPatch>)
