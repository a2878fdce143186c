// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelLayout.h"

#include <Imath/half.h>

#include <cstdint>

// Pixel types: records of channel values as they lie in a bitmap, read and written as floats.
//
// A value v reads as v / 255, v / 65535 or as the float it is, and is written by denormalizef() or as the half or float
// it becomes. A channel that the layout does not have reads as 1 and ignores writes; red, green and blue of a luminance
// layout are all its luminance. A 4:2:2 pixel knows only its own byte of chroma, so its red, green and blue are its
// luma.

// The unsigned integer nearest to v x 255 (or x 65535), halves and what lies within 1e-7 below them upward, clamped;
// NaN gives 0. denormalizef multiplies in single precision, denormalized in double. T is std::uint8_t or std::uint16_t.
template <class T = std::uint8_t>
T denormalizef(float v);
template <class T = std::uint8_t>
T denormalized(double v);
template <>
TARN_EXPORT std::uint8_t denormalizef<std::uint8_t>(float v);
template <>
TARN_EXPORT std::uint16_t denormalizef<std::uint16_t>(float v);
template <>
TARN_EXPORT std::uint8_t denormalized<std::uint8_t>(double v);
template <>
TARN_EXPORT std::uint16_t denormalized<std::uint16_t>(double v);

// Where each channel lies in the record; -1 where there is none.
template <VortoPixelFormat::Code code>
struct TARN_EXPORT VortoPixelInfo {
  static constexpr int kRed = TCPixelLayoutOf(code).red;
  static constexpr int kGreen = TCPixelLayoutOf(code).green;
  static constexpr int kBlue = TCPixelLayoutOf(code).blue;
  static constexpr int kAlpha = TCPixelLayoutOf(code).alpha;
};
struct TARN_EXPORT VortoPixelInfoRGBA8 : VortoPixelInfo<VortoPixelFormat::RGBA8> {};
struct TARN_EXPORT VortoPixelInfoARGB8 : VortoPixelInfo<VortoPixelFormat::ARGB8> {};
struct TARN_EXPORT VortoPixelInfoYUV8 : VortoPixelInfo<VortoPixelFormat::YUV8> {};
struct TARN_EXPORT VortoPixelInfoRGBA16 : VortoPixelInfo<VortoPixelFormat::RGBA16> {};
struct TARN_EXPORT VortoPixelInfoRGB16 : VortoPixelInfo<VortoPixelFormat::RGB16> {};
struct TARN_EXPORT VortoPixelInfoLuminanceAlpha16 : VortoPixelInfo<VortoPixelFormat::LuminanceAlpha16> {};
struct TARN_EXPORT VortoPixelInfoLuminance16 : VortoPixelInfo<VortoPixelFormat::Luminance16> {};
struct TARN_EXPORT VortoPixelInfoRGBAHalfFloat : VortoPixelInfo<VortoPixelFormat::RGBAHalfFloat> {};
struct TARN_EXPORT VortoPixelInfoRGBAFloat : VortoPixelInfo<VortoPixelFormat::RGBAFloat> {};

// Four values that are assigned as a whole, bit for bit.
template <class T>
struct TARN_EXPORT VortoVector4 {
  T values[4];
};

// A pixel of `count` numbers, which lie in memory as `Info` says.
template <class T, class Info, int count>
struct TARN_EXPORT VortoPixelN {
  T values[count];  // in memory order

  // One channel from 0 to 1, also of integers, which are rounded and clamped when set. Where there is no such channel
  // it reads 1, and setting it does nothing.
  float getRedfn() const;
  float getGreenfn() const;
  float getBluefn() const;
  float getAlphafn() const;
  void setRedfn(float v);
  void setGreenfn(float v);
  void setBluefn(float v);
  void setAlphafn(float v);
};
template <class T, class Info>
struct TARN_EXPORT VortoPixel4 : VortoPixelN<T, Info, 4> {};
template <class T, class Info>
struct TARN_EXPORT VortoPixel3 : VortoPixelN<T, Info, 3> {};
template <class T, class Info>
struct TARN_EXPORT VortoPixel2 : VortoPixelN<T, Info, 2> {};
template <class T, class Info>
struct TARN_EXPORT VortoPixel1 : VortoPixelN<T, Info, 1> {};
template <class T, class Info>
struct TARN_EXPORT VortoPixelYUV : VortoPixelN<T, Info, 2> {};  // U at even columns and V at odd ones, then Y

extern template struct VortoPixelN<std::uint8_t, VortoPixelInfoRGBA8, 4>;
extern template struct VortoPixelN<std::uint8_t, VortoPixelInfoARGB8, 4>;
extern template struct VortoPixelN<std::uint8_t, VortoPixelInfoYUV8, 2>;
extern template struct VortoPixelN<std::uint16_t, VortoPixelInfoRGBA16, 4>;
extern template struct VortoPixelN<std::uint16_t, VortoPixelInfoRGB16, 3>;
extern template struct VortoPixelN<std::uint16_t, VortoPixelInfoLuminanceAlpha16, 2>;
extern template struct VortoPixelN<std::uint16_t, VortoPixelInfoLuminance16, 1>;
extern template struct VortoPixelN<half, VortoPixelInfoRGBAHalfFloat, 4>;
extern template struct VortoPixelN<float, VortoPixelInfoRGBAFloat, 4>;

// The bitmap of a format.
template <class Pixel, VortoPixelFormat::Code code>
using VortoBitmapOf = VortoBitmap_t<Pixel, 8 * TCPixelLayoutOf(code).bytesPerChannel(),
                                    static_cast<std::uint32_t>(TCPixelLayoutOf(code).channels), code>;

using VortoBitmapRGBA8 = VortoBitmapOf<VortoPixel4<std::uint8_t, VortoPixelInfoRGBA8>, VortoPixelFormat::RGBA8>;
using VortoBitmapARGB8 = VortoBitmapOf<VortoPixel4<std::uint8_t, VortoPixelInfoARGB8>, VortoPixelFormat::ARGB8>;
using VortoBitmapYUV8 = VortoBitmapOf<VortoPixelYUV<std::uint8_t, VortoPixelInfoYUV8>, VortoPixelFormat::YUV8>;
using VortoBitmapRGBA16 = VortoBitmapOf<VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>, VortoPixelFormat::RGBA16>;
using VortoBitmapRGB16 = VortoBitmapOf<VortoPixel3<std::uint16_t, VortoPixelInfoRGB16>, VortoPixelFormat::RGB16>;
using VortoBitmapLuminanceAlpha16 =
    VortoBitmapOf<VortoPixel2<std::uint16_t, VortoPixelInfoLuminanceAlpha16>, VortoPixelFormat::LuminanceAlpha16>;
using VortoBitmapLuminance16 =
    VortoBitmapOf<VortoPixel1<std::uint16_t, VortoPixelInfoLuminance16>, VortoPixelFormat::Luminance16>;
using VortoBitmapRGBAHalfFloat =
    VortoBitmapOf<VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>, VortoPixelFormat::RGBAHalfFloat>;
using VortoBitmapRGBAFloat = VortoBitmapOf<VortoPixel4<float, VortoPixelInfoRGBAFloat>, VortoPixelFormat::RGBAFloat>;
