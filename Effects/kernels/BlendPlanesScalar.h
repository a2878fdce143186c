// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/kernels/Blend.h"

#include <cmath>

// The definitions of the modes that are computed in floats: their `both`, of the colors of one pixel in the units of
// its depth.
namespace vorto::effects::planes {

struct Color {
  float red, green, blue;
};

inline float both(ColorDodgeMode, float b, float f, float backgroundAlpha, float foregroundAlpha) {
  const float full = foregroundAlpha * backgroundAlpha;
  if (!(b > 0)) return 0;
  if (f >= foregroundAlpha) return full;
  const float dodged = b * (foregroundAlpha * foregroundAlpha) / (foregroundAlpha - f);
  return dodged < full ? dodged : full;
}

inline float both(ColorBurnMode, float b, float f, float backgroundAlpha, float foregroundAlpha) {
  const float full = foregroundAlpha * backgroundAlpha;
  if (b >= backgroundAlpha) return full;
  if (!(f > 0)) return 0;
  const float burnt = (backgroundAlpha - b) * (foregroundAlpha * foregroundAlpha) / f;
  return full - (burnt < full ? burnt : full);
}

inline float both(SoftLightMode, float behind, float f, float backgroundAlpha, float foregroundAlpha) {
  const float b = backgroundAlpha > 0 ? behind / backgroundAlpha : 0;
  const float raised = b > 0.25F ? std::sqrt(b) : ((16 * b - 12) * b + 4) * b;
  const float strength = f + f - foregroundAlpha;
  const float way = strength > 0 ? raised - b : b - b * b;
  return foregroundAlpha * behind + strength * backgroundAlpha * way;
}

template <class Mode>
Color both(Mode mode, const Color& b, const Color& f, float backgroundAlpha, float foregroundAlpha) {
  return {both(mode, b.red, f.red, backgroundAlpha, foregroundAlpha),
          both(mode, b.green, f.green, backgroundAlpha, foregroundAlpha),
          both(mode, b.blue, f.blue, backgroundAlpha, foregroundAlpha)};
}

inline Color scaled(const Color& c, float factor) {
  return {c.red * factor, c.green * factor, c.blue * factor};
}

inline float lesserOf(float a, float b) {
  return a < b ? a : b;
}
inline float greaterOf(float a, float b) {
  return b < a ? a : b;
}
inline float smallest(const Color& c) {
  return lesserOf(lesserOf(c.red, c.green), c.blue);
}
inline float largest(const Color& c) {
  return greaterOf(greaterOf(c.red, c.green), c.blue);
}

inline float luminosityOf(const Color& c) {
  return 0.3F * c.red + 0.59F * c.green + 0.11F * c.blue;
}

inline float saturationOf(const Color& c) {
  return largest(c) - smallest(c);
}

// SetSat.
inline Color withSaturation(const Color& c, float saturation) {
  const float least = smallest(c);
  const float range = largest(c) - least;
  if (!(range > kGrey)) return {0, 0, 0};
  const float stretch = saturation / range;
  return {(c.red - least) * stretch, (c.green - least) * stretch, (c.blue - least) * stretch};
}

// SetLum with ClipColor, of colors from 0 to the limit. A color that leaves both is clipped at 0.
inline Color withLuminosity(const Color& c, float luminosity, float limit) {
  const float wanted = lesserOf(greaterOf(luminosity, 0), limit);
  const float change = luminosity - luminosityOf(c);
  const Color moved{c.red + change, c.green + change, c.blue + change};
  const float least = smallest(moved);
  const float most = largest(moved);
  const bool isBelow = least < 0;
  const bool isAbove = most > limit;
  const float room = isBelow ? wanted : limit - wanted;
  const float reach = isBelow ? wanted - least : most - wanted;
  const float factor = isBelow || isAbove ? room / reach : 1;
  return {wanted + (moved.red - wanted) * factor, wanted + (moved.green - wanted) * factor,
          wanted + (moved.blue - wanted) * factor};
}

inline Color both(HueMode, const Color& b, const Color& f, float backgroundAlpha, float foregroundAlpha) {
  const Color behind = scaled(b, foregroundAlpha);
  return withLuminosity(withSaturation(f, saturationOf(behind)), luminosityOf(behind),
                        foregroundAlpha * backgroundAlpha);
}

inline Color both(SaturationMode, const Color& b, const Color& f, float backgroundAlpha, float foregroundAlpha) {
  return withLuminosity(withSaturation(b, saturationOf(scaled(f, backgroundAlpha))),
                        luminosityOf(scaled(b, foregroundAlpha)), foregroundAlpha * backgroundAlpha);
}

inline Color both(ColorMode, const Color& b, const Color& f, float backgroundAlpha, float foregroundAlpha) {
  return withLuminosity(scaled(f, backgroundAlpha), luminosityOf(scaled(b, foregroundAlpha)),
                        foregroundAlpha * backgroundAlpha);
}

inline Color both(LuminosityMode, const Color& b, const Color& f, float backgroundAlpha, float foregroundAlpha) {
  return withLuminosity(scaled(b, foregroundAlpha), luminosityOf(scaled(f, backgroundAlpha)),
                        foregroundAlpha * backgroundAlpha);
}

}  // namespace vorto::effects::planes
