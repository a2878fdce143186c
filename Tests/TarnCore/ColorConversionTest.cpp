// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCColor.h"

#include <cfloat>

namespace {

using Floats = std::array<float, 3>;
using Triple = std::array<double, 3>;
using Conversion = void (*)(float, float, float, float*, float*, float*);

Floats converted(Conversion conversion, double a, double b, double c) {
  Floats out = {-77, -77, -77};
  conversion(static_cast<float>(a), static_cast<float>(b), static_cast<float>(c), &out[0], &out[1], &out[2]);
  return out;
}

std::vector<double> steps(double low, double high, int count) {
  std::vector<double> values;
  for (int i = 0; i <= count; ++i) values.push_back(low + (high - low) * i / count);
  return values;
}
const std::vector<double> unit = steps(0, 1, 24);

// Holds a conversion against an oracle in double precision on a grid.
template <class Oracle>
void expectOnGrid(Conversion conversion, const std::vector<double>& first, const std::vector<double>& others,
                  double tolerance, Oracle oracle) {
  for (std::size_t i = 0; i < first.size() * others.size() * others.size() * 3; ++i) {
    const double a = first[i / 3 / others.size() / others.size()];
    const double b = others[i / 3 / others.size() % others.size()], c = others[i / 3 % others.size()];
    const Triple expected = oracle(static_cast<float>(a), static_cast<float>(b), static_cast<float>(c));
    ASSERT_NEAR(converted(conversion, a, b, c)[i % 3], expected[i % 3], tolerance) << a << ", " << b << ", " << c;
  }
}

// The hue by sextants of the hexagon.
double hueOf(double r, double g, double b) {
  const auto [min, max] = std::minmax({r, g, b});
  if (max == min) return 0;
  if (r == max) return 60 * (g - b) / (max - min) + (g < b ? 360 : 0);
  return g == max ? 120 + 60 * (b - r) / (max - min) : 240 + 60 * (r - g) / (max - min);
}

// The channels of the hexcone as trapezoids around their peaks, in degrees from red.
Triple hexcone(double hue, double low, double high) {
  const auto channel = [=](double peak) {
    const double distance = std::fabs(std::remainder(hue - peak, 360));
    return low + (high - low) * std::clamp((120 - distance) / 60, 0.0, 1.0);
  };
  return {channel(0), channel(120), channel(240)};
}

// Hues in HWB run the hexagon as in HSV, but where red is the smallest component the offset is 2 and not 3.
TEST(ColorConversion, FromRGB) {
  expectOnGrid(VortoColor::RGBtoHSL, unit, unit, 3e-4, [](double r, double g, double b) {
    const auto [min, max] = std::minmax({r, g, b});
    const double l = (max + min) / 2, s = max == min ? 0 : (max - min) / (1 - std::fabs(2 * l - 1));
    return Triple{std::fmod(hueOf(r, g, b), 360), s, l};
  });
  expectOnGrid(VortoColor::RGBtoHSV, unit, unit, 3e-4, [](double r, double g, double b) {
    const auto [min, max] = std::minmax({r, g, b});
    return Triple{std::fmod(hueOf(r, g, b), 360), max == 0 ? 0 : (max - min) / max, max};
  });
  expectOnGrid(VortoColor::RGBtoHWB, unit, unit, 3e-4, [](double r, double g, double b) {
    const auto [min, max] = std::minmax({r, g, b});
    double hue = hueOf(r, g, b);
    if (max != min && r == min) hue -= 60;
    if (max != min && r != min && g == min && hue == 0) hue = 360;  // pure red is reached from magenta
    return Triple{hue, min, 1 - max};
  });
  EXPECT_EQ(converted(VortoColor::RGBtoHWB, 0, 1, 1), (Floats{120, 0, 0}));
}

// Of HSL, blue always lies at the upper bound.
TEST(ColorConversion, ToRGB) {
  expectOnGrid(VortoColor::HSLtoRGB, steps(0, 360, 720), unit, 1e-5, [](double h, double s, double l) {
    if (s == 0) return Triple{l, l, l};
    const double chroma = (1 - std::fabs(2 * l - 1)) * s, low = l - chroma / 2, high = l + chroma / 2;
    const Triple color = hexcone(h, low, high);
    return Triple{color[0], color[1], high};
  });
  expectOnGrid(VortoColor::HSVtoRGB, steps(-700, 700, 1000), unit, 1e-4,
               [](double h, double s, double v) { return hexcone(h, v - v * s, v); });
  expectOnGrid(VortoColor::HWBtoRGB, steps(0, 359.5, 719), unit, 1e-4, [](double h, double w, double blackness) {
    const double v = 1 - blackness;
    return std::fabs(v - w) < 1e-6 ? Triple{v, v, v} : hexcone(h, w, v);
  });
  EXPECT_EQ(converted(VortoColor::HSLtoRGB, 0, 1, 0.5), (Floats{1, 0, 1}));
  EXPECT_EQ(converted(VortoColor::HSVtoRGB, 0, 3, 1), converted(VortoColor::HSVtoRGB, 0, 1, 1)) << "s is at most 1";
}

// As matrices, in double precision.
TEST(ColorConversion, LinearModels) {
  constexpr double c = 0.577 * 0.577, d = 0.999364;
  const struct {
    Conversion conversion;
    double m[3][3];
  } models[] = {
      {VortoColor::RGBtoYIQ, {{0.299, 0.587, 0.114}, {0.596, -0.274, -0.322}, {0.212, -0.523, 0.311}}},
      {VortoColor::YIQtoRGB, {{1, 0.956, 0.621}, {1, -0.272, -0.647}, {1, -1.105, 1.702}}},
      {VortoColor::RGBtoYUV, {{0.299, 0.587, 0.114}, {-0.147, -0.289, 0.436}, {0.615, -0.515, -0.1}}},
      {VortoColor::YUVtoRGB, {{1, 0, 1.14}, {1, -0.396, -0.581}, {1, 2.029, 0}}},
      {VortoColor::RGBtoCLU, {{c, c, c}, {-0.707, 0.707, 0}, {-0.408, -0.408, 0.816}}},
      {VortoColor::CLUtoRGB, {{d, -0.707, -0.408}, {d, 0.707, -0.408}, {d, 0, 0.816}}},
  };
  for (const auto& model : models) {
    expectOnGrid(model.conversion, steps(-1, 1, 24), steps(-1, 1, 24), 5e-7, [&](double x, double y, double z) {
      Triple out;
      for (int i = 0; i < 3; ++i) out[i] = model.m[i][0] * x + model.m[i][1] * y + model.m[i][2] * z;
      return out;
    });
  }
}

TEST(ColorConversion, LeavesOutputsUnwrittenWhereNoSextantIsMeant) {
  const Floats untouched = {-77, -77, -77};
  const double nan = std::nan(""), infinity = std::numeric_limits<double>::infinity();
  for (const double hue : {360.0, 720.0, nan, infinity, -infinity})
    EXPECT_EQ(converted(VortoColor::HSVtoRGB, hue, 1, 1), untouched) << hue;
  for (const double hue : {420.0, 1e9, 1e30, -1.0, -1e30, nan, infinity, -infinity})
    EXPECT_EQ(converted(VortoColor::HWBtoRGB, hue, 0, 0), untouched) << hue;
  EXPECT_EQ(converted(VortoColor::HWBtoRGB, 360, 0, 0), (Floats{1, 0, 0}));

  VortoColor color(VortoColor::HSV, 360, 0.5f, 0.25f, 1);
  color.convertToRGB();
  EXPECT_EQ(color.type, VortoColor::RGB);
  EXPECT_EQ((Floats{color.c1, color.c2, color.c3}), (Floats{360, 0.5f, 0.25f}));
}

TEST(ColorConversion, ClampHueWrapsAndEnds) {
  const float cases[][2] = {{725, 5},           {-30, 330}, {360, 360},  {0, 0},  {7200.5f, 0.5f},
                            {-7200.5f, 359.5f}, {720, 360}, {3600, 360}, {361, 1}};
  for (const auto& [hue, expected] : cases) EXPECT_EQ(VortoColor::clampHue(hue), expected) << hue;
  for (const float hue : {FLT_MAX, -FLT_MAX, 1e20f, -3e9f}) {
    const float wrapped = VortoColor::clampHue(hue);
    EXPECT_TRUE(wrapped >= 0 && wrapped <= 360) << hue;
  }
  for (const float hue : {INFINITY, -INFINITY, NAN}) EXPECT_TRUE(std::isnan(VortoColor::clampHue(hue)));
}

}  // namespace
