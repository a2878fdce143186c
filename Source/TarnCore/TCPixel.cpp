// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCPixel.h"

#include <algorithm>
#include <cmath>
#include <type_traits>

static_assert(std::is_trivially_copy_assignable_v<VortoVector4<half>> && sizeof(VortoVector4<half>) == 8);

namespace {

// Rounds a product to the nearest integer of 0 to `largest`; NaN gives 0.
double rounded(double product, double largest) {
  const double floored = std::floor(product + 0.5 + 1e-7);
  return floored > 0 ? std::min(floored, largest) : 0;
}

float normalized(std::uint8_t v) {
  return static_cast<float>(v * 0.00392156862745098);
}
float normalized(std::uint16_t v) {
  return static_cast<float>(v * 1.5259021896696422e-5);
}
float normalized(half v) {
  return v;
}
float normalized(float v) {
  return v;
}

template <class T>
T stored(float v) {
  if constexpr (std::is_integral_v<T>) {
    return denormalizef<T>(v);
  } else {
    return T(v);
  }
}

template <int index, class T>
float channel(const T* values) {
  if constexpr (index < 0) {
    return 1;
  } else {
    return normalized(values[index]);
  }
}

template <int index, class T>
void setChannel(T* values, float v) {
  if constexpr (index >= 0) values[index] = stored<T>(v);
}

}  // namespace

template <>
std::uint8_t denormalizef<std::uint8_t>(float v) {
  return static_cast<std::uint8_t>(rounded(255.0f * v, 255));
}

template <>
std::uint16_t denormalizef<std::uint16_t>(float v) {
  return static_cast<std::uint16_t>(rounded(65535.0f * v, 65535));
}

template <>
std::uint8_t denormalized<std::uint8_t>(double v) {
  return static_cast<std::uint8_t>(rounded(255.0 * v, 255));
}

template <>
std::uint16_t denormalized<std::uint16_t>(double v) {
  return static_cast<std::uint16_t>(rounded(65535.0 * v, 65535));
}

template <class T, class Info, int count>
float VortoPixelN<T, Info, count>::getRedfn() const {
  return channel<Info::kRed>(values);
}

template <class T, class Info, int count>
float VortoPixelN<T, Info, count>::getGreenfn() const {
  return channel<Info::kGreen>(values);
}

template <class T, class Info, int count>
float VortoPixelN<T, Info, count>::getBluefn() const {
  return channel<Info::kBlue>(values);
}

template <class T, class Info, int count>
float VortoPixelN<T, Info, count>::getAlphafn() const {
  return channel<Info::kAlpha>(values);
}

template <class T, class Info, int count>
void VortoPixelN<T, Info, count>::setRedfn(float v) {
  setChannel<Info::kRed>(values, v);
}

template <class T, class Info, int count>
void VortoPixelN<T, Info, count>::setGreenfn(float v) {
  setChannel<Info::kGreen>(values, v);
}

template <class T, class Info, int count>
void VortoPixelN<T, Info, count>::setBluefn(float v) {
  setChannel<Info::kBlue>(values, v);
}

template <class T, class Info, int count>
void VortoPixelN<T, Info, count>::setAlphafn(float v) {
  setChannel<Info::kAlpha>(values, v);
}

template struct VortoPixelN<std::uint8_t, VortoPixelInfoRGBA8, 4>;
template struct VortoPixelN<std::uint8_t, VortoPixelInfoARGB8, 4>;
template struct VortoPixelN<std::uint8_t, VortoPixelInfoYUV8, 2>;
template struct VortoPixelN<std::uint16_t, VortoPixelInfoRGBA16, 4>;
template struct VortoPixelN<std::uint16_t, VortoPixelInfoRGB16, 3>;
template struct VortoPixelN<std::uint16_t, VortoPixelInfoLuminanceAlpha16, 2>;
template struct VortoPixelN<std::uint16_t, VortoPixelInfoLuminance16, 1>;
template struct VortoPixelN<half, VortoPixelInfoRGBAHalfFloat, 4>;
template struct VortoPixelN<float, VortoPixelInfoRGBAFloat, 4>;
