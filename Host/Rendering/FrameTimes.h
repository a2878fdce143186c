// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"
#include "Host/Rendering/Effects.h"

#include <cstdint>
#include <optional>
#include <string>

namespace host {

inline double valueOf(const Rational& rate) {
  return static_cast<double>(rate.numerator) / rate.denominator;
}

// The time base in which frames of a rate come at 0, 1, 2, ...
inline Rational unitOfRate(const Rational& rate) {
  return {static_cast<std::int32_t>(rate.denominator), static_cast<std::uint32_t>(rate.numerator)};
}

// Frames per second as a fraction: N/D as it is, whole numbers, rates of NTSC (23.976, 23.98, 29.97, 59.94: N x 1000 /
// 1001), else to the thousandth. Nothing for what is no number from 0.001 to a million.
std::optional<Rational> parsedFrameRate(const std::string& text);

// Seconds of "12.5", "1:02.5", "1:00:00". Nothing for anything else.
std::optional<double> parsedSeconds(const std::string& text);

// What an effect takes as its time at a frame of a run: transitions run from 0 at the first frame to 1 at the last,
// others in seconds since the first.
double timeForEffect(EffectKind kind, std::uint64_t index, std::uint64_t count, double secondsSinceFirst);

}  // namespace host
