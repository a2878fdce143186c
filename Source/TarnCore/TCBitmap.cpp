// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmap.h"

#include "Platform/Mach/mach.h"
#include "TarnCore/TCBitmapSlack.h"
#include "TarnCore/TCPixel.h"
#include "TarnCore/TCPixelFormat.h"
#include "TarnCore/TCPixelLayout.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr std::uint32_t kBitmapTag = 9;

}  // namespace

VortoBitmap::VortoBitmap() : VortoImage(0, 0, 0, 0, 0) {
  imageTag = kBitmapTag;
}

VortoBitmap::VortoBitmap(std::uint32_t w, std::uint32_t h, std::uint32_t bits, std::uint32_t channelCount,
                         std::uint32_t code, std::uint32_t padding)
    : VortoImage(w, h, bits, channelCount, padding), formatCode(code) {
  imageTag = kBitmapTag;
  allocateMemory();
}

// The source's pointer is taken over with the descriptor, but nothing of its memory: with allocSize 0, the release
// inside clone() gives nothing back.
VortoBitmap::VortoBitmap(const VortoBitmap& source) : VortoImage(source) {
  imageTag = kBitmapTag;
  clone(source);
}

VortoBitmap::~VortoBitmap() {
  deallocateMemory();
}

void VortoBitmap::clear() {
  width = 0;
  height = 0;
  bitsPerChannel = 0;
  channels = 0;
  formatCode = 0;
  imageTag = kBitmapTag;
  deallocateMemory();
}

void VortoBitmap::setData(const void* source) {
  if (!data || !source) return;
  std::uint64_t bytes = getSize();
  if (rowPadding != 0) {
    const std::uint32_t rowBytes = width * channels * (bitsPerChannel / 8) + rowPadding;
    bytes = static_cast<std::uint64_t>(rowBytes) * height;  // both sides have the same stride: one piece
  }
  const std::size_t fitting = std::min<std::uint64_t>(bytes, accessibleBytes());
  vorto::declareTouched(data, fitting);
  std::memmove(data, source, fitting);
}

VortoBitmap* TCCreateBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode) {
  switch (formatCode) {
    case VortoPixelFormat::RGBA8:
      return new VortoBitmapRGBA8(width, height);
    case VortoPixelFormat::ARGB8:
      return new VortoBitmapARGB8(width, height);
    case VortoPixelFormat::YUV8:
      return new VortoBitmapYUV8(width, height);
    case VortoPixelFormat::RGBA16:
      return new VortoBitmapRGBA16(width, height);
    case VortoPixelFormat::RGB16:
      return new VortoBitmapRGB16(width, height);
    case VortoPixelFormat::LuminanceAlpha16:
      return new VortoBitmapLuminanceAlpha16(width, height);
    case VortoPixelFormat::Luminance16:
      return new VortoBitmapLuminance16(width, height);
    case VortoPixelFormat::RGBAHalfFloat:
      return new VortoBitmapRGBAHalfFloat(width, height);
    case VortoPixelFormat::RGBAFloat:
      return new VortoBitmapRGBAFloat(width, height);
    default:
      return nullptr;
  }
}

VortoBitmap* TCCreateUnsetBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode) {
  const VMUnsetMemory pixels(std::size_t{width} * height * TCPixelLayoutOf(formatCode).bytesPerPixel());
  return TCCreateBitmap(width, height, formatCode);
}
