// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCBitmapRows.h"
#include "TarnCore/TCColor.h"
#include "TarnCore/TCPixel.h"
#include "TarnCore/TCPixelLayout.h"
#include "TarnCore/kernels/AlphaComplement.h"
#include "TarnCore/kernels/BytePatterns.h"
#include "TarnCore/kernels/Memory.h"
#include "TarnCore/kernels/Premultiply.h"
#include "TarnCore/kernels/Unpremultiply.h"
#include "TarnCore/kernels/UnpremultiplyTruncated.h"

#include <bit>

namespace {

using namespace vorto::kernels;
using Format = VortoPixelFormat;

// What is done to whole channels, as rules of bytes.
struct Layout {
  std::size_t pixelBytes;
  BytePattern alpha;          // the bytes of alpha
  BytePattern alphaToColors;  // every color takes the bytes of alpha
  BytePattern toARGB;         // (red, green, blue, alpha) becomes (alpha, red, green, blue), and the other way round
  BytePattern toRGBA;
};

constexpr Layout patternsOf(Format::Code code) {
  const VortoPixelLayout& layout = TCPixelLayoutOf(code);
  const std::size_t size = layout.bytesPerChannel();
  const std::size_t channels = static_cast<std::size_t>(layout.channels);
  const std::size_t alpha = static_cast<std::size_t>(layout.alpha);
  Layout patterns{layout.bytesPerPixel(), {}, {}, {}, {}};
  for (std::size_t i = 0; i < 16; ++i) {
    const std::size_t channel = i / size % channels;
    const auto byteOf = [&](std::size_t other) {
      return static_cast<std::uint8_t>(i - channel * size + other % channels * size);
    };
    patterns.alpha.bytes[i] = channel == alpha ? 255 : 0;
    patterns.alphaToColors.bytes[i] = byteOf(alpha);
    patterns.toARGB.bytes[i] = byteOf(channel + channels - 1);
    patterns.toRGBA.bytes[i] = byteOf(channel + 1);
  }
  return patterns;
}

constexpr Layout kRGBA8 = patternsOf(Format::RGBA8);
constexpr Layout kARGB8 = patternsOf(Format::ARGB8);
constexpr Layout kRGBA16 = patternsOf(Format::RGBA16);  // halves too
constexpr Layout kLuminanceAlpha16 = patternsOf(Format::LuminanceAlpha16);
constexpr Layout kRGBAFloat = patternsOf(Format::RGBAFloat);

// The layout that a code counts as: whatever is no other one is RGBA8.
const Layout& layoutOf(Format::Code code) {
  switch (code) {
    case Format::ARGB8:
      return kARGB8;
    case Format::RGBA16:
    case Format::RGBAHalfFloat:
      return kRGBA16;
    case Format::RGBAFloat:
      return kRGBAFloat;
    default:
      return kRGBA8;
  }
}

// The same, for operations that know luminance with alpha.
const Layout& layoutWithLuminance(Format::Code code) {
  return code == Format::LuminanceAlpha16 ? kLuminanceAlpha16 : layoutOf(code);
}

// The pixels of an operation that ignores padding.
std::size_t pixelCount(const VortoBitmap& bitmap, std::size_t pixelBytes) {
  const std::uint64_t pixels = std::uint64_t{bitmap.width} * bitmap.height;
  return vorto::recordsWithin(bitmap, 0, pixels, pixelBytes, pixelBytes);
}

std::size_t byteCount(const VortoBitmap& bitmap, const Layout& layout) {
  return pixelCount(bitmap, layout.pixelBytes) * layout.pixelBytes;
}

void reorder(VortoBitmap& bitmap, const Layout& layout, const BytePattern& order) {
  shuffleBytes(bitmap.data, bitmap.data, byteCount(bitmap, layout), order, layout.pixelBytes, false);
}

template <class T>
BytePattern repeated(T value) {
  struct Bytes {
    std::uint8_t values[sizeof(T)];
  };
  return BytePattern::ofPixel(std::bit_cast<Bytes>(value).values);
}

BytePattern constantAlpha(Format::Code code, double alpha) {
  switch (code) {
    case Format::RGBA16:
    case Format::LuminanceAlpha16:
      return repeated(denormalized<std::uint16_t>(alpha));
    case Format::RGBAHalfFloat:
      return repeated(half(static_cast<float>(alpha)).bits());
    case Format::RGBAFloat:
      return repeated(static_cast<float>(alpha));
    default:
      return repeated(denormalized<std::uint8_t>(alpha));
  }
}

}  // namespace

void VortoBitmap::invertAlpha() {
  switch (formatCode) {
    case Format::RGBAHalfFloat:
      return complementAlphaHalf(data, pixelCount(*this, 8));
    case Format::RGBAFloat:
      return complementAlphaFloat(data, pixelCount(*this, 16));
    default:
      const Layout& layout = layoutWithLuminance(formatCode);
      complementBytes(data, byteCount(*this, layout), layout.alpha);
  }
}

void VortoBitmap::setConstantAlpha(double alpha) {
  const Layout& layout = layoutWithLuminance(formatCode);
  replaceBytes(data, byteCount(*this, layout), layout.alpha, constantAlpha(formatCode, alpha));
}

void VortoBitmap::duplicateAlphaToRGB() {
  const Layout& layout = layoutOf(formatCode);
  reorder(*this, layout, layout.alphaToColors);
}

void VortoBitmap::unpremultiply(const VortoColor& background) {
  const Background color = {background.getRed(), background.getGreen(), background.getBlue()};
  switch (formatCode) {
    case Format::ARGB8:
      return unpremultiplyARGB8(data, pixelCount(*this, 4), color);
    case Format::RGBA16:
      return unpremultiplyRGBA16(data, pixelCount(*this, 8), color);
    case Format::RGBAHalfFloat:
      return unpremultiplyRGBAHalf(data, pixelCount(*this, 8), color);
    case Format::RGBAFloat:
      return unpremultiplyRGBAFloat(data, pixelCount(*this, 16), color);
    default:
      return unpremultiplyRGBA8(data, pixelCount(*this, 4), color);
  }
}

void VortoBitmap::preMult() {
  if (formatCode == Format::RGBA8) vorto::forEachRow(*this, 4, premultiplyRGBA8);
  if (formatCode == Format::ARGB8) vorto::forEachRow(*this, 4, premultiplyARGB8);
}

void VortoBitmap::convertToARGB() {
  if (!data) return;
  switch (formatCode) {
    case Format::RGBA8:
      reorder(*this, kRGBA8, kRGBA8.toARGB);
      formatCode = Format::ARGB8;
      return;
    case Format::RGBA16:
      return reorder(*this, kRGBA16, kRGBA16.toARGB);
    case Format::RGBAFloat:
      return reorder(*this, kRGBAFloat, kRGBAFloat.toARGB);
  }
}

void VortoBitmap::convertToRGBA() {
  if (!data) return;
  switch (formatCode) {
    case Format::ARGB8:
      reorder(*this, kARGB8, kARGB8.toRGBA);
      formatCode = Format::RGBA8;
      return;
    case Format::RGBA16:
      return reorder(*this, kRGBA16, kRGBA16.toRGBA);
    case Format::RGBAFloat:
      return reorder(*this, kRGBAFloat, kRGBAFloat.toRGBA);
  }
}

void VortoBitmap::unPreMult() {
  const std::uint64_t step = vorto::pixelBytesOf(*this);
  vorto::forEachRow(*this, step, [step](std::uint8_t* pixels, std::size_t count) {
    unpremultiplyTruncatedInPlace(pixels, count, step);
  });
}

void VortoBitmap::flip() {
  const std::uint64_t stride = vorto::rowBytesOf(*this);
  if (stride == 0) return;
  for (std::uint64_t top = 0; top < height / 2 && top * stride < accessibleBytes(); ++top) {
    const std::uint64_t bottom = (height - 1 - top) * stride;
    const std::size_t bytes = vorto::bytesWithin(*this, bottom, stride);
    if (bytes > 0) swapBytes(data + top * stride, data + bottom, bytes);
  }
}
