// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/InspectOptions.h"
#include "Host/Files/PictureWriting.h"
#include "Host/Rendering/Effects.h"
#include "Host/Rendering/ExecutionContext.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"
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
  const auto bitmap = host::newBitmap(4, 3, VortoPixelFormat::RGBA8, path);
  for (std::size_t i = 0; i < std::size_t{4} * 3 * 4; ++i) bitmap->data[i] = i % 4 == 3 ? 255 : gray;
  host::writePicture(path, {bitmap, host::Depth::Bits8, host::Channels::RGB, {}});
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
