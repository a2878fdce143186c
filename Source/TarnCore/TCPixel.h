// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"
#include "TarnCore/TCBitmap.h"

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
template <int redIndex, int greenIndex, int blueIndex, int alphaIndex>
struct TARN_EXPORT VortoPixelInfo {
  static constexpr int red = redIndex;
  static constexpr int green = greenIndex;
  static constexpr int blue = blueIndex;
  static constexpr int alpha = alphaIndex;
};
struct TARN_EXPORT VortoPixelInfoRGBA8 : VortoPixelInfo<0, 1, 2, 3> {};
struct TARN_EXPORT VortoPixelInfoARGB8 : VortoPixelInfo<1, 2, 3, 0> {};
struct TARN_EXPORT VortoPixelInfoYUV8 : VortoPixelInfo<1, 1, 1, -1> {};
struct TARN_EXPORT VortoPixelInfoRGBA16 : VortoPixelInfo<0, 1, 2, 3> {};
struct TARN_EXPORT VortoPixelInfoRGB16 : VortoPixelInfo<0, 1, 2, -1> {};
struct TARN_EXPORT VortoPixelInfoLuminanceAlpha16 : VortoPixelInfo<0, 0, 0, 1> {};
struct TARN_EXPORT VortoPixelInfoLuminance16 : VortoPixelInfo<0, 0, 0, -1> {};
struct TARN_EXPORT VortoPixelInfoRGBAHalfFloat : VortoPixelInfo<0, 1, 2, 3> {};
struct TARN_EXPORT VortoPixelInfoRGBAFloat : VortoPixelInfo<0, 1, 2, 3> {};

// Four values that are assigned as a whole, bit for bit.
template <class T>
struct TARN_EXPORT VortoVector4 {
  T values[4];
};

template <class T, class Info, int count>
struct TARN_EXPORT VortoPixelN {
  T values[count];  // in memory order

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

using VortoBitmapRGBA8 = VortoBitmap_t<VortoPixel4<std::uint8_t, VortoPixelInfoRGBA8>, 8, 4, 0>;
using VortoBitmapARGB8 = VortoBitmap_t<VortoPixel4<std::uint8_t, VortoPixelInfoARGB8>, 8, 4, 1>;
using VortoBitmapYUV8 = VortoBitmap_t<VortoPixelYUV<std::uint8_t, VortoPixelInfoYUV8>, 8, 2, 2>;
using VortoBitmapRGBA16 = VortoBitmap_t<VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>, 16, 4, 4>;
using VortoBitmapRGB16 = VortoBitmap_t<VortoPixel3<std::uint16_t, VortoPixelInfoRGB16>, 16, 3, 5>;
using VortoBitmapLuminanceAlpha16 = VortoBitmap_t<VortoPixel2<std::uint16_t, VortoPixelInfoLuminanceAlpha16>, 16, 2, 6>;
using VortoBitmapLuminance16 = VortoBitmap_t<VortoPixel1<std::uint16_t, VortoPixelInfoLuminance16>, 16, 1, 7>;
using VortoBitmapRGBAHalfFloat = VortoBitmap_t<VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>, 16, 4, 8>;
using VortoBitmapRGBAFloat = VortoBitmap_t<VortoPixel4<float, VortoPixelInfoRGBAFloat>, 32, 4, 9>;
