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
  for (const char* name : {"Gradient Ramp", "Checkerboard"}) {
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

}  // namespace
