// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCPixelFormat.h"

#include "TarnCore/TCPixelLayout.h"

#include "Platform/CGL/GLEnumerants.h"

#include <cstddef>
#include <cstdint>
#include <iterator>

namespace {

// What OpenGL calls the format of each code.
struct OpenGLFormat {
  std::uint32_t internalFormat;
  std::uint32_t dataFormat;
  std::uint32_t dataType;
};

constexpr OpenGLFormat kOpenGLFormats[] = {
    {gl::RGBA8, gl::RGBA, gl::UNSIGNED_INT_8_8_8_8_REV},
    {gl::RGBA, gl::BGRA, gl::UNSIGNED_INT_8_8_8_8},
    {gl::RGBA, gl::YCBCR_422, gl::UNSIGNED_SHORT_8_8},
    {gl::RGBA, gl::BGRA, gl::UNSIGNED_INT_8_8_8_8},
    {gl::RGBA16, gl::RGBA, gl::UNSIGNED_SHORT},
    {gl::RGBA, gl::RGB, gl::UNSIGNED_SHORT},
    {gl::RGBA, gl::LUMINANCE_ALPHA, gl::UNSIGNED_SHORT},
    {gl::RGBA, gl::LUMINANCE, gl::UNSIGNED_SHORT},
    {gl::RGBA16F, gl::RGBA, gl::HALF_FLOAT},
    {gl::RGBA32F, gl::RGBA, gl::FLOAT},
};
static_assert(std::size(kOpenGLFormats) == std::size(kVortoPixelLayouts));

const OpenGLFormat& formatOf(VortoPixelFormat::Code code) {
  return kOpenGLFormats[&TCPixelLayoutOf(code) - kVortoPixelLayouts];
}

// Bits of four channels of each depth.
constexpr std::int64_t kChannelCount = 4;

VortoBitDepth::Type depthOf(std::int64_t bitsPerPixel, bool integer) {
  switch (bitsPerPixel) {
    case 48:
      return VortoBitDepth::Integer16;
    case 64:
      return integer ? VortoBitDepth::Integer16 : VortoBitDepth::Half;
    case 128:
      return VortoBitDepth::Float;
    default:
      return VortoBitDepth::Integer8;
  }
}

template <std::size_t count>
std::uint32_t entryOf(const std::uint32_t (&table)[count], VortoBitDepth::Type type) {
  return type < count ? table[type] : 0;
}

}  // namespace

bool VortoPixelFormat::hasAlpha(Code code) {
  return TCPixelLayoutOf(code).alpha >= 0;
}
std::uint32_t VortoPixelFormat::getGLInternalFormat(Code code) {
  return formatOf(code).internalFormat;
}
std::uint32_t VortoPixelFormat::getGLDataFormat(Code code) {
  return formatOf(code).dataFormat;
}
std::uint32_t VortoPixelFormat::getGLDataType(Code code) {
  return formatOf(code).dataType;
}
std::uint32_t VortoPixelFormat::getBitsPerPixel(Code code) {
  const VortoPixelLayout& layout = TCPixelLayoutOf(code);
  return 8 * layout.bytesPerPixel() * (layout.isPaired ? 2 : 1);  // of 4:2:2 those of a pair
}
std::uint32_t VortoPixelFormat::getBitsPerChannel(Code code) {
  return 8 * TCPixelLayoutOf(code).bytesPerChannel();
}

VortoPixelFormat::Code VortoPixelFormat::getPixelFormat(std::uint32_t glFormat, std::uint32_t glType) {
  switch (glType) {
    case gl::HALF_FLOAT:
      return RGBAHalfFloat;
    case gl::UNSIGNED_SHORT:
      switch (glFormat) {
        case gl::LUMINANCE:
          return Luminance16;
        case gl::LUMINANCE_ALPHA:
          return LuminanceAlpha16;
        case gl::RGB:
          return RGB16;
        default:
          return RGBA16;
      }
    case gl::FLOAT:
      return RGBAFloat;
    case gl::UNSIGNED_INT_8_8_8_8_REV:
      return RGBA8;
    case gl::UNSIGNED_SHORT_8_8:
      return YUV8;
    default:
      return ARGB8;
  }
}

const std::uint32_t VortoBitDepth::_bitsPerPixel[4] = {32, 64, 64, 128};
const std::uint32_t VortoBitDepth::_bitsPerChannel[4] = {8, 16, 16, 32};
const std::uint32_t VortoBitDepth::_pixelFormat[4] = {gl::RGBA, gl::RGBA, gl::RGBA16F, gl::RGBA32F};

std::uint32_t VortoBitDepth::getBitsPerPixel(Type type) {
  return entryOf(_bitsPerPixel, type);
}
std::uint32_t VortoBitDepth::getBitsPerChannel(Type type) {
  return entryOf(_bitsPerChannel, type);
}
std::uint32_t VortoBitDepth::getPixelFormat(Type type) {
  return entryOf(_pixelFormat, type);
}

VortoBitDepth::Type VortoBitDepth::getFromBitsPerPixel(int bits, bool integer) {
  return depthOf(bits, integer);
}
VortoBitDepth::Type VortoBitDepth::getFromBitsPerChannel(int bits, bool integer) {
  return depthOf(kChannelCount * bits, integer);
}

void VortoMakeCheckerImage(void* pixels, unsigned width, unsigned height) {
  auto* byte = static_cast<std::uint8_t*>(pixels);
  if (!byte) return;
  for (unsigned row = 0; row < height; ++row) {
    for (unsigned column = 0; column < width; ++column) {
      const bool isDark = ((row ^ column) & 8) == 0;
      const std::uint8_t color = isDark ? 192 : 255;
      *byte++ = 255;
      *byte++ = color;
      *byte++ = color;
      *byte++ = color;
    }
  }
}
