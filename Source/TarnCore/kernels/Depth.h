// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/TCPixelLayout.h"
#include "TarnCore/kernels/Scale.h"

#include <cstddef>
#include <cstdint>

// Conversions of four-channel pixels between depths.
namespace vorto::kernels {

// The layouts that a conversion reads, and those of them that it writes.
enum class DepthLayout : VortoPixelFormat::Code {
  RGBA8 = VortoPixelFormat::RGBA8,
  ARGB8 = VortoPixelFormat::ARGB8,
  RGBA16 = VortoPixelFormat::RGBA16,
  RGBAHalf = VortoPixelFormat::RGBAHalfFloat,
  RGBAFloat = VortoPixelFormat::RGBAFloat,
};
constexpr std::size_t depthPixelBytes(DepthLayout layout) {
  return TCPixelLayoutOf(static_cast<VortoPixelFormat::Code>(layout)).bytesPerPixel();
}

// `count` consecutive pixels: every channel through its value as a float. `to` is ARGB8, RGBA16 or RGBAFloat. The two
// must not overlap. `streamed` writes past the caches where that is possible.
void convertDepth(std::uint8_t* out, DepthLayout to, const std::uint8_t* in, DepthLayout from, std::size_t count,
                  bool streamed = false);
void convertDepthScalar(std::uint8_t* out, DepthLayout to, const std::uint8_t* in, DepthLayout from, std::size_t count);

// Nearest-neighbour scaling and conversion in one pass, by the rules of scaleNearest().
void scaleAndConvert(const ScaleDestination& destination, DepthLayout to, const ScaleSource& source, DepthLayout from);
void scaleAndConvertScalar(const ScaleDestination& destination, DepthLayout to, const ScaleSource& source,
                           DepthLayout from);

}  // namespace vorto::kernels
