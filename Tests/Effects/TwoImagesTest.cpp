// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Effects/Harness.h"

namespace {

std::shared_ptr<QCPatch> transition(const std::string& name, const ConstBitmap& a, const ConstBitmap& b, double time) {
  return effectNamed(name, {{"inputImageA", a}, {"inputImageB", b}, {"inputTime", time}});
}

TEST(Transitions, AreExactlyEitherImageAtTheEnds) {
  for (const char* name : {"Dissolve", "Gradient Wipe", "Slide", "Iris"}) {
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

// Bilinear between the centers of the picture's pixels.
double lumaAt(const VortoBitmap& shape, const Layout& layout, double x, double y) {
  const auto luma = [&](double column, double row) {
    const auto at = [](double place, std::uint32_t size) {
      return static_cast<std::size_t>(std::clamp(place, 0.0, double(size) - 1));
    };
    const Values v = pixelAt(shape, layout, at(column, shape.width), at(row, shape.height));
    return (0.2126 * v[0] + 0.7152 * v[1] + 0.0722 * v[2]) / layout.full;
  };
  const double left = std::floor(x), top = std::floor(y), dx = x - left, dy = y - top;
  return (luma(left, top) * (1 - dx) + luma(left + 1, top) * dx) * (1 - dy) +
         (luma(left, top + 1) * (1 - dx) + luma(left + 1, top + 1) * dx) * dy;
}

TEST(GradientWipe, FollowsThePictureThatIsItsShape) {
  const PropertyList valley = linearGradient({{0, 1, 1, 1}, {0.5, 0, 0, 0}, {1, 1, 1, 1}}, {{0, 0}});
  const std::pair<std::uint32_t, std::uint32_t> sizes[] = {{23, 17}, {5, 40}, {1, 1}, {60, 3}};
  for (const auto& [shapeWidth, shapeHeight] : sizes) {
    for (std::size_t i = 0; i < layouts.size(); ++i) {
      const Layout &layout = layouts[i], &shapeLayout = layouts[(i + shapeWidth) % layouts.size()];
      SCOPED_TRACE(std::string(shapeLayout.name) + ", " + std::to_string(shapeWidth) + " wide, for " + layout.name);
      const Bitmap shape = randomImage(shapeLayout, shapeWidth, shapeHeight, Noise::Premultiplied, 61);
      for (const bool isValley : {false, true}) {
        const Values all{layout.full, layout.full, layout.full, layout.full};
        const auto patch = transition("Gradient Wipe", makeImage(layout, 23, 17), makeImage(layout, 23, 17, all), 0.4);
        set(*patch, "inputShapeImage", shape);
        set(*patch, "inputSoftness", 0.5);
        set(*patch, "inputAngle", 77.0);  // means nothing here
        if (isValley) set(*patch, "inputGradient", valley);
        expectPixels(rendered(*patch), layout, 0.5 * (layout.code != 9) + 2e-4 * layout.full, [&](auto x, auto y) {
          const double across = (static_cast<double>(x) + 0.5) * shapeWidth / 23 - 0.5;
          const double down = (static_cast<double>(y) + 0.5) * shapeHeight / 17 - 0.5;
          const double luma = lumaAt(*shape, shapeLayout, across, down);
          const double place = isValley ? std::abs(2 * luma - 1) : luma;
          const double share = std::clamp((0.4 * 1.5 - place) / 0.5, 0.0, 1.0) * layout.full;
          return Values{share, share, share, share};
        });
      }
    }
  }
}

TEST(Slide, MovesEitherImageOrBothByWholePixels) {
  const std::pair<int, int> ways[] = {{-1, 0}, {1, 0}, {0, -1}, {0, 1}};  // left, right, up, down
  for (const Layout& layout : layouts) {
    const Bitmap a = randomImage(layout, 13, 10, Noise::Anything, 51);
    const Bitmap b = randomImage(layout, 13, 10, Noise::Anything, 52);
    for (std::uint32_t direction = 0; direction < 4; ++direction) {
      for (std::uint32_t style = 0; style < 3; ++style) {
        for (const double time : {0.01, 0.25, 0.5, 0.99}) {
          SCOPED_TRACE(std::to_string(direction) + " " + std::to_string(style) + " at " + std::to_string(time));
          const auto patch = transition("Slide", a, b, time);
          set(*patch, "inputDirection", double(direction));
          set(*patch, "inputStyle", double(style));
          const ConstBitmap out = rendered(*patch);
          const auto [dx, dy] = ways[direction];
          const int movedX = dx * static_cast<int>(13 * time + 0.5), movedY = dy * static_cast<int>(10 * time + 0.5);
          for (int y = 0; y < 10; ++y) {
            for (int x = 0; x < 13; ++x) {
              const int ax = x - movedX, ay = y - movedY;  // where A, moved along, has this place
              const bool isA = ax >= 0 && ax < 13 && ay >= 0 && ay < 10;
              const bool moves = isA ? style != 1 : style != 2;
              const int fromX = !moves ? x : isA ? ax : ax + 13 * dx, fromY = !moves ? y : isA ? ay : ay + 10 * dy;
              const auto bytesAt = [&](const VortoBitmap& of, int column, int row) {
                const std::size_t size = 4 * layout.channelBytes;
                const auto* const first = static_cast<const std::uint8_t*>(of.data) + (13 * row + column) * size;
                return std::vector(first, first + size);
              };
              ASSERT_EQ(bytesAt(*out, x, y), bytesAt(isA ? *a : *b, fromX, fromY)) << x << ", " << y;
            }
          }
        }
      }
    }
  }
}

// From an image of nothing to one of all, so that the result is the share of the second.
TEST(Iris, OpensFromItsCenter) {
  const struct {
    int shape;
    double x, y, softness, time;
  } rows[] = {{0, 0.5, 0.5, 0.1, 0.5}, {0, 0.2, 0.9, 0, 0.3}, {0, 1, 0, 1, 0.6},     {1, 0.5, 0.5, 0, 0.4},
              {1, 0.3, 0.6, 0.5, 0.7}, {2, 0.5, 0.5, 0, 0.5}, {2, 0.25, 1, 0.2, 0.8}};
  for (const auto& row : rows) {
    for (const Layout& layout : layouts) {
      SCOPED_TRACE("shape " + std::to_string(row.shape) + " at " + std::to_string(row.time));
      const Values all{layout.full, layout.full, layout.full, layout.full};
      const auto patch = transition("Iris", makeImage(layout, 31, 20), makeImage(layout, 31, 20, all), row.time);
      for (const auto& [key, value] : {std::pair{"inputShape", double(row.shape)},
                                       {"inputCenterX", row.x},
                                       {"inputCenterY", row.y},
                                       {"inputSoftness", row.softness}}) {
        set(*patch, key, value);
      }
      const auto far = [&](double x, double y) {
        const double dx = std::abs(x - row.x * 31), dy = std::abs(y - row.y * 20);
        return row.shape == 0 ? std::hypot(dx, dy) : row.shape == 1 ? dx + dy : std::max(dx / 31, dy / 20);
      };
      const double furthest = std::max({far(0, 0), far(31, 0), far(0, 20), far(31, 20)});
      const ConstBitmap out = rendered(*patch);
      const double tolerance = layout.code == 9 ? 1e-5 : 0.5 + 1e-5 * layout.full;
      expectPixels(out, layout, row.softness > 0 ? tolerance : 0, [&](auto x, auto y) {
        const double place = far(static_cast<double>(x) + 0.5, static_cast<double>(y) + 0.5) / furthest;
        const double ahead = row.time * (1 + row.softness) - place;
        if (row.softness == 0 && std::abs(ahead) < 1e-6) return pixelAt(*out, layout, x, y);  // on the edge itself
        const double share = row.softness > 0 ? std::clamp(ahead / row.softness, 0.0, 1.0) : ahead > 0 ? 1.0 : 0.0;
        return Values{share * layout.full, share * layout.full, share * layout.full, share * layout.full};
      });
    }
  }
}

}  // namespace
