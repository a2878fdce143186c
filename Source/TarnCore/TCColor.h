// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstdint>

// A color: three components in the units of a color model, and an opacity.
//
// Components may leave the ranges below, nothing clamps them but clamp() and invert(). Everything is computed in single
// precision, the CLU model and two stated steps in double precision. NaN never counts as close to, equal to or less
// than anything. Nothing fails and nothing is reported.
class TARN_EXPORT VortoColor {
 public:
  // A value of 7 or more names no model: every operation that depends on the model leaves such a color alone.
  enum Type : std::uint32_t {
    HSL = 0,  // hue 0 to 360 degrees, saturation 0 to 1, lightness 0 to 1
    HSV = 1,  // hue 0 to 360 degrees, saturation 0 to 1, value 0 to 1
    HWB = 2,  // hue 0 to 360 degrees, whiteness 0 to 1, blackness 0 to 1
    RGB = 3,  // red, green, blue 0 to 1
    YIQ = 4,  // Y 0 to 1, I -0.596 to 0.596, Q -0.274 to 0.274 (where clamp() cuts)
    YUV = 5,  // Y 0 to 1, U -0.436 to 0.436, V -0.615 to 0.615
    CLU = 6,  // C achromatic axis, L green minus red, U blue minus yellow
  };

  Type type = RGB;
  float c1 = 0;  // the three components, in the order in which the model names them
  float c2 = 0;
  float c3 = 0;
  float alpha = 1;  // 0 transparent to 1 opaque; no change of model touches it

  // In RGB, opaque.
  static const VortoColor RED;
  static const VortoColor GREEN;
  static const VortoColor BLUE;
  static const VortoColor BLACK;
  static const VortoColor WHITE;
  static const VortoColor YELLOW;
  static const VortoColor CLEAR;  // RGB black, alpha 0

  constexpr VortoColor() = default;  // opaque black in RGB
  // Components are kept as given; without a type they are red, green and blue.
  constexpr explicit VortoColor(Type t) : type(t) {}
  constexpr VortoColor(float r, float g, float b, float a) : c1(r), c2(g), c3(b), alpha(a) {}
  constexpr VortoColor(Type t, float first, float second, float third, float a)
      : type(t), c1(first), c2(second), c3(third), alpha(a) {}

  // The conversions. Hexcone models after Smith (1978) and Foley and van Dam; YIQ and YUV after the NTSC and PAL
  // encoding equations. Three of them are not the textbook's:
  //  - HSLtoRGB computes blue with the upper bound on both ends, so blue always equals that bound: HSL (0, 1, 0.5) is
  //    RGB (1, 0, 1).
  //  - RGBtoHWB offsets the hue of colors whose smallest component is red by 2 and not by 3, so these do not come back.
  //  - HSVtoRGB with a hue of exactly 360, and HWBtoRGB with a hue outside 0 to 420, leave the outputs unwritten (as
  //    both do for a hue that is NaN).
  static void RGBtoHSL(float r, float g, float b, float* h, float* s, float* l);
  static void HSLtoRGB(float h, float s, float l, float* r, float* g, float* b);
  static void RGBtoHSV(float r, float g, float b, float* h, float* s, float* v);
  static void HSVtoRGB(float h, float s, float v, float* r, float* g, float* b);
  static void RGBtoHWB(float r, float g, float b, float* h, float* whiteness, float* blackness);
  static void HWBtoRGB(float h, float whiteness, float blackness, float* r, float* g, float* b);
  static void RGBtoYIQ(float r, float g, float b, float* y, float* i, float* q);
  static void YIQtoRGB(float y, float i, float q, float* r, float* g, float* b);
  static void RGBtoYUV(float r, float g, float b, float* y, float* u, float* v);
  static void YUVtoRGB(float y, float u, float v, float* r, float* g, float* b);
  static void RGBtoCLU(float r, float g, float b, float* c, float* l, float* u);
  static void CLUtoRGB(float c, float l, float u, float* r, float* g, float* b);

  // The hue in 0 to 360 degrees; exactly 360 stays 360, NaN and infinities give NaN.
  static float clampHue(float hue);

  // Change the model in place, through RGB: also a color that is of the model already, which so becomes what comes back
  // of RGB (HSL (0, 1, 0.5) becomes (300, 1, 0.5)). Where a conversion leaves its outputs unwritten, the components
  // stay as they are under the new model.
  void convertToRGB();
  void convertToHSL();
  void convertToHSV();
  void convertToHWB();
  void convertToYIQ();
  void convertToYUV();
  void convertToCLU();
  void convert(Type t);  // the same, but nothing for the type that the color has

  // The color in RGB; the object is not changed.
  float getRed() const;
  float getGreen() const;
  float getBlue() const;
  void getRGBA(float* r, float* g, float* b, float* a) const;

  // On all three components whatever the model; dividing by 0 does nothing.
  VortoColor& add(float x);
  VortoColor& sub(float x);
  VortoColor& mul(float x);
  VortoColor& div(float x);

  // On the components that carry light: all three of RGB, YIQ and YUV, lightness of HSL, value of HSV, whiteness alone
  // of HWB, C of CLU. Dividing by 0 does nothing.
  VortoColor& operator+=(float x);
  VortoColor& operator-=(float x);
  VortoColor& operator*=(float x);
  VortoColor& operator/=(float x);

  // Add and subtract a color after converting it to this color's model. A gray in HSL or HSV takes on only the other's
  // lightness or value, a gray in HWB only its whiteness and blackness. An HSV color added to an HWB one is taken as
  // HSL. Alpha stays, nothing is clamped or wrapped.
  VortoColor& operator+=(const VortoColor& o);
  VortoColor& operator-=(const VortoColor& o);

  // Each component becomes (1 - t) of its own and t of the other's; both colors should be of one model. Alpha stays.
  VortoColor& mix(const VortoColor& o, float t);

  // Clamps, then takes each component from 1, whatever the model. Alpha is only clamped.
  VortoColor& invert();

  // Brings alpha and the components into their ranges; hues are wrapped, and set to 0 where the color is a gray. The L
  // and U of CLU have no limits.
  VortoColor& clamp();

  // All three components and alpha within 0.00001, after conversion to this color's model.
  bool operator==(const VortoColor& o) const;
  bool operator!=(const VortoColor& o) const;

  // Whether any one component is closer than the tolerance, after conversion to this color's model. Alpha is not
  // looked at.
  bool colorCompare(const VortoColor& o, float tolerance) const;
};
