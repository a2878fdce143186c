// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPatch.h"
#include "Tests/Effects/Harness.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

ConstBitmap blended(const std::string& mode, const Bitmap& background, const Bitmap& foreground) {
  const auto patch = effectNamed(mode);
  setImage(*patch, "inputBackgroundImage", background);
  setImage(*patch, "inputForegroundImage", foreground);
  return rendered(*patch);
}

// The formulas on values of 0 to 1, of one channel.
double over(double b, double f, double, double foregroundAlpha) {
  return f + b * (1 - foregroundAlpha);
}

double multiply(double b, double f, double backgroundAlpha, double foregroundAlpha) {
  return f * b + f * (1 - backgroundAlpha) + b * (1 - foregroundAlpha);
}

using Formula = double (*)(double, double, double, double);
const std::pair<const char*, Formula> modes[] = {{"Over", over}, {"Multiply", multiply}};

TEST(BlendModes, FollowTheirFormulas) {
  for (const auto& [mode, formula] : modes) {
    for (const Layout& layout : layouts) {
      const Bitmap background = randomImage(layout, 255, 64, Noise::Premultiplied, 31);
      const Bitmap foreground = randomImage(layout, 255, 64, Noise::Premultiplied, 32);
      const ConstBitmap out = blended(mode, background, foreground);
      const auto under = pixelsOf(*background, layout), above = pixelsOf(*foreground, layout);
      const auto results = pixelsOf(*out, layout);
      for (std::size_t i = 0; i < results.size(); ++i) {
        const Values &b = under[i], &f = above[i], &got = results[i];
        for (int c = 0; c < 4; ++c) {
          const double full = layout.full;
          const double exact = formula(b[c] / full, f[c] / full, b[3] / full, f[3] / full) * full;
          // Integers round to the nearest: within half a step, and within the range.
          ASSERT_NEAR(got[c], exact, layout.code == 9 ? 1e-6 : 0.5 + 1e-6) << mode << " " << layout.name << " " << i;
          if (layout.code != 9) {
            ASSERT_LE(got[c], got[3]) << "premultiplied no more";
          }
        }
      }
    }
  }
}

TEST(BlendModes, CoveringAndEmptyForegroundsAreExact) {
  for (const Layout& layout : layouts) {
    const Bitmap background = randomImage(layout, 50, 9, Noise::Premultiplied, 33);
    const Bitmap empty = makeImage(layout, 50, 9);
    for (const char* mode : {"Over", "Multiply"}) {
      EXPECT_EQ(pixelBytes(*blended(mode, background, empty)), pixelBytes(*background)) << mode << " " << layout.name;
    }
    const Bitmap white = makeImage(layout, 50, 9, {layout.full, layout.full, layout.full, layout.full});
    EXPECT_EQ(pixelBytes(*blended("Over", background, white)), pixelBytes(*white)) << layout.name;
    const Bitmap opaque = randomImage(layout, 50, 9, Noise::Premultiplied, 34);
    opaque->setConstantAlpha(1);
    EXPECT_EQ(pixelBytes(*blended("Multiply", opaque, white)), pixelBytes(*opaque)) << layout.name;
  }
}

TEST(BlendModes, TheForegroundLiesAtTheUpperLeftOfTheBackground) {
  const Layout& layout = layouts[0];
  const Bitmap background = randomImage(layout, 6, 5, Noise::Premultiplied, 35);
  for (const auto& [width, height] : {std::pair{3U, 2U}, {9U, 2U}, {3U, 8U}, {9U, 8U}}) {
    const Bitmap foreground = randomImage(layout, width, height, Noise::Premultiplied, 36);
    foreground->setConstantAlpha(1);
    const ConstBitmap out = blended("Over", background, foreground);
    ASSERT_EQ(out->width, 6U);
    ASSERT_EQ(out->height, 5U);
    for (std::size_t y = 0; y < 5; ++y) {
      for (std::size_t x = 0; x < 6; ++x) {
        const Bitmap& shown = x < width && y < height ? foreground : background;
        EXPECT_EQ(pixelAt(*out, layout, x, y), pixelAt(*shown, layout, x, y)) << x << ", " << y;
      }
    }
  }
}

}  // namespace
