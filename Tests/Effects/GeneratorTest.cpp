// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPatch.h"
#include "TarnCore/TCPixelFormat.h"
#include "Tests/Effects/Harness.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

std::shared_ptr<QCPatch> generator(const std::string& name, double width, double height, int depth) {
  auto patch = effectNamed(name);
  setNumber(*patch, "inputWidth", width);
  setNumber(*patch, "inputHeight", height);
  setNumber(*patch, "inputDepth", depth);
  return patch;
}

const Layout& layoutOfDepth(int depth) {
  return depth == 0 ? layouts[0] : layouts[depth + 1];
}

TEST(Generators, RefuseSizesAndDepthsThatCannotBe) {
  struct Row {
    double width;
    double height;
    int depth;
  };
  const Row rows[] = {{0, 5, 0}, {5, 0, 2}, {4, 4, 3}, {4294967295, 4294967295, 2}, {65536, 65536, 0}};
  for (const char* name : {"Gradient Ramp", "Checkerboard"}) {
    for (const Row& row : rows) {
      const Outcome outcome = run(*generator(name, row.width, row.height, row.depth));
      EXPECT_FALSE(outcome.succeeded) << name << " " << row.width << " x " << row.height;
      EXPECT_NE(outcome.reason, "");
      EXPECT_FALSE(outcome.image);
    }
  }
}

TEST(Checkerboard, LooksLikeTheFrameworksOwnByDefault) {
  std::vector<std::uint8_t> board(37 * 21 * 4);
  VortoMakeCheckerImage(board.data(), 37, 21);
  for (int depth = 0; depth < 3; ++depth) {
    const Layout& layout = layoutOfDepth(depth);
    const ConstBitmap out = rendered(*generator("Checkerboard", 37, 21, depth));
    for (std::size_t i = 0; i < 37 * 21; ++i) {
      const Values got = pixelAt(*out, layout, i % 37, i / 37);
      for (int c = 0; c < 3; ++c) ASSERT_NEAR(got[c] / layout.full * 255, board[4 * i + 1], 0.001) << i;
      ASSERT_EQ(got[3], layout.full);
    }
  }
}

TEST(Checkerboard, ColorsAreStraightAndCellsOfAnySize) {
  for (const std::uint32_t cell : {0U, 1U, 3U, 100U}) {
    const auto patch = generator("Checkerboard", 10, 7, 0);
    setNumber(*patch, "inputCellSize", cell);
    dynamic_cast<QCColorPort&>(*patch->portForKey("inputColorA")).setValue(std::make_shared<QCColor>(1, 0.5, 0, 0.5));
    dynamic_cast<QCColorPort&>(*patch->portForKey("inputColorB"))
        .setValue(std::make_shared<QCColor>(std::nan(""), 7, -2, 1));
    const ConstBitmap out = rendered(*patch);
    const std::size_t side = std::max(cell, 1U);
    for (std::size_t i = 0; i < 10 * 7; ++i) {
      const bool first = (i % 10 / side + i / 10 / side) % 2 == 0;
      EXPECT_EQ(pixelAt(*out, layouts[0], i % 10, i / 10), first ? (Values{128, 64, 0, 128}) : (Values{0, 255, 0, 255}))
          << "cells of " << cell << " at " << i;
    }
  }
}

TEST(GradientRamp, RunsFromTheStartToTheEndPoint) {
  const PropertyList gradient = linearGradient({{0, 0, 1, 0.25}, {1, 1, 0, 0.25}}, {{0, 1}, {1, 0.5}});
  struct Row {
    double startX, startY, endX, endY;
  };
  for (const Row& row : {Row{0, 0.5, 1, 0.5}, Row{0.5, 1, 0.5, 0}, Row{0.1, 0.2, 0.9, 0.7}, Row{0.6, 0.5, 0.4, 0.5}}) {
    for (int depth = 0; depth < 3; ++depth) {
      const Layout& layout = layoutOfDepth(depth);
      const auto patch = generator("Gradient Ramp", 40, 30, depth);
      setState(*patch, "inputGradient", gradient);
      setNumber(*patch, "inputStartX", row.startX);
      setNumber(*patch, "inputStartY", row.startY);
      setNumber(*patch, "inputEndX", row.endX);
      setNumber(*patch, "inputEndY", row.endY);
      const ConstBitmap out = rendered(*patch);
      const double dx = (row.endX - row.startX) * 40;
      const double dy = (row.endY - row.startY) * 30;
      for (std::size_t i = 0; i < 40 * 30; ++i) {
        const double x = static_cast<double>(i % 40) + 0.5 - row.startX * 40;
        const double y = static_cast<double>(i / 40) + 0.5 - row.startY * 30;
        const double p = std::fmin(std::fmax((x * dx + y * dy) / (dx * dx + dy * dy), 0), 1);
        const double alpha = 1 - p / 2;
        const Values want{p * alpha, (1 - p) * alpha, 0.25 * alpha, alpha};
        const Values got = pixelAt(*out, layout, i % 40, i / 40);
        for (int c = 0; c < 4; ++c) {
          // One rounding of color, one of alpha and one of their product.
          ASSERT_NEAR(got[c], want[c] * layout.full, depth == 2 ? 2e-5 : 1.51) << layout.name << " pixel " << i;
        }
      }
    }
  }
}

TEST(GradientRamp, PointsThatCoincideGiveTheLastColor) {
  const auto patch = generator("Gradient Ramp", 3, 3, 0);
  setState(*patch, "inputGradient", linearGradient({{0, 0, 0, 0}, {1, 0, 1, 0}}, {{0, 1}}));
  setNumber(*patch, "inputEndX", 0);
  EXPECT_EQ(pixelAt(*rendered(*patch), layouts[0], 1, 1), (Values{0, 255, 0, 255}));
}

}  // namespace
