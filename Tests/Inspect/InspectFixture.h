// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/InspectOptions.h"
#include "Host/Rendering/ExecutionContext.h"
#include "Tests/Support/ChildProcess.h"

#include <QCoreApplication>
#include <array>
#include <cstdint>
#include <functional>
#include <string>

// What the tests of the inspector share: the effects of the build, and pictures in a folder of their own.

class QCPort;

namespace inspect_test {

using Pixel = std::array<std::uint8_t, 4>;  // red, green, blue, alpha, premultiplied

// Loads the effects once.
void useEffects();

void writePicture(const std::string& path, std::uint32_t width, std::uint32_t height,
                  const std::function<Pixel(std::uint32_t x, std::uint32_t y)>& pixel);
void writeFlatPicture(const std::string& path, std::uint8_t gray, std::uint32_t width = 4, std::uint32_t height = 3);

// Counts how often somebody looks at the pixels of an image.
class CountingContext : public host::ExecutionContext {
 public:
  void getPixelsFromImage(const QCImage& image, const void** address, std::size_t* rowBytes) override {
    ++queried;
    ExecutionContext::getPixelsFromImage(image, address, rowBytes);
  }
  int queried = 0;
};

host::InspectOptions optionsFor(const std::string& effect, std::vector<std::string> inputs = {});

// Handles all that is waiting, timers that are due included.
inline void handleEvents() {
  for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
}

}  // namespace inspect_test
