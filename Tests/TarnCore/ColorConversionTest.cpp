// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCColor.h"

#include <cfloat>

namespace {

using Triple = std::array<double, 3>;
using Conversion = void (*)(float, float, float, float*, float*, float*);

std::array<float, 3> converted(Conversion conversion, double a, double b, double c) {
  std::array<float, 3> out = {-77, -77, -77};
  conversion(static_cast<float>(a), static_cast<float>(b), static_cast<float>(c), &out[0], &out[1], &out[2]);
  return out;
}

std::vector<double> steps(double low, double high, int count) {
  std::vector<double> values;
  for (int i = 0; i <= count; ++i) values.push_back(low + (high - low) * i / count);
  return values;
}

// Holds a conversion against an oracle in double precision on a grid.
template <class Oracle>
void expectOnGrid(Conversion conversion, const std::vector<double>& first, const std::vector<double>& others,
                  double tolerance, Oracle oracle) {
  for (const double a : first) {
    for (const double b : others) {
      for (const double c : others) {
        const Triple expected = oracle(static_cast<float>(a), static_cast<float>(b), static_cast<float>(c));
        const auto actual = converted(conversion, a, b, c);
        for (int i = 0; i < 3; ++i)
          ASSERT_NEAR(actual[i], expected[i], tolerance) << "component " << i << " of " << a << ", " << b << ", " << c;
      }
    }
  }
}

const std::vector<double> unit = steps(0, 1, 24);
const std::vector<double> hues = steps(-700, 700, 1000);

// The hue by the angle of the projection onto the hexagon, worked out sextant by sextant from the order of components.
double hueOf(double r, double g, double b) {
  const double max = std::max({r, g, b}), min = std::min({r, g, b});
  if (max == min) return 0;
  const auto part = [&](double middle) { return 60 * (middle - min) / (max - min); };
  if (r == max && b == min) return part(g);
  if (g == max && b == min) return 120 - part(r);
  if (g == max && r == min) return 120 + part(b);
  if (b == max && r == min) return 240 - part(g);
  if (b == max && g == min) return 240 + part(r);
  return 360 - part(b);
}

// One channel of the hexcone as a trapezoid around its peak, in degrees from red.
double trapezoid(double hue, double low, double high) {
  const double distance = std::fabs(std::remainder(hue, 360));
  return low + (high - low) * std::clamp((120 - distance) / 60, 0.0, 1.0);
}

TEST(ColorConversion, RGBtoHSLAndHSV) {
  expectOnGrid(VortoColor::RGBtoHSL, unit, unit, 3e-4, [](double r, double g, double b) {
    const double max = std::max({r, g, b}), min = std::min({r, g, b}), l = (max + min) / 2;
    const double s = max == min ? 0 : (max - min) / (1 - std::fabs(2 * l - 1));
    return Triple{std::fmod(hueOf(r, g, b), 360), s, l};
  });
  expectOnGrid(VortoColor::RGBtoHSV, unit, unit, 3e-4, [](double r, double g, double b) {
    const double max = std::max({r, g, b}), min = std::min({r, g, b});
    return Triple{std::fmod(hueOf(r, g, b), 360), max == 0 ? 0 : (max - min) / max, max};
  });
}

TEST(ColorConversion, HSLtoRGBHasBlueAtTheUpperBound) {
  expectOnGrid(VortoColor::HSLtoRGB, steps(0, 360, 720), unit, 1e-5, [](double h, double s, double l) {
    if (s == 0) return Triple{l, l, l};
    const double chroma = (1 - std::fabs(2 * l - 1)) * s;
    const double low = l - chroma / 2, high = l + chroma / 2;
    return Triple{trapezoid(h, low, high), trapezoid(h - 120, low, high), high};
  });
  EXPECT_EQ(converted(VortoColor::HSLtoRGB, 0, 1, 0.5), (std::array<float, 3>{1, 0, 1}));
}

TEST(ColorConversion, HSVtoRGB) {
  expectOnGrid(VortoColor::HSVtoRGB, hues, unit, 1e-4, [](double h, double s, double v) {
    const double low = v - v * s;
    return Triple{trapezoid(h, low, v), trapezoid(h - 120, low, v), trapezoid(h - 240, low, v)};
  });
  EXPECT_EQ(converted(VortoColor::HSVtoRGB, 0, 3, 1), converted(VortoColor::HSVtoRGB, 0, 1, 1)) << "s is at most 1";
}

// Hues in HWB run the hexagon as in HSV, but where red is the smallest component the offset is 2 and not 3.
TEST(ColorConversion, RGBtoHWB) {
  expectOnGrid(VortoColor::RGBtoHWB, unit, unit, 3e-4, [](double r, double g, double b) {
    const double max = std::max({r, g, b}), min = std::min({r, g, b});
    double hue = hueOf(r, g, b);
    if (max != min && r == min) hue -= 60;
    if (max != min && r != min && g == min && hue == 0) hue = 360;  // pure red is reached from magenta
    return Triple{hue, min, 1 - max};
  });
  EXPECT_EQ(converted(VortoColor::RGBtoHWB, 0, 1, 1), (std::array<float, 3>{120, 0, 0}));
}

TEST(ColorConversion, HWBtoRGB) {
  expectOnGrid(VortoColor::HWBtoRGB, steps(0, 359.5, 719), unit, 1e-4, [](double h, double w, double blackness) {
    const double v = 1 - blackness;
    if (std::fabs(v - w) < 1e-6) return Triple{v, v, v};
    return Triple{trapezoid(h, w, v), trapezoid(h - 120, w, v), trapezoid(h - 240, w, v)};
  });
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
  const std::array<float, 3> untouched = {-77, -77, -77};
  const double nan = std::nan(""), infinity = std::numeric_limits<double>::infinity();
  for (const double hue : {360.0, 720.0, nan, infinity, -infinity})
    EXPECT_EQ(converted(VortoColor::HSVtoRGB, hue, 1, 1), untouched) << hue;
  for (const double hue : {420.0, 1e9, 1e30, -1.0, -1e30, nan, infinity, -infinity})
    EXPECT_EQ(converted(VortoColor::HWBtoRGB, hue, 0, 0), untouched) << hue;
  EXPECT_EQ(converted(VortoColor::HWBtoRGB, 360, 0, 0), (std::array<float, 3>{1, 0, 0}));

  VortoColor color(VortoColor::HSV, 360, 0.5f, 0.25f, 1);
  color.convertToRGB();
  EXPECT_EQ(color.type, VortoColor::RGB);
  EXPECT_EQ((std::array<float, 3>{color.c1, color.c2, color.c3}), (std::array<float, 3>{360, 0.5f, 0.25f}));
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
