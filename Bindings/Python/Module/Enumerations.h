// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelGradientSample.h"
#include "TarnCore/TCPixelFormat.h"

#include <cstdint>

// The framework's codes as types of their own, which is how Python has them.
namespace vorto::python {

enum class PixelFormat : std::uint32_t {
  RGBA8 = VortoPixelFormat::RGBA8,
  ARGB8 = VortoPixelFormat::ARGB8,
  YUV8 = VortoPixelFormat::YUV8,
  ARGB8NoAlpha = VortoPixelFormat::ARGB8NoAlpha,
  RGBA16 = VortoPixelFormat::RGBA16,
  RGB16 = VortoPixelFormat::RGB16,
  LuminanceAlpha16 = VortoPixelFormat::LuminanceAlpha16,
  Luminance16 = VortoPixelFormat::Luminance16,
  RGBAHalfFloat = VortoPixelFormat::RGBAHalfFloat,
  RGBAFloat = VortoPixelFormat::RGBAFloat,
};

constexpr std::uint32_t codeOf(PixelFormat format) {
  return static_cast<std::uint32_t>(format);
}

}  // namespace vorto::python
