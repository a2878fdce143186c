// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPatch.h"
#include "Tests/Effects/Harness.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

std::shared_ptr<QCPatch> transition(const std::string& name, const ConstBitmap& a, const ConstBitmap& b, double time) {
  auto patch = effectNamed(name);
  setImage(*patch, "inputImageA", a);
  setImage(*patch, "inputImageB", b);
  setNumber(*patch, "inputTime", time);
  return patch;
}

// A: every channel 0; B: every channel 1. So the result is the share of B.
std::pair<Bitmap, Bitmap> nothingAndAll(const Layout& layout, std::uint32_t width, std::uint32_t height) {
  return {makeImage(layout, width, height),
          makeImage(layout, width, height, {layout.full, layout.full, layout.full, layout.full})};
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
  ASSERT_EQ(out->width, 5U);
  ASSERT_EQ(out->height, 4U);
  for (std::size_t y = 0; y < 4; ++y) {
    for (std::size_t x = 0; x < 5; ++x) {
      EXPECT_EQ(pixelAt(*out, layout, x, y), y < 2 ? pixelAt(*b, layout, x, y) : Values{}) << x << ", " << y;
    }
  }
}

TEST(Dissolve, MixesByTime) {
  for (const Layout& layout : layouts) {
    const Bitmap a = randomImage(layout, 64, 32, Noise::Premultiplied, 45);
    const Bitmap b = randomImage(layout, 64, 32, Noise::Premultiplied, 46);
    for (const double time : {0.125, 0.5, 0.8125}) {  // fractions that a weight holds exactly
      const auto out = pixelsOf(*rendered(*transition("Dissolve", a, b, time)), layout);
      const auto from = pixelsOf(*a, layout), to = pixelsOf(*b, layout);
      for (std::size_t i = 0; i < 4 * out.size(); ++i) {
        double want = from[i / 4][i % 4] * (1 - time) + to[i / 4][i % 4] * time;
        if (layout.code != 9) want = std::floor(want + 0.5);
        ASSERT_NEAR(out[i / 4][i % 4], want, layout.code == 9 ? 1e-6 : 0) << layout.name;
      }
    }
  }
}

TEST(GradientWipe, RunsFromLeftToRightByDefault) {
  for (const Layout& layout : layouts) {
    const auto [a, b] = nothingAndAll(layout, 100, 3);
    const auto patch = transition("Gradient Wipe", a, b, 0.5);
    const double softness = 0.1;
    const ConstBitmap out = rendered(*patch);
    for (std::size_t x = 0; x < 100; ++x) {
      const double place = (static_cast<double>(x) + 0.5) / 100;
      const double share = std::fmin(std::fmax((0.5 * (1 + softness) - place) / softness, 0), 1);
      EXPECT_NEAR(pixelAt(*out, layout, x, 1)[0] / layout.full, share, 0.003) << layout.name << " " << x;
    }
  }
}

TEST(GradientWipe, AHardEdgeFollowsTheDirection) {
  const Layout& layout = layouts[0];
  const auto [a, b] = nothingAndAll(layout, 20, 20);
  struct Row {
    double angle;
    double dx;
    double dy;
  };
  const double s = std::sqrt(0.5);
  for (const Row& row :
       {Row{0, 1, 0}, Row{90, 0, 1}, Row{180, -1, 0}, Row{-90, 0, -1}, Row{45, s, s}, Row{405, s, s}}) {
    const auto patch = transition("Gradient Wipe", a, b, 0.5);
    setNumber(*patch, "inputAngle", row.angle);
    setNumber(*patch, "inputSoftness", 0);
    const ConstBitmap out = rendered(*patch);
    for (std::size_t y = 0; y < 20; ++y) {
      for (std::size_t x = 0; x < 20; ++x) {
        const double side = (static_cast<double>(x) - 9.5) * row.dx + (static_cast<double>(y) - 9.5) * row.dy;
        if (std::abs(side) < 0.01) continue;  // on the edge itself
        EXPECT_EQ(pixelAt(*out, layout, x, y)[0], side < 0 ? 255 : 0) << row.angle << ": " << x << ", " << y;
      }
    }
  }
}

TEST(GradientWipe, TheGradientSaysWhatChangesFirst) {
  const Layout& layout = layouts[0];
  const auto [a, b] = nothingAndAll(layout, 101, 1);
  const auto patch = transition("Gradient Wipe", a, b, 0.25);
  // Bright at both ends: the middle goes first, a quarter of it at a quarter of the time.
  setState(*patch, "inputGradient", linearGradient({{0, 1, 1, 1}, {0.5, 0, 0, 0}, {1, 1, 1, 1}}, {{0, 0}}));
  setNumber(*patch, "inputSoftness", 0);
  const ConstBitmap out = rendered(*patch);
  for (std::size_t x = 0; x < 101; ++x) {
    const double distance = std::abs(static_cast<double>(x) - 50);
    EXPECT_EQ(pixelAt(*out, layout, x, 0)[0], distance < 12.5 ? 255 : 0) << x;
  }
}

}  // namespace
