// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/InspectOptions.h"
#include "Host/Files/ImageFileLoader.h"
#include "Host/Rendering/Effects.h"
#include "Host/Rendering/ExecutionContext.h"
#include "Tests/Support/ChildProcess.h"

#include <QCoreApplication>
#include <string>
#include <utility>
#include <vector>

// What the tests of the inspector share: the effects of the build, and pictures in a folder of their own.

namespace inspect_test {

// Loads the effects once.
inline void useEffects() {
  [[maybe_unused]] static const bool loaded = (host::loadEffects(), true);
}

// 4 x 3 opaque pixels.
inline void writeFlatPicture(const std::string& path, std::uint8_t gray) {
  host::ImagePixels image;
  image.width = 4;
  image.height = 3;
  host::allocatePixels(image);
  const auto samples = image.samples<std::uint8_t>();
  for (std::size_t i = 0; i < samples.size(); ++i) samples[i] = i % 4 == 3 ? 255 : gray;
  host::writeImageFile(path, std::move(image), host::Depth::Bits8);
}

// Counts how often somebody looks at the pixels of an image.
class CountingContext : public host::ExecutionContext {
 public:
  void getPixelsFromImage(const QCImage& image, const void** address, std::size_t* rowBytes) override {
    ++queried;
    ExecutionContext::getPixelsFromImage(image, address, rowBytes);
  }
  int queried = 0;
};

inline host::InspectOptions optionsFor(const std::string& effect, std::vector<std::string> inputs = {}) {
  host::InspectOptions options;
  options.effect = effect;
  options.inputs = std::move(inputs);
  return options;
}

// Handles all that is waiting, timers that are due included.
inline void handleEvents() {
  for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
}

}  // namespace inspect_test
