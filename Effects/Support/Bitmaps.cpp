// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Support/Bitmaps.h"

#include "Platform/QuartzComposer/QCPort.h"
#include "Ports/VRTImage.h"
#include "TarnCore/TCPixelLayout.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace vorto::effects {
namespace {

// What a bitmap may hold: its size with the slack that it adds is a 32-bit count of bytes.
constexpr std::uint64_t kMaximumBytes = 0xFFFFFFFFULL - 65536;

bool isOurLayout(std::uint32_t formatCode) {
  return TCPixelLayoutOf(formatCode).isExchanged;
}

std::uint64_t bytesPerPixel(std::uint32_t formatCode) {
  return TCPixelLayoutOf(formatCode).bytesPerPixel();
}

void explain(std::string* reason, const std::string& cause) {
  if (reason) *reason = cause;
}

bool holdsItsPixels(const VortoBitmap& bitmap) {
  const std::uint64_t pixelBytes = bytesPerPixel(bitmap.formatCode);
  if (std::uint64_t{bitmap.bitsPerChannel} / 8 * bitmap.channels != pixelBytes) return false;
  const std::uint64_t stride = bitmap.width * pixelBytes + bitmap.rowPadding;
  if (bitmap.width == 0 || bitmap.height == 0) return true;
  return bitmap.data && stride <= bitmap.allocSize && bitmap.height <= bitmap.allocSize / stride;
}

}  // namespace

std::optional<BitmapRef> inputBitmap(const QCImagePort& port, std::string* reason) {
  if (!port.imageValue()) return nullptr;
  BitmapRef bitmap = VRTImage::bitmapOfPort(port);
  if (!bitmap) {
    explain(reason, port.key() + " holds an image without a bitmap");
  } else if (!isOurLayout(bitmap->formatCode)) {
    explain(reason, port.key() + ": effects take 8-bit RGBA or ARGB, 16-bit RGBA or float RGBA, not " +
                        describeBitmap(*bitmap));
  } else if (!holdsItsPixels(*bitmap)) {
    explain(reason, port.key() + ": not all pixels of " + describeBitmap(*bitmap) + " are in memory");
  } else {
    return bitmap;
  }
  return std::nullopt;
}

bool inputPair(const QCImagePort& first, const QCImagePort& second, BitmapRef& a, BitmapRef& b, std::string* reason) {
  const auto readFirst = inputBitmap(first, reason);
  const auto readSecond = readFirst ? inputBitmap(second, reason) : std::nullopt;
  if (!readSecond) return false;
  a = *readFirst;
  b = *readSecond;
  if (!a || !b || a->formatCode == b->formatCode) return true;
  explain(reason, "the images differ in layout: " + describeBitmap(*a) + " and " + describeBitmap(*b));
  return false;
}

std::shared_ptr<VortoBitmap> makeBitmap(std::uint64_t width, std::uint64_t height, std::uint32_t formatCode,
                                        std::string* reason) {
  const std::string size = std::to_string(width) + " x " + std::to_string(height);
  if (!isOurLayout(formatCode)) {
    explain(reason, "effects do not make images of format " + std::to_string(formatCode));
    return nullptr;
  }
  const std::uint64_t stride = std::min<std::uint64_t>(width, kMaximumBytes) * bytesPerPixel(formatCode);
  if (stride != 0 && (stride > kMaximumBytes || height > kMaximumBytes / stride)) {
    explain(reason, "an image of " + size + " pixels is larger than 4 GiB");
    return nullptr;
  }
  std::shared_ptr<VortoBitmap> bitmap(
      TCCreateUnsetBitmap(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), formatCode));
  if (!bitmap || !holdsItsPixels(*bitmap)) {
    explain(reason, "no memory for an image of " + size + " pixels");
    return nullptr;
  }
  return bitmap;
}

BitmapRef fittedBitmap(const BitmapRef& bitmap, std::uint32_t width, std::uint32_t height, std::string* reason) {
  if (bitmap->width == width && bitmap->height == height) return bitmap;
  auto fitted = makeBitmap(width, height, bitmap->formatCode, reason);
  if (!fitted) return nullptr;
  const std::size_t pixelBytes = bytesPerPixel(bitmap->formatCode);
  const std::size_t taken = std::min(bitmap->width, width) * pixelBytes;
  for (std::size_t y = 0; y < height; ++y) {
    auto* row = rowOf<std::uint8_t>(*fitted, y);
    const std::size_t copied = y < bitmap->height ? taken : 0;
    if (copied) std::memcpy(row, rowOf<std::uint8_t>(*bitmap, y), copied);
    std::memset(row + copied, 0, width * pixelBytes - copied);
  }
  return fitted;
}

std::string describeBitmap(const VortoBitmap& bitmap) {
  const bool isKnown = bitmap.formatCode < std::size(kVortoPixelLayouts);
  const char* layout = isKnown ? kVortoPixelLayouts[bitmap.formatCode].name : "unknown layout";
  return std::to_string(bitmap.width) + " x " + std::to_string(bitmap.height) + " " + layout;
}

std::size_t rowBytes(const VortoBitmap& bitmap) {
  return std::size_t{bitmap.width} * bytesPerPixel(bitmap.formatCode) + bitmap.rowPadding;
}

}  // namespace vorto::effects
