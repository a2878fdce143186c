// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

// Channel arithmetic that all effects share. Integer channels stand for 0 to 1 and round to the nearest value, halves
// up; float channels are what they are.
namespace vorto::effects {

template <class Channel>
inline constexpr std::uint32_t kFull = std::numeric_limits<Channel>::max();  // what 1.0 is at an integer depth

template <class Channel>
inline constexpr Channel kOne = std::is_floating_point_v<Channel> ? Channel{1} : std::numeric_limits<Channel>::max();

// The product of two channel values. Exact for every pair: multiplying by 1.0 changes nothing.
inline std::uint8_t product(std::uint8_t a, std::uint8_t b) {
  const std::uint32_t n = std::uint32_t{a} * b + 128;
  return static_cast<std::uint8_t>((n + (n >> 8)) >> 8);
}

inline std::uint16_t product(std::uint16_t a, std::uint16_t b) {
  const std::uint32_t n = std::uint32_t{a} * b + 32768;
  return static_cast<std::uint16_t>((n + (n >> 16)) >> 16);
}

inline float product(float a, float b) {
  return a * b;
}

// The straight color of a premultiplied one; alpha must not be 0. A color above its alpha gives 1.0.
template <class Channel>
Channel straight(Channel color, Channel alpha) {
  const std::uint32_t quotient = (std::uint32_t{color} * kFull<Channel> + alpha / 2U) / alpha;
  return static_cast<Channel>(std::min(quotient, kFull<Channel>));
}

// A value as a channel stores it: integers are clamped to 0 to 1 (NaN is 0) and rounded with the system's bias, so that
// what is halfway but for the last bits of its computation goes up.
template <class Channel>
Channel quantized(double value) {
  if constexpr (std::is_same_v<Channel, float>) {
    return static_cast<float>(value);
  } else {
    const double scaled = value * kFull<Channel> + 0.5 + 1e-7;
    if (!(scaled > 0)) return 0;
    return static_cast<Channel>(std::min(scaled, static_cast<double>(kFull<Channel>)));  // truncates: it is positive
  }
}

// The weight of the second image in a mixture: 0 to mixOne for integers, 0 to 1 for floats.
template <class Channel>
using MixWeight = std::conditional_t<std::is_same_v<Channel, float>, float, std::uint32_t>;

inline constexpr std::uint32_t kMixOne = 65536;

template <class Channel>
MixWeight<Channel> mixWeight(double value) {
  const double clamped = value > 0 ? std::min(value, 1.0) : 0.0;
  if constexpr (std::is_same_v<Channel, float>) {
    return static_cast<float>(clamped);
  } else {
    return static_cast<std::uint32_t>(clamped * kMixOne + 0.5);
  }
}

// The mixture of two channel values: exactly a at weight 0 and exactly b at weight 1, whatever the other one holds.
template <class Channel>
Channel mixed(Channel a, Channel b, std::uint32_t weight) {
  return static_cast<Channel>((a * (kMixOne - weight) + b * weight + kMixOne / 2) / kMixOne);
}

inline float mixed(float a, float b, float weight) {
  const float between = a * (1 - weight) + b * weight;
  return weight <= 0 ? a : (weight >= 1 ? b : between);
}

// A parameter that is not a number, or infinite, counts as its default.
inline double finiteOr(double value, double fallback) {
  return std::isfinite(value) ? value : fallback;
}

}  // namespace vorto::effects
