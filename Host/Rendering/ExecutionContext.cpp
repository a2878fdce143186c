// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/ExecutionContext.h"

#include "Ports/VRTImage.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelLayout.h"

#include <algorithm>

namespace host {
namespace {

// Bytes per pixel of the layouts that effects exchange; 0 for any other.
std::size_t pixelSizeOf(const VortoBitmap& bitmap) {
  const VortoPixelLayout& layout = TCPixelLayoutOf(bitmap.formatCode);
  return layout.isExchanged ? layout.bytesPerPixel() : 0;
}

std::size_t rowBytesOf(const VortoBitmap& bitmap) {
  return bitmap.width * pixelSizeOf(bitmap) + bitmap.rowPadding;
}

bool hasPixels(const VortoBitmap& bitmap) {
  return bitmap.data && pixelSizeOf(bitmap) && bitmap.width && bitmap.height &&
         rowBytesOf(bitmap) <= bitmap.accessibleBytes() / bitmap.height;
}

std::shared_ptr<const VortoBitmap> bitmapOf(const QCImage& image) {
  const auto* own = dynamic_cast<const VRTImage*>(&image);
  return own ? own->bitmap() : nullptr;
}

std::unique_ptr<std::uint8_t[]> alphaMovedToTheEnd(const VortoBitmap& bitmap) {
  const std::size_t rowBytes = rowBytesOf(bitmap);
  auto copy = std::make_unique<std::uint8_t[]>(rowBytes * bitmap.height);
  for (std::size_t y = 0; y < bitmap.height; ++y) {
    const std::uint8_t* from = bitmap.data + y * rowBytes;
    std::uint8_t* to = copy.get() + y * rowBytes;
    for (std::size_t i = 0; i < std::size_t{bitmap.width} * 4; i += 4) {
      std::copy_n(from + i + 1, 3, to + i);
      to[i + 3] = from[i];
    }
  }
  return copy;
}

}  // namespace

std::size_t ExecutionContext::pixelsWideFromImage(const QCImage& image) {
  return image.pixelsWide();
}

std::size_t ExecutionContext::pixelsHighFromImage(const QCImage& image) {
  return image.pixelsHigh();
}

int ExecutionContext::formatFromImage(const QCImage&) {
  return 1;
}

void ExecutionContext::getPixelsFromImage(const QCImage& image, const void** outBaseAddress,
                                          std::size_t* outBytesPerRow) {
  *outBaseAddress = nullptr;
  *outBytesPerRow = 0;
  std::erase_if(copies_, [](const Copy& copy) { return copy.original.expired(); });
  const auto bitmap = bitmapOf(image);
  if (!bitmap || !hasPixels(*bitmap)) return;
  *outBaseAddress = bitmap->formatCode == VortoPixelFormat::ARGB8 ? redFirst(bitmap) : bitmap->data;
  *outBytesPerRow = rowBytesOf(*bitmap);
}

const std::uint8_t* ExecutionContext::redFirst(const std::shared_ptr<const VortoBitmap>& bitmap) {
  for (const Copy& copy : copies_) {
    if (copy.original.lock() == bitmap) return copy.pixels.get();
  }
  copies_.push_back({bitmap, alphaMovedToTheEnd(*bitmap)});
  return copies_.back().pixels.get();
}

void provideExecutionContext() {
  VortoSetExecutionContextProvider([](QCPatch&) -> VortoExecutionContext* {
    thread_local ExecutionContext context;  // what it keeps of images is nobody else's
    return &context;
  });
}

}  // namespace host
