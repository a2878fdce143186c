// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/BlendModePatch.h"

#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/FadedRow.h"

#include <algorithm>
#include <cstring>

namespace vorto::effects {

PropertyList BlendModePatch::describe(const std::string& name, const std::string& description) {
  return effectAttributes(name, description, "blendMode",
                          {{"inputBackgroundImagePort", "inputBackgroundImage"},
                           {"inputForegroundImagePort", "inputForegroundImage"},
                           {"outputImagePort", "outputImage"}});
}

BlendModePatch::BlendModePatch(PropertyList attributes) : EffectPatch(std::move(attributes)) {
  background_ = addInputPort<QCImagePort>("inputBackgroundImage", portAttributes("Background"));
  foreground_ = addInputPort<QCImagePort>("inputForegroundImage", portAttributes("Foreground"));
  opacity_ = addInputPort<QCNumberPort>("inputOpacity", numberAttributes("Opacity", 0, 1, 1));
}

std::optional<BitmapRef> BlendModePatch::render(std::string* reason) {
  BitmapRef background, foreground;
  if (!inputPair(*background_, *foreground_, background, foreground, reason)) return std::nullopt;
  if (!background || !foreground) return nullptr;
  const double opacity = finiteOr(opacity_->doubleValue(), 1);
  if (opacity <= 0) return background;
  auto out = makeBitmap(background->width, background->height, background->formatCode, reason);
  if (!out) return std::nullopt;
  if (out->width == 0) return out;
  if (opacity >= 1 && foreground->width == out->width && foreground->height == out->height) {
    blendWhole(*background, *foreground, *out);
  } else {
    blendPart(*background, *foreground, opacity, *out);
  }
  return out;
}

void BlendModePatch::blendWhole(const VortoBitmap& background, const VortoBitmap& foreground, VortoBitmap& out) {
  const PixelRuns runs(background, foreground, out);
  for (std::size_t y = 0; y < runs.count; ++y) {
    blendRow(out.formatCode, rowOf<std::uint8_t>(background, y), rowOf<std::uint8_t>(foreground, y),
             rowOf<std::uint8_t>(out, y), runs.pixels);
  }
}

void BlendModePatch::blendPart(const VortoBitmap& background, const VortoBitmap& foreground, double opacity,
                               VortoBitmap& out) {
  const std::size_t covered = std::min(background.width, foreground.width);
  const std::size_t coveredRows = std::min(background.height, foreground.height);
  const std::size_t pixelBytes = std::size_t{out.bitsPerChannel} / 8 * out.channels;
  FadedRow faded(out.formatCode, covered, opacity);
  for (std::size_t y = 0; y < out.height; ++y) {
    const auto* behind = rowOf<std::uint8_t>(background, y);
    auto* row = rowOf<std::uint8_t>(out, y);
    const std::size_t blended = y < coveredRows ? covered : 0;
    if (blended) blendRow(out.formatCode, behind, faded.of(rowOf<std::uint8_t>(foreground, y)), row, blended);
    const std::size_t done = blended * pixelBytes;
    std::memcpy(row + done, behind + done, out.width * pixelBytes - done);
  }
}

}  // namespace vorto::effects
