// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Pixels/Bitmaps.h"

#include "Host/Messages/Failure.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCColor.h"
#include "TarnCore/TCPixelLayout.h"

namespace host {
namespace {

constexpr std::uint32_t kLargestEdge = 1u << 26;  // a row's bits fit 32 bits

std::string sizeText(std::uint32_t width, std::uint32_t height) {
  return std::to_string(width) + " x " + std::to_string(height);
}

using Make = VortoBitmap* (*)(std::uint32_t, std::uint32_t, std::uint32_t);

MutableBitmapRef made(Make make, std::uint32_t width, std::uint32_t height, std::uint32_t formatCode,
                      const std::string& what) {
  if (!fitsBitmap(width, height, VortoPixelFormat::getBitsPerPixel(formatCode) / 8)) {
    throw Failure(ExitCode::Input,
                  what + ": " + sizeText(width, height) + " pixels at this depth are more than a bitmap can hold");
  }
  MutableBitmapRef bitmap(make(width, height, formatCode));
  if (!bitmap || !bitmap->data) {
    throw Failure(ExitCode::Unexpected, what + ": there is no memory for " + sizeText(width, height) + " pixels");
  }
  return bitmap;
}

}  // namespace

bool fitsBitmap(std::uint32_t width, std::uint32_t height, std::size_t pixelBytes) {
  return std::uint64_t{width} * height <= kLargestBitmapBytes / pixelBytes && width <= kLargestEdge &&
         height <= kLargestEdge;
}

MutableBitmapRef newBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode,
                           const std::string& what) {
  return made(TCCreateBitmap, width, height, formatCode, what);
}

MutableBitmapRef newUnsetBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode,
                                const std::string& what) {
  return made(TCCreateUnsetBitmap, width, height, formatCode, what);
}

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

SampleType sampleTypeOfResult(const VortoBitmap& bitmap, const std::string& what) {
  const VortoPixelLayout& layout = TCPixelLayoutOf(bitmap.formatCode);
  if (!layout.isExchanged) {
    throw Failure(ExitCode::Effect, what + " gave an image of pixel format " + std::to_string(bitmap.formatCode) +
                                        ", which effects do not exchange");
  }
  const std::size_t size = bytesPerRow(bitmap) * bitmap.height;
  if (size == 0 || size > bitmap.accessibleBytes()) throw Failure(ExitCode::Effect, what + " gave an empty image");
  if (layout.number == VortoPixelLayout::Number::Byte) return SampleType::UInt8;
  return layout.number == VortoPixelLayout::Number::Word ? SampleType::UInt16 : SampleType::Float;
}

std::size_t bytesPerRow(const VortoBitmap& bitmap) {
  return std::size_t{bitmap.width} * TCPixelLayoutOf(bitmap.formatCode).bytesPerPixel() + bitmap.rowPadding;
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
