// SPDX-License-Identifier: BSD-3-Clause
#include "BitmapConversion.h"

#include "TarnCore/TCPixel.h"

namespace vorto::python {
namespace {

using Format = VortoPixelFormat;
using FloatPixel = VortoPixel4<float, VortoPixelInfoRGBAFloat>;
using WordPixel = VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>;
using ColorPixel = VortoPixel3<std::uint16_t, VortoPixelInfoRGB16>;
using LuminanceAlphaPixel = VortoPixel2<std::uint16_t, VortoPixelInfoLuminanceAlpha16>;
using LuminancePixel = VortoPixel1<std::uint16_t, VortoPixelInfoLuminance16>;
using HalfPixel = VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>;

template <class From, class To>
void takeColors(const From& from, To& to) {
  to.setRedfn(from.getRedfn());
  to.setGreenfn(from.getGreenfn());
  to.setBluefn(from.getBluefn());
  to.setAlphafn(from.getAlphafn());
}

template <class To>
void takeLuminance(const FloatPixel& from, To& to) {
  const double luminance = 0.299 * from.getRedfn() + 0.587 * from.getGreenfn() + 0.114 * from.getBluefn();
  to.setRedfn(static_cast<float>(luminance));
  to.setAlphafn(from.getAlphafn());
}

template <class From, class To>
MutableBitmapRef pixelwise(const VortoBitmap& source, std::uint32_t code, void (*take)(const From&, To&)) {
  MutableBitmapRef result = newBitmap(source.width, source.height, code, 0, true);
  const auto* from = reinterpret_cast<const From*>(source.data);
  auto* to = reinterpret_cast<To*>(result->data);
  const std::size_t count = std::size_t{source.width} * source.height;
  for (std::size_t i = 0; i < count; ++i) take(from[i], to[i]);
  return result;
}

MutableBitmapRef depthConverted(const VortoBitmap& source, std::uint32_t code) {
  MutableBitmapRef result = newBitmap(source.width, source.height, code, 0, true);
  result->copyWithScalingAndDepthConversion(source);
  return result;
}

// The layouts that the framework's own conversion does not read, as one that it does.
BitmapRef readable(const BitmapRef& source) {
  switch (source->formatCode) {
    case Format::RGB16:
      return pixelwise(*source, Format::RGBA16, &takeColors<ColorPixel, WordPixel>);
    case Format::LuminanceAlpha16:
      return pixelwise(*source, Format::RGBA16, &takeColors<LuminanceAlphaPixel, WordPixel>);
    case Format::Luminance16:
      return pixelwise(*source, Format::RGBA16, &takeColors<LuminancePixel, WordPixel>);
    default:
      return source;
  }
}

MutableBitmapRef asYUV(const VortoBitmap& source) {
  if (source.width % 2 != 0) throw py::value_error("4:2:2 has pairs of columns, and this bitmap an odd number of them");
  MutableBitmapRef result = newBitmap(source.width, source.height, Format::YUV8);
  result->copy(source.formatCode == Format::ARGB8 ? source : *depthConverted(source, Format::ARGB8));
  return result;
}

}  // namespace

bool isReadyForDepth(std::uint32_t code) {
  return code == Format::RGBA8 || code == Format::ARGB8 || code == Format::YUV8 || code == Format::RGBA16 ||
         code == Format::RGBAHalfFloat || code == Format::RGBAFloat;
}

bool isDepthTarget(std::uint32_t code) {
  return code == Format::ARGB8 || code == Format::RGBA16 || code == Format::RGBAFloat;
}

MutableBitmapRef convertedPixels(const Bitmap& bitmap, std::uint32_t code) {
  if (code == bitmap.pixels().formatCode) return tightCopy(bitmap.pixels());
  const BitmapRef source = readable(tightPixels(bitmap));
  if (isDepthTarget(code)) return depthConverted(*source, code);
  switch (code) {
    case Format::RGBA8: {
      MutableBitmapRef result = depthConverted(*source, Format::ARGB8);
      result->convertToRGBA();
      return result;
    }
    case Format::YUV8:
      return asYUV(*source);
    case Format::RGB16:
      return pixelwise(*depthConverted(*source, Format::RGBAFloat), code, &takeColors<FloatPixel, ColorPixel>);
    case Format::LuminanceAlpha16:
      return pixelwise(*depthConverted(*source, Format::RGBAFloat), code, &takeLuminance<LuminanceAlphaPixel>);
    case Format::Luminance16:
      return pixelwise(*depthConverted(*source, Format::RGBAFloat), code, &takeLuminance<LuminancePixel>);
    case Format::RGBAHalfFloat:
      return pixelwise(*depthConverted(*source, Format::RGBAFloat), code, &takeColors<FloatPixel, HalfPixel>);
    default:
      throw py::value_error("no bitmap is made of this pixel format");
  }
}

}  // namespace vorto::python
