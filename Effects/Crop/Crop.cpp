// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/FilterPatch.h"
#include "Platform/QuartzComposer/QCPlugIn.h"

#include <algorithm>
#include <cstring>

namespace vorto::effects {
namespace {

// What is left of a length after cuts at its ends: from `begin` up to `end`, equal when nothing is.
struct Rest {
  std::uint32_t begin, end;

  Rest(std::uint32_t length, std::uint32_t before, std::uint32_t behind)
      : begin(std::min(before, length)), end(std::max(begin, length - std::min(behind, length))) {}
  std::uint32_t length() const { return end - begin; }
};

class CropPatch : public FilterPatch {
 public:
  static PropertyList description() {
    return describe("Crop", "Cuts pixels off the edges of an image. They become transparent, or the image is trimmed.");
  }

  CropPatch() : FilterPatch(description()) {
    left_ = addInputPort<QCIndexPort>("inputLeft", indexAttributes("Left", 0, kLargestCut, 0));
    top_ = addInputPort<QCIndexPort>("inputTop", indexAttributes("Top", 0, kLargestCut, 0));
    right_ = addInputPort<QCIndexPort>("inputRight", indexAttributes("Right", 0, kLargestCut, 0));
    bottom_ = addInputPort<QCIndexPort>("inputBottom", indexAttributes("Bottom", 0, kLargestCut, 0));
    trim_ = addInputPort<QCBooleanPort>("inputTrim", portAttributes("Trim"));
  }

 private:
  static constexpr int kLargestCut = 65536;

  BitmapRef filtered(const BitmapRef& in, std::string* reason) override {
    const Rest columns(in->width, left_->indexValue(), right_->indexValue());
    const Rest rows(in->height, top_->indexValue(), bottom_->indexValue());
    const bool isWhole = columns.length() == in->width && rows.length() == in->height;
    if (isWhole) return in;
    const bool trims = trim_->booleanValue();
    if (trims && (columns.length() == 0 || rows.length() == 0)) {
      if (reason) *reason = "nothing is left of " + describeBitmap(*in) + " to be trimmed to";
      return nullptr;
    }
    const auto out = trims ? makeBitmap(columns.length(), rows.length(), in->formatCode, reason)
                           : makeBitmap(in->width, in->height, in->formatCode, reason);
    if (!out) return nullptr;
    const std::size_t pixelBytes = std::size_t{in->bitsPerChannel} / 8 * in->channels;
    const std::size_t before = trims ? 0 : columns.begin * pixelBytes;
    const std::size_t kept = columns.length() * pixelBytes;
    for (std::size_t y = 0; y < out->height; ++y) {
      auto* const row = rowOf<std::uint8_t>(*out, y);
      const std::size_t from = trims ? y + rows.begin : y;
      const std::size_t copied = from >= rows.begin && from < rows.end ? kept : 0;
      std::memset(row, 0, before);
      if (copied) std::memcpy(row + before, rowOf<std::uint8_t>(*in, from) + columns.begin * pixelBytes, copied);
      std::memset(row + before + copied, 0, out->width * pixelBytes - before - copied);
    }
    return out;
  }

  std::shared_ptr<QCIndexPort> left_;
  std::shared_ptr<QCIndexPort> top_;
  std::shared_ptr<QCIndexPort> right_;
  std::shared_ptr<QCIndexPort> bottom_;
  std::shared_ptr<QCBooleanPort> trim_;
};

}  // namespace
}  // namespace vorto::effects

QC_PLUGIN_ENTRY(&vorto::effects::registerEffect<vorto::effects::CropPatch>)
