// SPDX-License-Identifier: BSD-3-Clause
#include "Ports/VRTObjects.h"
#include "Tests/Effects/Harness.h"

namespace {

const PropertyList threeColors =
    linearGradient({{0, 0.1, 0, 0.3}, {0.4, 0.9, 0.2, 0.1}, {1, 1, 0.95, 0.6}}, {{0, 0.5}, {0.8, 1}});

ConstBitmap mapped(const Bitmap& image, const PropertyList& gradient) {
  return rendered(*effectNamed("Gradient Map", {{"inputImage", image}, {"inputGradient", gradient}}));
}

double straightLuma(const Values& in) {
  return (0.2126 * in[0] + 0.7152 * in[1] + 0.0722 * in[2]) / in[3];
}

// What a pixel of that alpha becomes under a straight color of the gradient (alpha, red, green, blue), all in the
// layout's units.
Values laid(const Layout& layout, const Values& argb, double alpha) {
  const auto stored = [&](double value) { return layout.code == 9 ? value : std::floor(value + 0.5); };
  const double coverage = stored(argb[0] * alpha / layout.full);
  return {stored(argb[1] * coverage / layout.full), stored(argb[2] * coverage / layout.full),
          stored(argb[3] * coverage / layout.full), coverage};
}

// The segments of threeColors written out: alpha, red, green, blue in the layout's units.
Values threeColorsAt(double position, double full) {
  const double p = std::fmin(std::fmax(position, 0), 1);
  const auto color = [p](double atStart, double atMiddle, double atEnd) {
    return p <= 0.4 ? std::lerp(atStart, atMiddle, p / 0.4) : std::lerp(atMiddle, atEnd, (p - 0.4) / 0.6);
  };
  return {std::lerp(0.5, 1, std::fmin(p / 0.8, 1)) * full, color(0.1, 0.9, 1) * full, color(0, 0.2, 0.95) * full,
          color(0.3, 0.1, 0.6) * full};
}

TEST(GradientMap, TakesTheEightBitTableAtTheLuma) {
  VRTGradient gradient;
  ASSERT_TRUE(gradient.initWithStateValue(threeColors));
  std::vector<std::uint8_t> table(256 * 4);
  gradient.getGradient8(table.data(), 256);
  for (const Layout& layout : {layouts[0], layouts[1]}) {
    const Bitmap image = randomImage(layout, 128, 128, Noise::Premultiplied, 21);
    const ConstBitmap out = mapped(image, threeColors);
    const auto before = pixelsOf(*image, layout), after = pixelsOf(*out, layout);
    for (std::size_t i = 0; i < before.size(); ++i) {
      const Values &in = before[i], &got = after[i];
      // The effect's weights are rounded to 16 bits: a luma that lies that near to a half may go either way.
      const double luma = in[3] == 0 ? 0 : straightLuma(in) * 255;
      const auto entryAt = [&](double place) {
        const std::uint8_t* entry = &table[4 * static_cast<std::size_t>(std::floor(std::fmax(place, 0) + 0.5))];
        return laid(layout, {double(entry[0]), double(entry[1]), double(entry[2]), double(entry[3])}, in[3]);
      };
      ASSERT_TRUE(got == entryAt(luma - 0.003) || got == entryAt(std::fmin(luma + 0.003, 255)))
          << layout.name << " pixel " << i << " of luma " << luma;
    }
  }
}

TEST(GradientMap, AboveEightBitsFollowsTheGradientItself) {
  for (const Layout& layout : {layouts[2], layouts[3]}) {
    const Bitmap image = randomImage(layout, 97, 41, Noise::Premultiplied, 22);
    const ConstBitmap out = mapped(image, threeColors);
    // 16 bits: the luma's rounding moves a color by one step, the roundings of color and alpha by one more.
    const double tolerance = layout.code == 9 ? 4e-5 : 3;
    expectPixels(out, layout, tolerance, [&](std::size_t x, std::size_t y) {
      const Values in = pixelAt(*image, layout, x, y);
      return in[3] == 0 ? Values{} : laid(layout, threeColorsAt(straightLuma(in), layout.full), in[3]);
    });
  }
}

TEST(GradientMap, SixteenBitsTellApartWhatEightCannot) {
  const Layout& layout = layouts[2];
  double next = -1;
  const Bitmap image = makeImage(layout, 65536, 1, [&] {
    ++next;
    return Values{next, next, next, 65535};
  });
  const ConstBitmap out = mapped(image, linearGradient({{0, 0, 0, 0}, {1, 1, 1, 1}}, {{0, 1}}));
  EXPECT_EQ(pixelBytes(*out), pixelBytes(*image));  // black to white is the identity on greys
  EXPECT_EQ(pixelBytes(*rendered(*effectNamed("Gradient Map", {{"inputImage", image}}))), pixelBytes(*image))
      << "and what a new effect does";
}

TEST(GradientMap, FloatsOutsideTheRangeTakeTheEnds) {
  const Layout& layout = layouts[3];
  const float inf = std::numeric_limits<float>::infinity();
  const double values[] = {-3, 0, 1, 7, inf, -inf, std::nan("")};
  const bool last[] = {false, false, true, true, true, false, false};
  const PropertyList gradient = linearGradient({{0, 0.25, 0.25, 0.25}, {1, 0.75, 0.75, 0.75}}, {{0, 1}});
  for (std::size_t i = 0; i < std::size(values); ++i) {
    const Bitmap image = makeImage(layout, 1, 1, {values[i], values[i], values[i], 1});
    EXPECT_NEAR(pixelAt(*mapped(image, gradient), layout, 0, 0)[0], last[i] ? 0.75 : 0.25, 1e-6) << values[i];
  }
}

}  // namespace
