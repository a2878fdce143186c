// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Effects/Harness.h"

namespace {

ConstBitmap blended(const char* mode, const Bitmap& background, const Bitmap& foreground, double opacity = 1) {
  return rendered(*effectNamed(
      mode, {{"inputBackgroundImage", background}, {"inputForegroundImage", foreground}, {"inputOpacity", opacity}}));
}

// The recommendation's functions of straight colors from 0 to 1.
using Straight = std::array<double, 3>;

double hardLight(double b, double f) {
  return f <= 0.5 ? 2 * f * b : 1 - 2 * (1 - f) * (1 - b);
}

double dodge(double b, double f) {
  return b == 0 ? 0 : f == 1 ? 1 : std::min(1.0, b / (1 - f));
}

double burn(double b, double f) {
  return b == 1 ? 1 : f == 0 ? 0 : 1 - std::min(1.0, (1 - b) / f);
}

double softLight(double b, double f) {
  const double d = b <= 0.25 ? ((16 * b - 12) * b + 4) * b : std::sqrt(b);
  return f <= 0.5 ? b - (1 - 2 * f) * b * (1 - b) : b + (2 * f - 1) * (d - b);
}

double lum(const Straight& c) {
  return 0.3 * c[0] + 0.59 * c[1] + 0.11 * c[2];
}

double sat(const Straight& c) {
  return *std::max_element(c.begin(), c.end()) - *std::min_element(c.begin(), c.end());
}

Straight setLum(Straight c, double l) {
  const double d = l - lum(c);
  for (double& each : c) each += d;
  const double least = *std::min_element(c.begin(), c.end()), most = *std::max_element(c.begin(), c.end());
  for (double& each : c) {
    if (least < -1e-12) each = l + (each - l) * l / (l - least);
    if (most > 1 + 1e-12) each = l + (each - l) * (1 - l) / (most - l);
  }
  return c;
}

Straight setSat(Straight c, double s) {
  const double least = *std::min_element(c.begin(), c.end()), range = sat(c);
  for (double& each : c) each = range > 0 ? (each - least) / range * s : 0;
  return c;
}

enum class Form { Over, Plus, Exact, Near };  // no function; the result is rounded once; within one unit

struct Mode {
  const char* name;
  Form form;
  double (*component)(double b, double f);
  Straight (*color)(const Straight& b, const Straight& f);  // where components depend on each other
};
const Mode modes[] = {
    {"Over", Form::Over, nullptr, nullptr},
    {"Plus", Form::Plus, nullptr, nullptr},
    {"Multiply", Form::Exact, [](double b, double f) { return b * f; }, nullptr},
    {"Screen", Form::Exact, [](double b, double f) { return b + f - b * f; }, nullptr},
    {"Overlay", Form::Exact, [](double b, double f) { return hardLight(f, b); }, nullptr},
    {"Darken", Form::Exact, [](double b, double f) { return std::min(b, f); }, nullptr},
    {"Lighten", Form::Exact, [](double b, double f) { return std::max(b, f); }, nullptr},
    {"Color Dodge", Form::Near, dodge, nullptr},
    {"Color Burn", Form::Near, burn, nullptr},
    {"Hard Light", Form::Exact, hardLight, nullptr},
    {"Soft Light", Form::Near, softLight, nullptr},
    {"Difference", Form::Exact, [](double b, double f) { return std::abs(b - f); }, nullptr},
    {"Exclusion", Form::Exact, [](double b, double f) { return b + f - 2 * b * f; }, nullptr},
    {"Hue", Form::Near, nullptr, [](auto& b, auto& f) { return setLum(setSat(f, sat(b)), lum(b)); }},
    {"Saturation", Form::Near, nullptr, [](auto& b, auto& f) { return setLum(setSat(b, sat(f)), lum(b)); }},
    {"Color", Form::Near, nullptr, [](auto& b, auto& f) { return setLum(f, lum(b)); }},
    {"Luminosity", Form::Near, nullptr, [](auto& b, auto& f) { return setLum(b, lum(f)); }},
};

Straight straight(const Values& v) {
  return v[3] == 0 ? Straight{} : Straight{v[0] / v[3], v[1] / v[3], v[2] / v[3]};
}

// A pixel of premultiplied values from 0 to 1, by the recommendation's formula.
Values naive(const Mode& mode, const Values& b, const Values& f) {
  Values out{};
  Straight mixed = straight(f);
  if (mode.component) {
    for (int c = 0; c < 3; ++c) mixed[c] = mode.component(straight(b)[c], straight(f)[c]);
  }
  if (mode.color) mixed = mode.color(straight(b), straight(f));
  for (int c = 0; c < 3; ++c) out[c] = f[c] * (1 - b[3]) + b[c] * (1 - f[3]) + f[3] * b[3] * mixed[c];
  out[3] = f[3] + b[3] - f[3] * b[3];
  for (int c = 0; c < 4 && mode.form == Form::Plus; ++c) out[c] = f[c] + b[c];
  return out;
}

TEST(BlendModes, FollowTheirFormulas) {
  for (const Mode& mode : modes) {
    for (const Layout& layout : layouts) {
      SCOPED_TRACE(mode.name);
      const bool isFloat = layout.code == 9;
      const Bitmap background = randomImage(layout, 255, 64, Noise::Premultiplied, 31);
      const Bitmap foreground = randomImage(layout, 255, 64, Noise::Premultiplied, 32);
      EXPECT_EQ(pixelBytes(*blended(mode.name, background, makeImage(layout, 255, 64))), pixelBytes(*background));
      const ConstBitmap out = blended(mode.name, background, foreground);
      const double tolerance = isFloat ? 2e-6 : mode.form == Form::Near ? 0.53 : 0.5 + 1e-6;
      expectPixels(out, layout, tolerance, [&](std::size_t x, std::size_t y) {
        Values b = pixelAt(*background, layout, x, y), f = pixelAt(*foreground, layout, x, y);
        for (int c = 0; c < 4; ++c) b[c] /= layout.full, f[c] /= layout.full;
        Values wanted = naive(mode, b, f);
        for (double& each : wanted) each = (isFloat ? each : std::min(each, 1.0)) * layout.full;
        return wanted;
      });
      for (const Values& got : pixelsOf(*out, layout)) {
        ASSERT_TRUE(isFloat || got[3] == *std::max_element(got.begin(), got.end())) << "premultiplied no more";
      }
    }
  }
}

TEST(BlendModes, OpacityScalesTheForegroundFirst) {
  for (const Mode& mode : modes) {
    for (const Layout& layout : layouts) {
      SCOPED_TRACE(std::string(mode.name) + " " + layout.name);
      const Bitmap background = randomImage(layout, 67, 5, Noise::Premultiplied, 37);
      const Bitmap foreground = randomImage(layout, 67, 5, Noise::Premultiplied, 38);
      const auto whole = pixelBytes(*blended(mode.name, background, foreground));
      for (const double all : {2.0, std::nan("")}) {
        EXPECT_EQ(pixelBytes(*blended(mode.name, background, foreground, all)), whole);
      }
      for (const double none : {0.0, -1.0}) {
        EXPECT_EQ(pixelBytes(*blended(mode.name, background, foreground, none)), pixelBytes(*background));
      }
      std::size_t at = 0;
      const Bitmap faded = makeImage(layout, 67, 5, [&] {
        Values values = pixelAt(*foreground, layout, at++, 0);
        for (double& value : values) value = layout.code == 9 ? value * 0.375 : std::floor(value * 0.375 + 0.5);
        return values;
      });
      EXPECT_EQ(pixelBytes(*blended(mode.name, background, foreground, 0.375)),
                pixelBytes(*blended(mode.name, background, faded)));
    }
  }
}

TEST(BlendModes, CoveringForegroundsAreExact) {
  for (const Layout& layout : layouts) {
    const Bitmap white = makeImage(layout, 50, 9, {layout.full, layout.full, layout.full, layout.full});
    const Bitmap background = randomImage(layout, 50, 9, Noise::Premultiplied, 33);
    EXPECT_EQ(pixelBytes(*blended("Over", background, white)), pixelBytes(*white)) << layout.name;
    background->setConstantAlpha(1);
    EXPECT_EQ(pixelBytes(*blended("Multiply", background, white)), pixelBytes(*background)) << layout.name;
    EXPECT_EQ(pixelBytes(*blended("Screen", background, white)), pixelBytes(*white)) << layout.name;
  }
}

TEST(BlendModes, TheForegroundLiesAtTheUpperLeftOfTheBackground) {
  const Layout& layout = layouts[0];
  const Bitmap background = randomImage(layout, 6, 5, Noise::Premultiplied, 35);
  for (const auto& [width, height] : {std::pair{3U, 2U}, {9U, 2U}, {3U, 8U}, {9U, 8U}}) {
    const Bitmap foreground = randomImage(layout, width, height, Noise::Premultiplied, 36);
    foreground->setConstantAlpha(1);
    const ConstBitmap out = blended("Over", background, foreground);
    ASSERT_EQ(std::pair(out->width, out->height), std::pair(6U, 5U));
    expectPixels(out, layout, 0, [&, right = width, bottom = height](std::size_t x, std::size_t y) {
      return pixelAt(x < right && y < bottom ? *foreground : *background, layout, x, y);
    });
  }
}

}  // namespace
