// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Pixels/Layouts.h"

#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Failure.h"
#include "TarnCore/TCPixel.h"
#include "TarnCore/TCPixelFormat.h"

#include <algorithm>
#include <vector>

namespace host {
namespace {

using Format = VortoPixelFormat;

constexpr Layout kLayouts[] = {
    {"rgba8", Format::RGBA8, Depth::Bits8, "8-bit red, green, blue, alpha"},
    {"argb8", Format::ARGB8, Depth::Bits8, "8-bit alpha, red, green, blue"},
    {"yuv422", Format::YUV8, Depth::Bits8,
     "8-bit luma and chroma in video range, chroma once for two columns; no alpha"},
    {"rgba16", Format::RGBA16, Depth::Bits16, "16-bit red, green, blue, alpha"},
    {"rgb16", Format::RGB16, Depth::Bits16, "16-bit red, green, blue; no alpha"},
    {"la16", Format::LuminanceAlpha16, Depth::Bits16, "16-bit luminance and alpha"},
    {"l16", Format::Luminance16, Depth::Bits16, "16-bit luminance; no alpha"},
    {"rgbahalf", Format::RGBAHalfFloat, Depth::Half, "half floats red, green, blue, alpha"},
    {"rgbafloat", Format::RGBAFloat, Depth::Float, "floats red, green, blue, alpha"},
};

using FloatPixel = VortoPixel4<float, VortoPixelInfoRGBAFloat>;
using WordPixel = VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>;
using RGBPixel = VortoPixel3<std::uint16_t, VortoPixelInfoRGB16>;
using LuminanceAlphaPixel = VortoPixel2<std::uint16_t, VortoPixelInfoLuminanceAlpha16>;
using LuminancePixel = VortoPixel1<std::uint16_t, VortoPixelInfoLuminance16>;
using HalfPixel = VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>;

// What the bitmap's own conversion gives: it knows ARGB8, RGBA16 and RGBAFloat.
std::shared_ptr<VortoBitmap> depthConverted(const VortoBitmap& bitmap, std::uint32_t formatCode,
                                            const std::string& what) {
  auto result = newBitmap(bitmap.width, bitmap.height, formatCode, what);
  result->copyWithScalingAndDepthConversion(bitmap);
  return result;
}

std::shared_ptr<VortoBitmap> asRGBA8(const VortoBitmap& bitmap, const std::string& what) {
  auto result = depthConverted(bitmap, Format::ARGB8, what);
  result->convertToRGBA();
  return result;
}

MutableBitmapRef copyInDepth(const VortoBitmap& bitmap, SampleType sample, const std::string& what) {
  const std::uint32_t code = formatCodeOf(sample);
  return code == Format::RGBA8 ? asRGBA8(bitmap, what) : depthConverted(bitmap, code, what);
}

// Every pixel of a bitmap, changed into one of another.
template <class From, class To, class Convert>
std::shared_ptr<VortoBitmap> converted(const VortoBitmap& bitmap, std::uint32_t formatCode, const std::string& what,
                                       Convert convert) {
  auto result = newBitmap(bitmap.width, bitmap.height, formatCode, what);
  const auto* const from = reinterpret_cast<const From*>(bitmap.data);
  auto* const to = reinterpret_cast<To*>(result->data);
  const std::size_t count = std::size_t{bitmap.width} * bitmap.height;
  for (std::size_t i = 0; i < count; ++i) convert(from[i], to[i]);
  return result;
}

template <class From, class To>
void copyColors(const From& from, To& to) {
  to.setRedfn(from.getRedfn());
  to.setGreenfn(from.getGreenfn());
  to.setBluefn(from.getBluefn());
  to.setAlphafn(from.getAlphafn());
}

template <class To>
void copyLuminance(const FloatPixel& from, To& to) {
  const double luminance = 0.299 * from.getRedfn() + 0.587 * from.getGreenfn() + 0.114 * from.getBluefn();
  to.setRedfn(static_cast<float>(luminance));
  to.setAlphafn(from.getAlphafn());
}

// To the layout and back, by way of floats, whose values hold those of all others.
template <class Pixel, class Convert>
BitmapRef throughPixels(const VortoBitmap& bitmap, const Layout& layout, const std::string& what, Convert convert) {
  const auto floats = depthConverted(bitmap, Format::RGBAFloat, what);
  const auto held = converted<FloatPixel, Pixel>(*floats, layout.formatCode, what, convert);
  return converted<Pixel, WordPixel>(*held, Format::RGBA16, what, copyColors<Pixel, WordPixel>);
}

BitmapRef throughHalves(const VortoBitmap& bitmap, const std::string& what) {
  const auto floats = depthConverted(bitmap, Format::RGBAFloat, what);
  const auto held =
      converted<FloatPixel, HalfPixel>(*floats, Format::RGBAHalfFloat, what, copyColors<FloatPixel, HalfPixel>);
  return depthConverted(*held, Format::RGBAFloat, what);
}

// The picture with its last column twice.
std::shared_ptr<VortoBitmap> widened(const VortoBitmap& argb, const std::string& what) {
  auto result = newBitmap(argb.width + 1, argb.height, Format::ARGB8, what);
  const std::size_t row = std::size_t{argb.width} * 4;
  for (std::size_t y = 0; y < argb.height; ++y) {
    const std::uint8_t* const from = argb.data + y * row;
    std::uint8_t* const to = result->data + y * (row + 4);
    std::copy_n(from, row, to);
    std::copy_n(from + row - 4, 4, to + row);
  }
  return result;
}

BitmapRef throughYUV(const VortoBitmap& bitmap, const std::string& what) {
  auto argb = depthConverted(bitmap, Format::ARGB8, what);
  if (bitmap.width % 2 != 0) argb = widened(*argb, what);
  const auto held = newBitmap(argb->width, argb->height, Format::YUV8, what);
  held->copy(*argb);
  argb->copy(*held);
  if (argb->width == bitmap.width) return argb;
  auto result = newBitmap(bitmap.width, bitmap.height, Format::ARGB8, what);
  result->copyWithCropping(*argb, 0, 0, false);
  return result;
}

std::vector<std::string> layoutNames() {
  std::vector<std::string> names;
  for (const Layout& layout : kLayouts) names.emplace_back(layout.name);
  return names;
}

}  // namespace

std::optional<Layout> parsedLayout(const std::string& name) {
  if (name.empty()) return std::nullopt;
  for (const Layout& layout : kLayouts) {
    if (name == layout.name) return layout;
  }
  throw Failure(ExitCode::Usage, "--pixel-format " + name + ": give " + joinedNames(layoutNames(), " or "));
}

std::string layoutList() {
  std::string list;
  for (const Layout& layout : kLayouts) {
    std::string name = layout.name;
    name.resize(11, ' ');
    list += "  " + name + layout.description + "\n";
  }
  return list;
}

MutableBitmapRef inDepth(const MutableBitmapRef& bitmap, SampleType sample, const std::string& what) {
  return bitmap->formatCode == formatCodeOf(sample) ? bitmap : copyInDepth(*bitmap, sample, what);
}

BitmapRef inDepth(const BitmapRef& bitmap, SampleType sample, const std::string& what) {
  return bitmap->formatCode == formatCodeOf(sample) ? bitmap : copyInDepth(*bitmap, sample, what);
}

BitmapRef throughLayout(const BitmapRef& bitmap, const Layout& layout, const std::string& what) {
  if (bitmap->formatCode == layout.formatCode) return bitmap;
  switch (layout.formatCode) {
    case Format::RGBA8:
      return asRGBA8(*bitmap, what);
    case Format::YUV8:
      return throughYUV(*bitmap, what);
    case Format::RGB16:
      return throughPixels<RGBPixel>(*bitmap, layout, what, copyColors<FloatPixel, RGBPixel>);
    case Format::LuminanceAlpha16:
      return throughPixels<LuminanceAlphaPixel>(*bitmap, layout, what, copyLuminance<LuminanceAlphaPixel>);
    case Format::Luminance16:
      return throughPixels<LuminancePixel>(*bitmap, layout, what, copyLuminance<LuminancePixel>);
    case Format::RGBAHalfFloat:
      return throughHalves(*bitmap, what);
    default:
      return depthConverted(*bitmap, layout.formatCode, what);
  }
}

}  // namespace host
