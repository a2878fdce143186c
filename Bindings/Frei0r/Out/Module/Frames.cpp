// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/Out/Module/Frames.h"

#include "Host/Pixels/Alpha.h"
#include "Host/Pixels/OutputRows.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"

#include <algorithm>
#include <cstring>

namespace frei0r {
namespace {

using host::MutableBitmapRef;

// Little endian, as all that Debian's hosts run on: alpha is in the highest byte.
constexpr std::uint32_t kAlpha = 0xFF000000;

// In pieces that stop early at the first one that is not opaque.
bool isOpaque(const std::uint32_t* pixels, std::size_t count) {
  constexpr std::size_t piece = 4096;
  for (std::size_t begin = 0; begin < count; begin += piece) {
    const std::size_t end = std::min(count, begin + piece);
    std::uint32_t all = kAlpha;
    for (std::size_t i = begin; i < end; ++i) all &= pixels[i];
    if (all != kAlpha) return false;
  }
  return true;
}

std::uint32_t* row(const VortoBitmap& bitmap, std::uint32_t y) {
  return reinterpret_cast<std::uint32_t*>(bitmap.data + y * host::bytesPerRow(bitmap));
}

// Straight where a row is not opaque.
void writeRow(const std::uint32_t* from, std::uint32_t* to, std::size_t width) {
  std::memmove(to, from, width * sizeof *to);
  if (!isOpaque(to, width)) host::unpremultiplyRow(reinterpret_cast<std::uint8_t*>(to), width);
}

}  // namespace

MutableBitmapRef copyOfFrame(const std::uint32_t* frame, std::uint32_t width, std::uint32_t height) {
  MutableBitmapRef copy = host::newUnsetBitmap(width, height, VortoPixelFormat::RGBA8, "a frame");
  for (std::uint32_t y = 0; y < height; ++y) {
    std::uint32_t* const to = row(*copy, y);
    std::memcpy(to, frame + std::size_t{y} * width, std::size_t{width} * sizeof *to);
    if (!isOpaque(to, width)) host::premultiplyRow(reinterpret_cast<std::uint8_t*>(to), width);
  }
  return copy;
}

MutableBitmapRef bitmapOfFrame(const std::uint32_t* frame, std::uint32_t width, std::uint32_t height) {
  if (!isOpaque(frame, std::size_t{width} * height)) return copyOfFrame(frame, width, height);
  auto bitmap = std::make_shared<VortoBitmap>();
  bitmap->width = width;
  bitmap->height = height;
  bitmap->bitsPerChannel = 8;
  bitmap->channels = 4;
  bitmap->formatCode = VortoPixelFormat::RGBA8;
  // Inputs are never written to.
  bitmap->data = const_cast<std::uint8_t*>(reinterpret_cast<const std::uint8_t*>(frame));
  bitmap->allocSize = width * height * 4;
  return bitmap;
}

void releaseFrame(VortoBitmap& bitmap, const std::uint32_t* frame) {
  if (bitmap.data != reinterpret_cast<const std::uint8_t*>(frame)) return;
  bitmap.data = nullptr;
  bitmap.allocSize = 0;
  bitmap.clear();
}

void writeFrame(const VortoBitmap& result, std::uint32_t* frame) {
  const std::size_t width = result.width;
  if (result.formatCode == VortoPixelFormat::RGBA8) {
    for (std::uint32_t y = 0; y < result.height; ++y) writeRow(row(result, y), frame + y * width, width);
    return;
  }
  host::OutputRows rows(result, {host::SampleType::UInt8, host::Channels::RGBA, host::AlphaKind::Straight});
  for (std::uint32_t y = 0; y < result.height; ++y) std::memcpy(frame + y * width, rows.row(y), width * sizeof *frame);
}

}  // namespace frei0r
