// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/GeneratorPatch.h"

#include "Effects/Support/PixelLayout.h"

#include <array>

namespace vorto::effects {
namespace {

constexpr std::array<std::uint32_t, 3> kFormatOfDepth{VortoPixelFormat::RGBA8, VortoPixelFormat::RGBA16,
                                                      VortoPixelFormat::RGBAFloat};
constexpr int kLargestEdge = 65536;

}  // namespace

PropertyList GeneratorPatch::describe(const std::string& name, const std::string& description) {
  return effectAttributes(name, description, "generator", {{"outputImagePort", "outputImage"}});
}

void GeneratorPatch::addSizePorts() {
  width_ = addInputPort<QCIndexPort>("inputWidth", indexAttributes("Width", 1, kLargestEdge, 1920));
  height_ = addInputPort<QCIndexPort>("inputHeight", indexAttributes("Height", 1, kLargestEdge, 1080));
  depth_ = addInputPort<QCIndexPort>("inputDepth", menuAttributes("Depth", {"8-bit", "16-bit", "Float"}, 0));
}

std::optional<BitmapRef> GeneratorPatch::render(std::string* reason) {
  const std::uint32_t width = width_->indexValue();
  const std::uint32_t height = height_->indexValue();
  const std::uint32_t depth = depth_->indexValue();
  if (width == 0 || height == 0) {
    if (reason) *reason = "an image of " + std::to_string(width) + " x " + std::to_string(height) + " pixels is empty";
    return std::nullopt;
  }
  if (depth >= kFormatOfDepth.size()) {
    if (reason) *reason = "inputDepth: there is no depth " + std::to_string(depth);
    return std::nullopt;
  }
  auto out = makeBitmap(width, height, kFormatOfDepth[depth], reason);
  if (!out) return std::nullopt;
  fill(*out);
  return out;
}

}  // namespace vorto::effects
