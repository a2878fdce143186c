// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmapScaling.h"

#include "TarnCore/TCBitmapSlack.h"
#include "TarnCore/TCPixelLayout.h"
#include "TarnCore/kernels/Depth.h"
#include "TarnCore/kernels/Dispatch.h"
#include "TarnCore/kernels/Scale.h"
#include "TarnCore/kernels/YUV422.h"

#include <algorithm>
#include <memory>
#include <vector>

namespace {

using vorto::kernels::DepthLayout;
using vorto::kernels::ScaleDestination;
using vorto::kernels::ScaleSource;

std::size_t accessiblePixels(const VortoBitmap& bitmap, std::size_t pixelBytes) {
  return bitmap.accessibleBytes() / pixelBytes;
}

void declarePixels(const VortoBitmap& bitmap, std::uint64_t pixels, std::size_t pixelBytes) {
  const std::uint64_t accessible = accessiblePixels(bitmap, pixelBytes);
  vorto::declareTouched(bitmap.data, std::min(pixels, accessible) * pixelBytes);
}

std::uint32_t lastIndex(std::uint32_t source, std::uint32_t destination) {
  return vorto::kernels::scaledIndex(destination - 1, static_cast<double>(source) / destination);
}

std::uint64_t pixelsOf(const VortoBitmap& bitmap) {
  return std::uint64_t{bitmap.width} * bitmap.height;
}

// What the rule names on both sides. The source is taken as a whole; where it is empty or very small, the rule names
// pixels behind it.
void declareScaling(const VortoBitmap& destination, std::size_t written, const VortoBitmap& source, std::size_t read) {
  if (pixelsOf(destination) == 0) return;
  declarePixels(destination, pixelsOf(destination), written);
  const std::uint64_t lastRow = lastIndex(source.height, destination.height);
  const std::uint64_t last = lastRow * source.width + lastIndex(source.width, destination.width);
  declarePixels(source, std::max(pixelsOf(source), last + 1), read);
}

ScaleSource sourceOf(const VortoBitmap& bitmap, std::size_t pixelBytes) {
  return {bitmap.data, bitmap.width, bitmap.height, accessiblePixels(bitmap, pixelBytes)};
}

ScaleDestination destinationOf(const VortoBitmap& bitmap, std::size_t pixelBytes) {
  return {bitmap.data, bitmap.width, bitmap.height, accessiblePixels(bitmap, pixelBytes)};
}

void scale(const VortoBitmap* destination, const VortoBitmap* source, std::size_t pixelBytes) {
  if (destination == nullptr || source == nullptr) return;
  declareScaling(*destination, pixelBytes, *source, pixelBytes);
  vorto::kernels::scaleNearest(destinationOf(*destination, pixelBytes), sourceOf(*source, pixelBytes), pixelBytes);
}

void convert(const VortoBitmap* source, DepthLayout from, const VortoBitmap* destination, DepthLayout to) {
  if (destination == nullptr || source == nullptr) return;
  declareScaling(*destination, depthPixelBytes(to), *source, depthPixelBytes(from));
  vorto::kernels::scaleAndConvert(destinationOf(*destination, depthPixelBytes(to)), to,
                                  sourceOf(*source, depthPixelBytes(from)), from);
}

template <class Pixel>
constexpr DepthLayout kLayoutOf = DepthLayout::RGBA8;
template <>
constexpr DepthLayout kLayoutOf<VortoPixel4<std::uint8_t, VortoPixelInfoARGB8>> = DepthLayout::ARGB8;
template <>
constexpr DepthLayout kLayoutOf<VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>> = DepthLayout::RGBA16;
template <>
constexpr DepthLayout kLayoutOf<VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>> = DepthLayout::RGBAHalf;
template <>
constexpr DepthLayout kLayoutOf<VortoPixel4<float, VortoPixelInfoRGBAFloat>> = DepthLayout::RGBAFloat;

DepthLayout sourceLayout(std::uint32_t code) {
  switch (code) {
    case VortoPixelFormat::ARGB8:
      return DepthLayout::ARGB8;
    case VortoPixelFormat::RGBA16:
      return DepthLayout::RGBA16;
    case VortoPixelFormat::RGBAHalfFloat:
      return DepthLayout::RGBAHalf;
    case VortoPixelFormat::RGBAFloat:
      return DepthLayout::RGBAFloat;
    default:
      return DepthLayout::RGBA8;
  }
}

// The source itself, or, for 4:2:2, its pixels as ARGB8.
class ScalableSource {
 public:
  explicit ScalableSource(const VortoBitmap& source) : bitmap_(&source) {
    if (source.formatCode != VortoPixelFormat::YUV8 || !source.data) return;
    converted_ = std::make_unique<VortoBitmapARGB8>(source.width, source.height);
    converted_->copy(source);
    bitmap_ = converted_.get();
  }
  const VortoBitmap& bitmap() const { return *bitmap_; }

 private:
  std::unique_ptr<VortoBitmap> converted_;
  const VortoBitmap* bitmap_;
};

// Scales 4:2:2 to pixels of four bytes by rows, of which only those that are taken become ARGB8. False where pairs
// reach over the ends of rows, or anything else is out of the ordinary.
bool scaleRowsOfYUV(const VortoBitmap& destination, const VortoBitmap& source) {
  constexpr std::uint64_t kMostPixels = std::uint64_t{1} << 29;  // fit a bitmap of ARGB8
  constexpr std::size_t kRead = 2;
  constexpr std::size_t kWritten = 4;
  const bool hasWholePairs = source.width % 2 == 0 && source.rowPadding == 0;
  const bool isAsNamed = source.channels == 2 && source.bitsPerChannel == 8;
  if (vorto::kernels::useScalar() || !hasWholePairs || !isAsNamed || pixelsOf(source) > kMostPixels) return false;
  const ScaleSource from = sourceOf(source, kRead);
  const ScaleDestination to = destinationOf(destination, kWritten);
  if (!vorto::kernels::isOrdinaryScale(to, kWritten, from, kRead)) return false;
  declareScaling(destination, kWritten, source, kRead);
  std::vector<std::uint8_t> converted(std::size_t{source.width} * kWritten);
  vorto::kernels::forEachScaledRow(to, kWritten, from, kRead, [&](const vorto::kernels::ScaledRow& row) {
    const std::size_t first = row.columns[0] / 2;
    const std::size_t end = row.columns[row.count - 1] / 2 + 1;
    vorto::kernels::convertYUVtoARGB(converted.data() + 8 * first, row.in + 4 * first, end - first);
    vorto::kernels::gatherPixels(row.out, converted.data(), source.width, row.columns, row.count, kWritten);
  });
  return true;
}

}  // namespace

void VortoBitmap::copyWithScaling(const VortoBitmap& source) {
  const bool isYUV = source.formatCode == VortoPixelFormat::YUV8 && source.data;
  if (isYUV && data && TCPixelLayoutOf(formatCode).bytesPerPixel() == 4 && scaleRowsOfYUV(*this, source)) return;
  const ScalableSource scalable(source);
  scale(this, &scalable.bitmap(), TCPixelLayoutOf(formatCode).bytesPerPixel());
}

void VortoBitmap::copyWithScalingAndDepthConversion(const VortoBitmap& source) {
  const ScalableSource scalable(source);
  const DepthLayout from = sourceLayout(scalable.bitmap().formatCode);
  switch (formatCode) {
    case VortoPixelFormat::ARGB8:
      return convert(&scalable.bitmap(), from, this, DepthLayout::ARGB8);
    case VortoPixelFormat::RGBA16:
      return convert(&scalable.bitmap(), from, this, DepthLayout::RGBA16);
    case VortoPixelFormat::RGBAFloat:
      return convert(&scalable.bitmap(), from, this, DepthLayout::RGBAFloat);
    default:
      return;
  }
}

template <class View, class Pixel>
void scaleBitmap(View* destination, View* source) {
  scale(destination, source, sizeof(Pixel));
}

template <class View, class Pixel>
void scaleAndDepthConvertBitmapToARGB8(View* source, VortoBitmapARGB8* destination) {
  convert(source, kLayoutOf<Pixel>, destination, DepthLayout::ARGB8);
}

template <class View, class Pixel>
void scaleAndDepthConvertBitmaptoRGBA16(View* source, VortoBitmapRGBA16* destination) {
  convert(source, kLayoutOf<Pixel>, destination, DepthLayout::RGBA16);
}

template <class View, class Pixel>
void scaleAndDepthConvertBitmaptoRGBAFloat(View* source, VortoBitmapRGBAFloat* destination) {
  convert(source, kLayoutOf<Pixel>, destination, DepthLayout::RGBAFloat);
}

#define INSTANTIATE_SCALER(View, ...) template void scaleBitmap<View, __VA_ARGS__>(View*, View*);
#define INSTANTIATE_CONVERTERS(View, ...)                                                         \
  template void scaleAndDepthConvertBitmapToARGB8<View, __VA_ARGS__>(View*, VortoBitmapARGB8*);   \
  template void scaleAndDepthConvertBitmaptoRGBA16<View, __VA_ARGS__>(View*, VortoBitmapRGBA16*); \
  template void scaleAndDepthConvertBitmaptoRGBAFloat<View, __VA_ARGS__>(View*, VortoBitmapRGBAFloat*);

INSTANTIATE_SCALER(VortoBitmapRGBA8, VortoPixel4<std::uint8_t, VortoPixelInfoRGBA8>)
INSTANTIATE_SCALER(VortoBitmapARGB8, VortoPixel4<std::uint8_t, VortoPixelInfoARGB8>)
INSTANTIATE_SCALER(VortoBitmapYUV8, VortoPixelYUV<std::uint8_t, VortoPixelInfoYUV8>)
INSTANTIATE_SCALER(VortoBitmapRGBA16, VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>)
INSTANTIATE_SCALER(VortoBitmapRGB16, VortoPixel3<std::uint16_t, VortoPixelInfoRGB16>)
INSTANTIATE_SCALER(VortoBitmapLuminanceAlpha16, VortoPixel2<std::uint16_t, VortoPixelInfoLuminanceAlpha16>)
INSTANTIATE_SCALER(VortoBitmapLuminance16, VortoPixel1<std::uint16_t, VortoPixelInfoLuminance16>)
INSTANTIATE_SCALER(VortoBitmapRGBAHalfFloat, VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>)
INSTANTIATE_SCALER(VortoBitmapRGBAFloat, VortoPixel4<float, VortoPixelInfoRGBAFloat>)

INSTANTIATE_CONVERTERS(VortoBitmapRGBA8, VortoPixel4<std::uint8_t, VortoPixelInfoRGBA8>)
INSTANTIATE_CONVERTERS(VortoBitmapARGB8, VortoPixel4<std::uint8_t, VortoPixelInfoARGB8>)
INSTANTIATE_CONVERTERS(VortoBitmapRGBA16, VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>)
INSTANTIATE_CONVERTERS(VortoBitmapRGBAHalfFloat, VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>)
INSTANTIATE_CONVERTERS(VortoBitmapRGBAFloat, VortoPixel4<float, VortoPixelInfoRGBAFloat>)
