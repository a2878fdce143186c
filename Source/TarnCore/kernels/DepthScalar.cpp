// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCPixel.h"
#include "TarnCore/kernels/Depth.h"

#include <cstring>

namespace vorto::kernels {

namespace {

struct Channels {
  float red;
  float green;
  float blue;
  float alpha;
};

template <class Pixel>
Channels readPixel(const std::uint8_t* in) {
  Pixel pixel;
  std::memcpy(&pixel, in, sizeof pixel);
  return Channels{pixel.getRedfn(), pixel.getGreenfn(), pixel.getBluefn(), pixel.getAlphafn()};
}

template <class Pixel>
void writePixel(std::uint8_t* out, const Channels& channels) {
  Pixel pixel;
  pixel.setRedfn(channels.red);
  pixel.setGreenfn(channels.green);
  pixel.setBluefn(channels.blue);
  pixel.setAlphafn(channels.alpha);
  std::memcpy(out, &pixel, sizeof pixel);
}

using RGBA8 = VortoPixel4<std::uint8_t, VortoPixelInfoRGBA8>;
using ARGB8 = VortoPixel4<std::uint8_t, VortoPixelInfoARGB8>;
using RGBA16 = VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>;
using RGBAHalf = VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>;
using RGBAFloat = VortoPixel4<float, VortoPixelInfoRGBAFloat>;

Channels readLayout(DepthLayout layout, const std::uint8_t* in) {
  switch (layout) {
    case DepthLayout::RGBA8:
      return readPixel<RGBA8>(in);
    case DepthLayout::ARGB8:
      return readPixel<ARGB8>(in);
    case DepthLayout::RGBA16:
      return readPixel<RGBA16>(in);
    case DepthLayout::RGBAHalf:
      return readPixel<RGBAHalf>(in);
    case DepthLayout::RGBAFloat:
      return readPixel<RGBAFloat>(in);
  }
  return {};
}

void writeLayout(DepthLayout layout, std::uint8_t* out, const Channels& channels) {
  switch (layout) {
    case DepthLayout::ARGB8:
      return writePixel<ARGB8>(out, channels);
    case DepthLayout::RGBA16:
      return writePixel<RGBA16>(out, channels);
    case DepthLayout::RGBAFloat:
      return writePixel<RGBAFloat>(out, channels);
    case DepthLayout::RGBA8:
    case DepthLayout::RGBAHalf:
      return;  // never written
  }
}

}  // namespace

void convertDepthScalar(std::uint8_t* out, DepthLayout to, const std::uint8_t* in, DepthLayout from,
                        std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    writeLayout(to, out + i * depthPixelBytes(to), readLayout(from, in + i * depthPixelBytes(from)));
  }
}

void scaleAndConvertScalar(const ScaleDestination& destination, DepthLayout to, const ScaleSource& source,
                           DepthLayout from) {
  if (destination.width == 0) return;
  const double columnRatio = static_cast<double>(source.width) / destination.width;
  const double rowRatio = static_cast<double>(source.height) / destination.height;
  std::uint64_t at = 0;
  for (std::uint32_t j = 0; j < destination.height; ++j) {
    const std::uint64_t row = scaledIndex(j, rowRatio);
    for (std::uint32_t i = 0; i < destination.width; ++i, ++at) {
      if (at >= destination.accessible) return;
      const std::uint64_t pixel = row * source.width + scaledIndex(i, columnRatio);
      if (pixel >= source.accessible) continue;
      writeLayout(to, destination.pixels + at * depthPixelBytes(to),
                  readLayout(from, source.pixels + pixel * depthPixelBytes(from)));
    }
  }
}

}  // namespace vorto::kernels
