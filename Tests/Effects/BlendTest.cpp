// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Effects/Harness.h"

namespace {

ConstBitmap blended(const char* mode, const Bitmap& background, const Bitmap& foreground) {
  return rendered(*effectNamed(mode, {{"inputBackgroundImage", background}, {"inputForegroundImage", foreground}}));
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
      EXPECT_EQ(pixelBytes(*blended(mode, background, makeImage(layout, 255, 64))), pixelBytes(*background));
      const ConstBitmap out = blended(mode, background, foreground);
      // Integers round to the nearest: within half a step, and within the range.
      expectPixels(out, layout, layout.code == 9 ? 1e-6 : 0.5 + 1e-6, [&](std::size_t x, std::size_t y) {
        const Values b = pixelAt(*background, layout, x, y), f = pixelAt(*foreground, layout, x, y);
        const double full = layout.full;
        Values exact;
        for (int c = 0; c < 4; ++c) exact[c] = formula(b[c] / full, f[c] / full, b[3] / full, f[3] / full) * full;
        return exact;
      });
      for (const Values& got : pixelsOf(*out, layout)) {
        ASSERT_TRUE(layout.code == 9 || got[3] == *std::max_element(got.begin(), got.end())) << "premultiplied no more";
      }
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
