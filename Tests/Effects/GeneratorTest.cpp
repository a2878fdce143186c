// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCPixelFormat.h"
#include "Tests/Effects/Harness.h"

namespace {

using Settings = std::vector<std::pair<std::string, Setting>>;

std::shared_ptr<QCPatch> generator(const std::string& name, double width, double height, int depth,
                                   Settings more = {}) {
  more.insert(more.end(), {{"inputWidth", width}, {"inputHeight", height}, {"inputDepth", double(depth)}});
  return effectNamed(name, more);
}

const Layout& layoutOfDepth(int depth) {
  return depth == 0 ? layouts[0] : layouts[depth + 1];
}

TEST(Generators, RefuseSizesAndDepthsThatCannotBe) {
  const struct {
    double width, height;
    int depth;
  } rows[] = {{0, 5, 0}, {5, 0, 2}, {4, 4, 3}, {4294967295, 4294967295, 2}, {65536, 65536, 0}};
  for (const char* name : {"Gradient Ramp", "Checkerboard", "Solid Color", "Radial Ramp", "Noise"}) {
    for (const auto& row : rows) {
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
    expectPixels(out, layout, layout.full * 1e-6, [&](std::size_t x, std::size_t y) {
      const double value = board[4 * (37 * y + x) + 1] / 255.0 * layout.full;
      return Values{value, value, value, layout.full};
    });
  }
}

TEST(Checkerboard, ColorsAreStraightAndCellsOfAnySize) {
  for (const double cell : {0, 1, 3, 100}) {
    const NSObjectRef a = std::make_shared<QCColor>(1, 0.5, 0, 0.5),
                      b = std::make_shared<QCColor>(std::nan(""), 7, -2, 1);
    const auto patch =
        generator("Checkerboard", 10, 7, 0, {{"inputCellSize", cell}, {"inputColorA", a}, {"inputColorB", b}});
    const auto side = static_cast<std::size_t>(std::max(cell, 1.0));
    expectPixels(rendered(*patch), layouts[0], 0, [side](std::size_t x, std::size_t y) {
      return (x / side + y / side) % 2 == 0 ? Values{128, 64, 0, 128} : Values{0, 255, 0, 255};
    });
  }
}

TEST(GradientRamp, RunsFromTheStartToTheEndPoint) {
  const PropertyList gradient = linearGradient({{0, 0, 1, 0.25}, {1, 1, 0, 0.25}}, {{0, 1}, {1, 0.5}});
  const struct {
    double startX, startY, endX, endY;
  } rows[] = {{0, 0.5, 1, 0.5}, {0.5, 1, 0.5, 0}, {0.1, 0.2, 0.9, 0.7}, {0.6, 0.5, 0.4, 0.5}, {0.3, 0.5, 0.3, 0.5}};
  for (const auto& row : rows) {
    for (int depth = 0; depth < 3; ++depth) {
      const Layout& layout = layoutOfDepth(depth);
      const auto patch = generator("Gradient Ramp", 40, 30, depth,
                                   {{"inputGradient", gradient},
                                    {"inputStartX", row.startX},
                                    {"inputStartY", row.startY},
                                    {"inputEndX", row.endX},
                                    {"inputEndY", row.endY}});
      const ConstBitmap out = rendered(*patch);
      const double dx = (row.endX - row.startX) * 40;
      const double dy = (row.endY - row.startY) * 30;
      // One rounding of color, one of alpha and one of their product.
      expectPixels(out, layout, depth == 2 ? 2e-5 : 1.51, [&](std::size_t column, std::size_t line) {
        const double x = static_cast<double>(column) + 0.5 - row.startX * 40;
        const double y = static_cast<double>(line) + 0.5 - row.startY * 30;
        const double length = dx * dx + dy * dy;  // points that coincide give the last color
        const double p = length == 0 ? 1 : std::clamp((x * dx + y * dy) / length, 0.0, 1.0);
        const double alpha = (1 - p / 2) * layout.full;
        return Values{p * alpha, (1 - p) * alpha, 0.25 * alpha, alpha};
      });
    }
  }
}

TEST(SolidColor, IsPremultipliedAndEverywhere) {
  const NSObjectRef color = std::make_shared<QCColor>(1, 0.25, std::nan(""), 0.5);
  for (int depth = 0; depth < 3; ++depth) {
    const Layout& layout = layoutOfDepth(depth);
    const auto patch = generator("Solid Color", 67, 3, depth, {{"inputColor", color}});
    expectPixels(rendered(*patch), layout, depth == 2 ? 0 : 0.5, [&](auto, auto) {
      return Values{layout.full / 2, layout.full / 8, 0, layout.full / 2};
    });
  }
}

TEST(RadialRamp, RunsFromTheCenterToTheRadius) {
  const PropertyList gradient = linearGradient({{0, 0, 1, 0.25}, {1, 1, 0, 0.25}}, {{0, 1}, {1, 0.5}});
  const struct {
    double centerX, centerY, radius;
  } rows[] = {{0.5, 0.5, 1}, {0.5, 0.5, 0.3}, {0.13, 0.87, 2.5}, {1, 0, 4}, {0.5125, 0.35, 0}};
  for (const auto& row : rows) {
    for (int depth = 0; depth < 3; ++depth) {
      const Layout& layout = layoutOfDepth(depth);
      const auto patch = generator("Radial Ramp", 41, 30, depth,
                                   {{"inputGradient", gradient},
                                    {"inputCenterX", row.centerX},
                                    {"inputCenterY", row.centerY},
                                    {"inputRadius", row.radius}});
      // One rounding of color, one of alpha and one of their product; at 16 bits half an entry of the table as well.
      const double tolerance = depth == 2 ? 2e-5 : depth == 1 ? 2.26 : 1.51;
      expectPixels(rendered(*patch), layout, tolerance, [&](std::size_t x, std::size_t y) {
        const double dx = static_cast<double>(x) + 0.5 - row.centerX * 41;
        const double dy = static_cast<double>(y) + 0.5 - row.centerY * 30;
        const double p = row.radius == 0 ? 1 : std::min(std::hypot(dx, dy) / (row.radius * 15), 1.0);
        const double alpha = (1 - p / 2) * layout.full;
        return Values{p * alpha, (1 - p) * alpha, 0.25 * alpha, alpha};
      });
    }
  }
}

ConstBitmap noise(int depth, double scale, double octaves, double seed, double colors = 0) {
  return rendered(
      *generator("Noise", 193, 131, depth,
                 {{"inputScale", scale}, {"inputOctaves", octaves}, {"inputSeed", seed}, {"inputColors", colors}}));
}

// FNV-1a.
std::uint64_t checksum(const ConstBitmap& image) {
  std::uint64_t sum = 0xCBF29CE484222325;
  for (const std::uint8_t byte : pixelBytes(*image)) sum = (sum ^ byte) * 0x100000001B3;
  return sum;
}

TEST(Noise, IsTheSameOnEveryMachine) {
  const struct {
    int depth;
    double scale, octaves, seed, colors;
    std::uint64_t sum;
  } rows[] = {{0, 200, 5, 0, 0, 4719229639422663677},
              {0, 1, 8, 7, 1, 11168929207660868823ULL},
              {1, 33.3, 8, 65535, 1, 6466711492853850265},
              {2, 50, 3, 1, 0, 329342252387041478}};
  for (const auto& row : rows) {
    EXPECT_EQ(checksum(noise(row.depth, row.scale, row.octaves, row.seed, row.colors)), row.sum) << row.scale;
  }
}

// Neighbors differ by no more than the curve between two points of the lattice is steep, also from cell to cell.
TEST(Noise, HasNoSeams) {
  const Layout& layout = layouts[3];
  for (const double scale : {16.0, 7.3}) {
    const auto pixels = pixelsOf(*noise(2, scale, 1, 3), layout);
    const double steepest = 1.875 / scale + 1e-5;
    for (std::size_t i = 0; i + 193 < pixels.size(); ++i) {
      ASSERT_LE(std::abs(pixels[i + 193][0] - pixels[i][0]), steepest) << i;
      if (i % 193 != 192) {
        ASSERT_LE(std::abs(pixels[i + 1][0] - pixels[i][0]), steepest) << i;
      }
    }
  }
}

TEST(Noise, IsEvenOpaqueAndAnotherForEachSeedAndColor) {
  const Layout& layout = layouts[3];
  double mean = 0, square = 0, next = 0, below = 0;
  const auto grain = pixelsOf(*noise(2, 1, 1, 5), layout);
  const auto value = [&](std::size_t i) { return grain[i % grain.size()][0] - 0.5; };
  for (std::size_t i = 0; i < grain.size(); ++i) {
    ASSERT_EQ(grain[i], (Values{grain[i][0], grain[i][0], grain[i][0], 1}));
    mean += value(i), square += value(i) * value(i), next += value(i) * value(i + 1),
        below += value(i) * value(i + 193);
  }
  const double count = 193.0 * 131;  // deviations of a few times their standard errors, about 0.002 and 0.0005
  EXPECT_NEAR(mean / count, 0, 0.008);
  EXPECT_NEAR(square / count, 1.0 / 12, 0.003);
  EXPECT_NEAR(next / count, 0, 0.002);
  EXPECT_NEAR(below / count, 0, 0.002);
  EXPECT_EQ(pixelBytes(*noise(2, 1, 8, 5)), pixelBytes(*noise(2, 1, 1, 5))) << "features smaller than pixels";

  const auto one = pixelsOf(*noise(2, 40, 4, 1), layout), other = pixelsOf(*noise(2, 40, 4, 2), layout);
  const auto colored = pixelsOf(*noise(2, 40, 4, 1, 1), layout);
  double seeds = 0, colors = 0, mono = 0;
  for (std::size_t i = 0; i < one.size(); ++i) {
    seeds += std::abs(one[i][0] - other[i][0]) / count;
    colors += (std::abs(colored[i][0] - colored[i][1]) + std::abs(colored[i][1] - colored[i][2])) / 2 / count;
    mono += std::abs(one[i][0] - colored[i][0]);
  }
  EXPECT_GT(seeds, 0.05);
  EXPECT_GT(colors, 0.05);
  EXPECT_EQ(mono, 0);
}

}  // namespace
