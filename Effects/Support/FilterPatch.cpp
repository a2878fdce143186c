// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/FilterPatch.h"

namespace vorto::effects {

PropertyList FilterPatch::describe(const std::string& name, const std::string& description) {
  return effectAttributes(name, description, "filter",
                          {{"inputImagePort", "inputImage"}, {"outputImagePort", "outputImage"}});
}

FilterPatch::FilterPatch(PropertyList attributes) : EffectPatch(std::move(attributes)) {
  image_ = addInputPort<QCImagePort>("inputImage", portAttributes("Image"));
}

std::optional<BitmapRef> FilterPatch::render(std::string* reason) {
  auto image = inputBitmap(*image_, reason);
  if (!image || !*image) return image;
  const BitmapRef& in = *image;
  if (in->width == 0 || in->height == 0) return in;
  BitmapRef out = filtered(in, reason);
  if (!out) return std::nullopt;
  return out;
}

BitmapRef PointFilterPatch::filtered(const BitmapRef& in, std::string* reason) {
  if (!prepare()) return in;
  const auto out = makeBitmap(in->width, in->height, in->formatCode, reason);
  if (!out) return nullptr;
  const PixelRuns runs(*in, *out);
  for (std::size_t y = 0; y < runs.count; ++y) {
    filterRow(in->formatCode, rowOf<std::uint8_t>(*in, y), rowOf<std::uint8_t>(*out, y), runs.pixels);
  }
  return out;
}

}  // namespace vorto::effects
