// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCColor.h"

#include <algorithm>
#include <cmath>

// Products and sums are evaluated in the order in which they are written, one rounding each: the results are defined to
// the bit.

namespace {

constexpr float kCloseToZero = 0.00001f;

bool isCloseToZero(float x) {
  return std::fabs(x) < kCloseToZero;
}

float largest(float r, float g, float b) {
  return std::max(std::max(r, g), b);
}
float smallest(float r, float g, float b) {
  return std::min(std::min(r, g), b);
}

// The hue of the hexcone in sixths of a turn, -1 to 5; d is the distance of the largest and the smallest component.
float hexconeSextant(float r, float g, float b, float max, float d) {
  if (max == r) return (g - b) / d;
  if (max == g) return (b - r) / d + 2;
  return (r - g) / d + 4;
}

// A component of an HSL color at an angle of -120 to 480 degrees from red.
float hexconeComponent(float low, float high, float hue) {
  if (hue > 360) hue -= 360;
  if (hue < 0) hue += 360;
  if (hue < 60) return low + (high - low) * hue / 60;
  if (hue < 180) return high;
  if (hue < 240) return low + (high - low) * (240 - hue) / 60;
  return low;
}

void store(float first, float second, float third, float* o1, float* o2, float* o3) {
  *o1 = first;
  *o2 = second;
  *o3 = third;
}

}  // namespace

float VortoColor::clampHue(float hue) {
  if (hue > 3600 || hue < -3600) hue = static_cast<float>(std::fmod(static_cast<double>(hue), 360.0));
  while (hue > 360) hue -= 360;
  while (hue < 0) hue += 360;
  return hue;
}

void VortoColor::RGBtoHSL(float r, float g, float b, float* h, float* s, float* l) {
  const float max = largest(r, g, b);
  const float min = smallest(r, g, b);
  const float lightness = (max + min) * 0.5f;
  if (max == min) return store(0, 0, lightness, h, s, l);

  const float d = max - min;
  const float saturation =
      lightness <= 0.5f ? d / (max + min) : static_cast<float>(static_cast<double>(d) / (2.0 - max - min));
  float hue = 60 * hexconeSextant(r, g, b, max, d);
  if (hue < 0) hue += 360;
  if (hue == 360) hue = 0;
  store(hue, saturation, lightness, h, s, l);
}

void VortoColor::HSLtoRGB(float h, float s, float l, float* r, float* g, float* b) {
  if (isCloseToZero(s)) return store(l, l, l, r, g, b);

  const float high = l <= 0.5f ? l * (1 + s) : l + s - l * s;
  const float low = 2 * l - high;
  const float red = hexconeComponent(low, high, h + 120);
  const float green = hexconeComponent(low, high, h);
  const float blue = hexconeComponent(high, high, h - 120);  // both bounds are the upper one, see the header
  store(red, green, blue, r, g, b);
}

void VortoColor::RGBtoHSV(float r, float g, float b, float* h, float* s, float* v) {
  const float max = largest(r, g, b);
  const float min = smallest(r, g, b);
  if (isCloseToZero(max) || max == min) return store(0, 0, max, h, s, v);

  const float d = max - min;
  float hue = 60 * hexconeSextant(r, g, b, max, d);
  if (hue < 0) hue += 360;
  store(hue, d / max, max, h, s, v);
}

void VortoColor::HSVtoRGB(float h, float s, float v, float* r, float* g, float* b) {
  if (isCloseToZero(s)) return store(v, v, v, r, g, b);

  const float sixths = clampHue(h) / 60;
  if (!(sixths >= 0 && sixths < 6)) return;  // 360 exactly, or NaN
  const int sextant = static_cast<int>(sixths);
  const float f = sixths - static_cast<float>(sextant);
  if (s > 1) s = 1;
  const float p = (1 - s) * v;
  const float q = (1 - s * f) * v;
  const float t = (1 - s * (1 - f)) * v;
  switch (sextant) {
    case 0:
      return store(v, t, p, r, g, b);
    case 1:
      return store(q, v, p, r, g, b);
    case 2:
      return store(p, v, t, r, g, b);
    case 3:
      return store(p, q, v, r, g, b);
    case 4:
      return store(t, p, v, r, g, b);
    case 5:
      return store(v, p, q, r, g, b);
  }
}

void VortoColor::RGBtoHWB(float r, float g, float b, float* h, float* whiteness, float* blackness) {
  const float max = largest(r, g, b);
  const float min = smallest(r, g, b);
  const float d = max - min;
  float sextant = 0;
  if (isCloseToZero(d)) {
    sextant = 0;
  } else if (isCloseToZero(r - min)) {
    sextant = 2 - (g - b) / d;  // not the symmetric 3, see the header
  } else if (isCloseToZero(g - min)) {
    sextant = 5 - (b - r) / d;
  } else {
    sextant = 1 - (r - g) / d;
  }
  store(60 * sextant, min, 1 - max, h, whiteness, blackness);
}

void VortoColor::HWBtoRGB(float h, float whiteness, float blackness, float* r, float* g, float* b) {
  const float v = 1 - blackness;
  if (isCloseToZero(v - whiteness)) return store(v, v, v, r, g, b);

  const float sextant = std::floor(h / 60 + kCloseToZero);
  if (!(sextant >= 0 && sextant <= 6)) return;
  const int i = static_cast<int>(sextant);
  float f = h / 60 - sextant;
  if (i % 2 == 1) f = 1 - f;
  const float n = whiteness + f * (v - whiteness);
  switch (i) {
    case 0:
    case 6:
      return store(v, n, whiteness, r, g, b);
    case 1:
      return store(n, v, whiteness, r, g, b);
    case 2:
      return store(whiteness, v, n, r, g, b);
    case 3:
      return store(whiteness, n, v, r, g, b);
    case 4:
      return store(n, whiteness, v, r, g, b);
    case 5:
      return store(v, whiteness, n, r, g, b);
  }
}

void VortoColor::RGBtoYIQ(float r, float g, float b, float* y, float* i, float* q) {
  store(0.299f * r + 0.587f * g + 0.114f * b, 0.596f * r - 0.274f * g - 0.322f * b,
        0.212f * r - 0.523f * g + 0.311f * b, y, i, q);
}

void VortoColor::YIQtoRGB(float y, float i, float q, float* r, float* g, float* b) {
  store(y + 0.956f * i + 0.621f * q, y - 0.272f * i - 0.647f * q, y - 1.105f * i + 1.702f * q, r, g, b);
}

void VortoColor::RGBtoYUV(float r, float g, float b, float* y, float* u, float* v) {
  store(0.299f * r + 0.587f * g + 0.114f * b, -0.147f * r - 0.289f * g + 0.436f * b, 0.615f * r - 0.515f * g - 0.1f * b,
        y, u, v);
}

void VortoColor::YUVtoRGB(float y, float u, float v, float* r, float* g, float* b) {
  store(y + 1.14f * v, y - 0.396f * u - 0.581f * v, y + 2.029f * u, r, g, b);
}

void VortoColor::RGBtoCLU(float r, float g, float b, float* c, float* l, float* u) {
  const double red = r;
  const double green = g;
  const double blue = b;
  store(static_cast<float>((red + green + blue) * 0.577 * 0.577), static_cast<float>((green - red) * 0.707),
        static_cast<float>((2 * blue - red - green) * 0.408), c, l, u);
}

void VortoColor::CLUtoRGB(float c, float l, float u, float* r, float* g, float* b) {
  const double achromatic = c * 0.999364;
  store(static_cast<float>(achromatic - 0.707 * l - 0.408 * u), static_cast<float>(achromatic + 0.707 * l - 0.408 * u),
        static_cast<float>(achromatic + 0.816 * u), r, g, b);
}
