// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Effects/Harness.h"

namespace {

std::shared_ptr<QCPatch> transition(const std::string& name, const ConstBitmap& a, const ConstBitmap& b, double time) {
  return effectNamed(name, {{"inputImageA", a}, {"inputImageB", b}, {"inputTime", time}});
}

TEST(Transitions, AreExactlyEitherImageAtTheEnds) {
  for (const char* name : {"Dissolve", "Gradient Wipe"}) {
    for (const Layout& layout : layouts) {
      const Bitmap a = randomImage(layout, 33, 17, Noise::Anything, 41);
      const Bitmap b = randomImage(layout, 33, 17, Noise::Anything, 42);
      for (const double time : {0.0, -0.0, -4.0, std::nan(""), 1.0, 1.5, HUGE_VAL}) {
        const Bitmap& shown = time >= 1 ? b : a;
        EXPECT_EQ(pixelBytes(*rendered(*transition(name, a, b, time))), pixelBytes(*shown)) << name << time;
      }
    }
  }
}

TEST(Transitions, ImageBIsFittedToTheSizeOfImageA) {
  const Layout& layout = layouts[2];
  const Bitmap a = randomImage(layout, 5, 4, Noise::Premultiplied, 43);
  const Bitmap b = randomImage(layout, 8, 2, Noise::Premultiplied, 44);
  const ConstBitmap out = rendered(*transition("Dissolve", a, b, 1));
  ASSERT_EQ(std::pair(out->width, out->height), std::pair(5U, 4U));
  expectPixels(out, layout, 0, [&](auto x, auto y) { return y < 2 ? pixelAt(*b, layout, x, y) : Values{}; });
}

TEST(Dissolve, MixesByTime) {
  for (const Layout& layout : layouts) {
    const Bitmap a = randomImage(layout, 64, 32, Noise::Premultiplied, 45);
    const Bitmap b = randomImage(layout, 64, 32, Noise::Premultiplied, 46);
    for (const double time : {0.125, 0.5, 0.8125}) {  // fractions that a weight holds exactly
      const ConstBitmap out = rendered(*transition("Dissolve", a, b, time));
      expectPixels(out, layout, layout.code == 9 ? 1e-6 : 0, [&, time](std::size_t x, std::size_t y) {
        Values from = pixelAt(*a, layout, x, y);
        const Values to = pixelAt(*b, layout, x, y);
        for (int c = 0; c < 4; ++c) from[c] = from[c] * (1 - time) + to[c] * time;
        for (double& value : from) value = layout.code == 9 ? value : std::floor(value + 0.5);
        return from;
      });
    }
  }
}

// From an image of nothing to one of all, so that the result is the share of the second.
TEST(GradientWipe, RunsAlongItsDirectionWhereTheGradientIsDarkFirst) {
  const double s = std::sqrt(0.5);
  const PropertyList valley = linearGradient({{0, 1, 1, 1}, {0.5, 0, 0, 0}, {1, 1, 1, 1}}, {{0, 0}});
  const struct {
    double angle, dx, dy, softness, time;
    bool isValley;
  } rows[] = {{0, 1, 0, 0.1, 0.5, false},  {0, 1, 0, 0, 0.5, false},    {90, 0, 1, 0, 0.5, false},
              {180, -1, 0, 0, 0.5, false}, {-90, 0, -1, 0, 0.5, false}, {45, s, s, 0, 0.5, false},
              {405, s, s, 0, 0.5, false},  {0, 1, 0, 0, 0.25, true},    {45, s, s, 0.3, 0.7, true}};
  for (const auto& row : rows) {
    for (const Layout& layout : layouts) {
      SCOPED_TRACE("an angle of " + std::to_string(row.angle));
      const Values all{layout.full, layout.full, layout.full, layout.full};
      const auto patch =
          transition("Gradient Wipe", makeImage(layout, 20, 20), makeImage(layout, 20, 20, all), row.time);
      if (row.isValley) set(*patch, "inputGradient", valley);
      if (row.angle != 0) set(*patch, "inputAngle", row.angle);
      if (row.softness != 0.1) set(*patch, "inputSoftness", row.softness);
      const ConstBitmap out = rendered(*patch);
      expectPixels(out, layout, row.softness > 0 ? 0.003 * layout.full : 0, [&](auto x, auto y) {
        const double along = (static_cast<double>(x) - 9.5) * row.dx + (static_cast<double>(y) - 9.5) * row.dy;
        const double place = 0.5 + along / (20 * (std::abs(row.dx) + std::abs(row.dy)));
        const double ahead = row.time * (1 + row.softness) - (row.isValley ? std::abs(2 * place - 1) : place);
        if (row.softness == 0 && std::abs(ahead) < 0.003) return pixelAt(*out, layout, x, y);  // on the edge itself
        const double share = row.softness > 0 ? std::clamp(ahead / row.softness, 0.0, 1.0) : ahead > 0 ? 1.0 : 0.0;
        return Values{share * layout.full, share * layout.full, share * layout.full, share * layout.full};
      });
    }
  }
}

}  // namespace
