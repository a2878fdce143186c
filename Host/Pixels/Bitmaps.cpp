// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Pixels/Bitmaps.h"

#include "Host/Messages/Failure.h"
#include "Host/Pixels/Pixels.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCColor.h"
#include "TarnCore/TCPixelLayout.h"

#include <cstring>
#include <utility>

namespace host {
namespace {

constexpr std::uint32_t kLargestEdge = 1u << 26;  // a row's bits fit 32 bits

std::string sizeText(std::uint32_t width, std::uint32_t height) {
  return std::to_string(width) + " x " + std::to_string(height);
}

void checkSize(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode, const std::string& what) {
  const std::uint64_t pixels = std::uint64_t{width} * height;
  const std::uint64_t pixelBytes = VortoPixelFormat::getBitsPerPixel(formatCode) / 8;
  if (pixels <= kLargestBitmapBytes / pixelBytes && width <= kLargestEdge && height <= kLargestEdge) return;
  throw Failure(ExitCode::Input,
                what + ": " + sizeText(width, height) + " pixels at this depth are more than a bitmap can hold");
}

SampleType sampleTypeOfBitmap(const VortoBitmap& bitmap, const std::string& what) {
  const VortoPixelLayout& layout = TCPixelLayoutOf(bitmap.formatCode);
  if (!layout.isExchanged) {
    throw Failure(ExitCode::Effect, what + " gave an image of pixel format " + std::to_string(bitmap.formatCode) +
                                        ", which effects do not exchange");
  }
  if (layout.number == VortoPixelLayout::Number::Byte) return SampleType::UInt8;
  return layout.number == VortoPixelLayout::Number::Word ? SampleType::UInt16 : SampleType::Float;
}

}  // namespace

std::uint32_t formatCodeOf(SampleType sample) {
  switch (sample) {
    case SampleType::UInt8:
      return VortoPixelFormat::RGBA8;
    case SampleType::UInt16:
      return VortoPixelFormat::RGBA16;
    case SampleType::Float:
      break;
  }
  return VortoPixelFormat::RGBAFloat;
}

std::shared_ptr<VortoBitmap> newBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode,
                                       const std::string& what) {
  checkSize(width, height, formatCode, what);
  std::shared_ptr<VortoBitmap> bitmap(TCCreateBitmap(width, height, formatCode));
  if (!bitmap || !bitmap->data) {
    throw Failure(ExitCode::Unexpected, what + ": there is no memory for " + sizeText(width, height) + " pixels");
  }
  return bitmap;
}

BitmapRef makeBitmap(ImagePixels image, const std::string& what) {
  premultiply(image);
  const auto bitmap = newBitmap(image.width, image.height, formatCodeOf(image.sample), what);
  bitmap->setData(image.bytes.get());
  return bitmap;
}

ImagePixels pixelsOfBitmap(const VortoBitmap& bitmap, const std::string& what) {
  ImagePixels image;
  image.width = bitmap.width;
  image.height = bitmap.height;
  image.sample = sampleTypeOfBitmap(bitmap, what);
  const std::size_t size = image.sampleCount() * bytesPerSample(image.sample);
  if (size == 0 || size > bitmap.accessibleBytes()) throw Failure(ExitCode::Effect, what + " gave an empty image");
  allocatePixels(image);
  if (bitmap.formatCode == VortoPixelFormat::ARGB8) {
    const auto swizzled = newBitmap(bitmap.width, bitmap.height, VortoPixelFormat::RGBA8, what);
    swizzled->copyWithSwizzleARGBToRGBA(bitmap);
    std::memcpy(image.bytes.get(), swizzled->data, size);
  } else {
    std::memcpy(image.bytes.get(), bitmap.data, size);
  }
  return image;
}

BitmapRef scaledBitmap(const BitmapRef& bitmap, std::uint32_t width, std::uint32_t height) {
  if (bitmap->width == width && bitmap->height == height) return bitmap;
  const auto scaled = newBitmap(width, height, bitmap->formatCode, "the result");
  scaled->copyWithScaling(*bitmap);
  return scaled;
}

BitmapRef outputConverted(const BitmapRef& bitmap, OutputAlpha alpha) {
  if (alpha == OutputAlpha::Keep) return bitmap;
  const auto result = std::make_shared<VortoBitmap>();
  result->copyWithOutputConversion(*bitmap, false, alpha == OutputAlpha::Opaque, alpha == OutputAlpha::Gray,
                                   VortoColor());
  if (!result->data) throw Failure(ExitCode::Unexpected, "the result: there is no memory for a copy");
  return result;
}

}  // namespace host
