// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Registry/VRTProtocols.h"

#include <cstdint>
#include <memory>
#include <vector>

class VortoBitmap;

namespace host {

// What this host tells about the images that flow through its patches: those of VRTImage, in RGBA8, RGBA16 and RGBA
// float as they are, in ARGB8 as a copy with red first that is kept as long as the image. Other images have a size but
// no pixels: their address is null and their row pitch 0.
class ExecutionContext : public VortoExecutionContext {
 public:
  std::size_t pixelsWideFromImage(const QCImage& image) override;
  std::size_t pixelsHighFromImage(const QCImage& image) override;
  int formatFromImage(const QCImage& image) override;  // always red first
  void getPixelsFromImage(const QCImage& image, const void** outBaseAddress, std::size_t* outBytesPerRow) override;

 private:
  struct Copy {
    std::weak_ptr<const VortoBitmap> original;
    std::unique_ptr<std::uint8_t[]> pixels;
  };
  const std::uint8_t* redFirst(const std::shared_ptr<const VortoBitmap>& bitmap);
  std::vector<Copy> copies_;
};

// Makes one such context on each thread serve the patches that run there.
void provideExecutionContext();

}  // namespace host
