// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Inspect/InspectFixture.h"

#include "Host/Files/ImageFileLoader.h"
#include "Host/Rendering/Effects.h"

#include <utility>

namespace inspect_test {

void useEffects() {
  static const bool loaded = [] {
    host::loadEffects();
    return true;
  }();
  (void)loaded;
}

void writePicture(const std::string& path, std::uint32_t width, std::uint32_t height,
                  const std::function<Pixel(std::uint32_t, std::uint32_t)>& pixel) {
  host::ImagePixels image;
  image.width = width;
  image.height = height;
  host::allocatePixels(image);
  const auto samples = image.samples<std::uint8_t>();
  for (std::size_t i = 0; i < samples.size(); ++i) {
    const auto at = static_cast<std::uint32_t>(i / 4);
    samples[i] = pixel(at % width, at / width)[i % 4];
  }
  host::writeImageFile(path, std::move(image), host::Depth::Bits8);
}

void writeFlatPicture(const std::string& path, std::uint8_t gray, std::uint32_t width, std::uint32_t height) {
  writePicture(path, width, height, [gray](std::uint32_t, std::uint32_t) { return Pixel{gray, gray, gray, 255}; });
}

host::InspectOptions optionsFor(const std::string& effect, std::vector<std::string> inputs) {
  host::InspectOptions options;
  options.effect = effect;
  options.inputs = std::move(inputs);
  return options;
}

}  // namespace inspect_test
