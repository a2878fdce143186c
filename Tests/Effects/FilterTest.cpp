// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCColor.h"
#include "Tests/Effects/Harness.h"

// Filters against naive versions of their formulas in double precision.

namespace {

using Settings = std::vector<std::pair<std::string, Setting>>;

ConstBitmap filtered(const char* name, const ConstBitmap& image, Settings settings = {}) {
  settings.insert(settings.begin(), {"inputImage", image});
  return rendered(*effectNamed(name, settings));
}

PropertyList colorState(const Values& components) {
  PropertyList state = PropertyList::array();
  for (const double component : components) state.append(PropertyList::real(component));
  return state;
}

void expectPremultiplied(const VortoBitmap& image, const Layout& layout) {
  if (layout.code == 9) return;
  for (const Values& got : pixelsOf(image, layout)) {
    ASSERT_EQ(got[3], *std::max_element(got.begin(), got.end())) << layout.name << ": premultiplied no more";
  }
}

TEST(Invert, TakesColorsFromAlphaAndComesBack) {
  for (const Layout& layout : layouts) {
    const Bitmap image = randomImage(layout, 61, 17, Noise::Premultiplied, 61);
    const ConstBitmap out = filtered("Invert", image);
    expectPixels(out, layout, layout.code == 9 ? 1e-6 : 0, [&](std::size_t x, std::size_t y) {
      const Values in = pixelAt(*image, layout, x, y);
      return Values{in[3] - in[0], in[3] - in[1], in[3] - in[2], in[3]};
    });
    if (layout.code == 9) continue;
    EXPECT_EQ(pixelBytes(*filtered("Invert", out)), pixelBytes(*image)) << layout.name;
  }
}

TEST(Fill, ReplacesTheColorUnderTheAlphaOfBoth) {
  for (const Layout& layout : layouts) {
    const Bitmap image = randomImage(layout, 61, 17, Noise::Premultiplied, 62);
    for (const Values& color : {Values{0.2, 1, 0.7, 0.4}, {1, 1, 1, 1}, {0.3, 0, 0, 0}}) {
      const ConstBitmap out = filtered("Fill", image, {{"inputColor", colorState(color)}});
      expectPixels(out, layout, layout.code == 9 ? 1e-6 : 1, [&](std::size_t x, std::size_t y) {
        const double alpha = pixelAt(*image, layout, x, y)[3] * color[3];
        return Values{color[0] * alpha, color[1] * alpha, color[2] * alpha, alpha};
      });
      expectPremultiplied(*out, layout);
    }
  }
}

// Images as planes of doubles, in units of 0 to 1.
struct Plane {
  std::size_t width, height;
  std::vector<Values> pixels;

  static Plane of(const VortoBitmap& image, const Layout& layout) {
    Plane plane{image.width, image.height, pixelsOf(image, layout)};
    for (Values& pixel : plane.pixels) {
      for (double& value : pixel) value /= layout.full;
    }
    return plane;
  }

  Values at(std::size_t x, std::size_t y) const { return pixels[y * width + x]; }

  // At any place, by the rule for edges.
  Values beyond(std::ptrdiff_t x, std::ptrdiff_t y, bool repeats) const {
    const auto cx = std::clamp<std::ptrdiff_t>(x, 0, static_cast<std::ptrdiff_t>(width) - 1);
    const auto cy = std::clamp<std::ptrdiff_t>(y, 0, static_cast<std::ptrdiff_t>(height) - 1);
    return repeats || (cx == x && cy == y) ? at(static_cast<std::size_t>(cx), static_cast<std::size_t>(cy)) : Values{};
  }
};

// The weighted sum with every sample of the Gaussian that is not 0 for a double, along rows or along columns.
Plane convolved(const Plane& in, double sigma, bool repeats, bool alongRows) {
  const auto radius = static_cast<std::ptrdiff_t>(std::ceil(9 * sigma));
  std::vector<double> weights;
  double sum = 0;
  for (std::ptrdiff_t i = -radius; i <= radius; ++i) {
    const double distance = static_cast<double>(i) / sigma;
    weights.push_back(std::exp(-distance * distance / 2));
    sum += weights.back();
  }
  Plane out = in;
  for (std::size_t i = 0; i < in.pixels.size(); ++i) {
    const auto x = static_cast<std::ptrdiff_t>(i % in.width), y = static_cast<std::ptrdiff_t>(i / in.width);
    Values made{};
    for (std::ptrdiff_t k = -radius; k <= radius; ++k) {
      const Values there = in.beyond(alongRows ? x + k : x, alongRows ? y : y + k, repeats);
      const double weight = weights[static_cast<std::size_t>(k + radius)] / sum;
      for (int c = 0; c < 4; ++c) made[c] += weight * there[c];
    }
    out.pixels[i] = made;
  }
  return out;
}

Plane blurred(const VortoBitmap& image, const Layout& layout, double sigma, bool repeats) {
  return convolved(convolved(Plane::of(image, layout), sigma, repeats, true), sigma, repeats, false);
}

// Noise, a block with straight edges, bright points on transparency, and all of it up to the image's edges.
Bitmap blurTarget(const Layout& layout, std::uint32_t width, std::uint32_t height) {
  std::mt19937 random(63);
  std::size_t i = 0;
  return makeImage(layout, width, height, [&]() -> Values {
    const std::size_t x = i % width, y = i / width;
    ++i;
    const double full = layout.full;
    if (x < width / 3) return premultipliedValues(layout, random);
    if (x < width * 2 / 3) return y > height / 2 ? Values{full, 0, full, full} : Values{};
    return x % 7 == 3 && y % 9 == 4 ? Values{full, full, 0, full} : Values{};
  });
}

TEST(GaussianBlur, IsTheWeightedSumWithTheGaussian) {
  for (const double sigma : {0.1, 0.4, 1.0, 2.0, 3.0, 3.01, 5.0, 12.0, 40.0, 100.0}) {
    for (const auto& [width, height] : {std::pair{61U, 43U}, {1U, 70U}, {17U, 1U}, {268U, 3U}}) {
      for (const Layout& layout : layouts) {
        const Bitmap image = blurTarget(layout, width, height);
        for (const bool repeats : {false, true}) {
          SCOPED_TRACE("sigma " + std::to_string(sigma) + (repeats ? ", repeated" : ", transparent"));
          const ConstBitmap out =
              filtered("Gaussian Blur", image, {{"inputRadius", sigma}, {"inputEdges", repeats ? 1.0 : 0.0}});
          const Plane exact = blurred(*image, layout, sigma, repeats);
          expectPixels(out, layout, 0.0007 * layout.full + (layout.code == 9 ? 0 : 0.5), [&](auto x, auto y) {
            Values values = exact.at(x, y);
            for (double& value : values) value *= layout.full;
            return values;
          });
          expectPremultiplied(*out, layout);
        }
      }
    }
  }
}

TEST(GaussianBlur, KeepsWhatIsEvenAndWhatItDoesNotReach) {
  for (const Layout& layout : layouts) {
    const Bitmap image = randomImage(layout, 20, 10, Noise::Anything, 64);
    for (const double none : {0.0, -1.0, 0.05}) {
      EXPECT_EQ(filtered("Gaussian Blur", image, {{"inputRadius", none}}), image);
    }
    const Values even{layout.full, layout.full / 5, 0, layout.full};
    const Bitmap opaque = makeImage(layout, 300, 200, even);
    for (const double sigma : {2.0, 10.0, 100.0}) {
      const ConstBitmap out = filtered("Gaussian Blur", opaque, {{"inputRadius", sigma}});
      expectPixels(out, layout, layout.code == 9 ? 1e-5 : 0, [&](auto, auto) { return even; });
    }
  }
  // A broken value stays a spot, and nothing stays nothing.
  const Layout& floats = layouts[3];
  std::size_t i = 0;
  const Bitmap broken = makeImage(floats, 99, 9, [&]() -> Values {
    return ++i == 40 ? Values{NAN, HUGE_VAL, 0, 1} : Values{};
  });
  for (const Values& pixel : pixelsOf(*filtered("Gaussian Blur", broken, {{"inputRadius", 4.0}}), floats)) {
    ASSERT_TRUE(pixel[0] == 0 && !std::isnan(pixel[1]) && pixel[2] == 0);
  }
}

struct Move {
  double shiftX, shiftY, degrees, scaleX, scaleY, anchorX, anchorY;
};

ConstBitmap moved(const ConstBitmap& image, const Move& move, int filter) {
  return filtered("Transform", image,
                  {{"inputTranslateX", move.shiftX},
                   {"inputTranslateY", move.shiftY},
                   {"inputRotation", move.degrees},
                   {"inputScaleX", move.scaleX},
                   {"inputScaleY", move.scaleY},
                   {"inputAnchorX", move.anchorX},
                   {"inputAnchorY", move.anchorY},
                   {"inputFilter", double(filter)}});
}

double kernelAt(double t, int filter) {
  const double angle = std::acos(-1.0) * t;
  if (filter == 1) return std::max(1 - std::abs(t), 0.0);
  if (std::abs(t) < 1e-12) return 1;
  return std::abs(t) < 3 ? std::sin(angle) / angle * std::sin(angle / 3) / (angle / 3) : 0;
}

// The pixel at (x, y) of what comes of an image: by its whole kernel, every weight from the formula.
Values movedPixel(const Plane& image, const Move& move, int filter, std::size_t x, std::size_t y) {
  const double radians = move.degrees * std::acos(-1.0) / 180;
  const double anchorX = move.anchorX * static_cast<double>(image.width);
  const double anchorY = move.anchorY * static_cast<double>(image.height);
  const double dx = static_cast<double>(x) + 0.5 - anchorX - move.shiftX;
  const double dy = static_cast<double>(y) + 0.5 - anchorY - move.shiftY;
  const double u = anchorX + (std::cos(radians) * dx + std::sin(radians) * dy) / move.scaleX;
  const double v = anchorY + (std::cos(radians) * dy - std::sin(radians) * dx) / move.scaleY;
  if (filter == 0) {
    return image.beyond(static_cast<std::ptrdiff_t>(std::floor(u)), static_cast<std::ptrdiff_t>(std::floor(v)), false);
  }
  const double scaleX = std::min(std::abs(move.scaleX), 1.0), scaleY = std::min(std::abs(move.scaleY), 1.0);
  Values sum{};
  double weights = 0;
  for (auto row = std::ptrdiff_t(v - 4 / scaleY) - 2; double(row) < v + 4 / scaleY; ++row) {
    for (auto column = std::ptrdiff_t(u - 4 / scaleX) - 2; double(column) < u + 4 / scaleX; ++column) {
      const double weight =
          kernelAt((double(column) + 0.5 - u) * scaleX, filter) * kernelAt((double(row) + 0.5 - v) * scaleY, filter);
      const Values there = image.beyond(column, row, false);
      for (int c = 0; c < 4; ++c) sum[c] += weight * there[c];
      weights += weight;
    }
  }
  for (double& value : sum) value /= weights;
  return sum;
}

TEST(Transform, TakesEveryPixelFromWhereItWas) {
  const Move moves[] = {{3.25, -1.5, 0, 1, 1, 0.5, 0.5},  {0, 0, 33, 1, 1, 0.5, 0.5},   {2, 1, -100, 1.7, -1.2, 0, 1},
                        {0, 0, 20, 0.3, 0.45, 0.5, 0.25}, {0, 0, 0, 0.11, 1, 0.5, 0.5}, {0, 0, 0, -2.5, 0.5, 1, 1},
                        {5, 0, 719, 0.05, 0.08, 0.5, 0.5}};
  for (const Layout& layout : layouts) {
    const Bitmap image = blurTarget(layout, 41, 29);
    const Plane plane = Plane::of(*image, layout);
    for (const Move& move : moves) {
      for (const int filter : {0, 1, 2}) {
        SCOPED_TRACE("filter " + std::to_string(filter) + ", " + std::to_string(move.degrees) + " degrees");
        const ConstBitmap out = moved(image, move, filter);
        const double tolerance = filter == 0 ? 0 : layout.code == 9 ? 2e-5 : 0.7;
        expectPixels(out, layout, tolerance, [&](std::size_t x, std::size_t y) {
          Values values = movedPixel(plane, move, filter, x, y);
          for (double& value : values) value *= layout.full;
          if (layout.code == 9) return values;
          const double alpha = std::clamp(values[3], 0.0, layout.full);
          for (double& value : values) value = std::clamp(value, 0.0, alpha);
          return values;
        });
        expectPremultiplied(*out, layout);
      }
    }
  }
}

TEST(Transform, CopiesWhereverPixelsComeToLieOnPixels) {
  for (const Layout& layout : layouts) {
    const Bitmap image = randomImage(layout, 12, 9, Noise::Premultiplied, 65);
    const Bitmap square = randomImage(layout, 9, 9, Noise::Premultiplied, 66);
    const Plane plane = Plane::of(*image, layout), squarePlane = Plane::of(*square, layout);
    const auto exactly = [&](const ConstBitmap& out, const Plane& from, auto place) {
      expectPixels(out, layout, 1e-9 * layout.full, [&](auto x, auto y) {
        const auto [fromX, fromY] = place(std::ptrdiff_t(x), std::ptrdiff_t(y));
        Values values = from.beyond(fromX, fromY, false);
        for (double& value : values) value *= layout.full;
        return values;
      });
    };
    for (const int filter : {0, 1, 2}) {
      for (const auto& [dx, dy] : {std::pair{3, -2}, {-11, 8}, {12, 0}, {0, -9}, {-40, 2}}) {
        exactly(moved(image, {double(dx), double(dy), 0, 1, 1, 0.3, 0.7}, filter), plane,
                [&, right = dx, down = dy](auto x, auto y) { return std::pair(x - right, y - down); });
      }
      exactly(moved(image, {0, 0, 180, 1, 1, 0.5, 0.5}, filter), plane,
              [](auto x, auto y) { return std::pair(11 - x, 8 - y); });
      exactly(moved(image, {2, 0, 360, -1, 1, 0.5, 0.5}, filter), plane,
              [](auto x, auto y) { return std::pair(13 - x, y); });
      exactly(moved(square, {0, 0, 90, 1, 1, 0.5, 0.5}, filter), squarePlane,
              [](auto x, auto y) { return std::pair(y, 8 - x); });
      exactly(moved(image, {0, 0, 0, 0, 1, 0.5, 0.5}, filter), plane, [](auto, auto) { return std::pair(-1, -1); });
      EXPECT_EQ(moved(image, {0, 0, -720, 1, 1, 0.1, 0.2}, filter), image);
    }
  }
}

// Shifted first, so that the frame cuts the shadow where it ends and not where the image does.
TEST(DropShadow, IsTheImageOverItsShiftedAndBlurredShape) {
  for (const Layout& layout : layouts) {
    const Bitmap image = makeImage(layout, 40, 40, [&, i = 0]() mutable -> Values {
      const int x = i % 40, y = i / 40;
      ++i;
      const double alpha = x > 8 && x < 25 && y > 5 && y < 20 ? layout.full : 0;
      return {alpha, 0, 0, alpha};
    });
    const ConstBitmap out = filtered("Drop Shadow", image, {{"inputRadius", 2.0}, {"inputOffsetX", 5.0}});
    ConstBitmap shadow = filtered("Fill", image, {{"inputColor", colorState({0, 0, 0, 0.5})}});
    shadow = filtered("Transform", shadow, {{"inputTranslateX", 5.0}, {"inputTranslateY", 10.0}});
    shadow = filtered("Gaussian Blur", shadow, {{"inputRadius", 2.0}, {"inputEdges", 1.0}});
    const auto over =
        effectNamed("Over", {{"inputBackgroundImage", shadow}, {"inputForegroundImage", ConstBitmap(image)}});
    EXPECT_EQ(pixelBytes(*out), pixelBytes(*rendered(*over))) << layout.name;
    EXPECT_NEAR(pixelAt(*out, layout, 22, 24)[3], 0.5 * layout.full, 0.01 * layout.full);
  }
}

TEST(UnsharpMask, SetsStraightColorApartFromItsBlur) {
  for (const Layout& layout : layouts) {
    const Bitmap image = blurTarget(layout, 48, 30);
    const Plane plane = Plane::of(*image, layout);
    for (const auto& [amount, sigma, threshold] : {std::tuple{0.5, 2.0, 0.0}, {3.0, 0.8, 0.2}, {1.0, 20.0, 0.0}}) {
      const Plane around = blurred(*image, layout, sigma, true);
      const ConstBitmap out = filtered(
          "Unsharp Mask", image, {{"inputAmount", amount}, {"inputRadius", sigma}, {"inputThreshold", threshold}});
      const double tolerance = 0.004 * layout.full * amount + (layout.code == 9 ? 0 : 0.5);
      expectPixels(out, layout, tolerance, [&, by = amount, least = threshold](std::size_t x, std::size_t y) {
        Values values = plane.at(x, y);
        const Values soft = around.at(x, y);
        const Values got = pixelAt(*out, layout, x, y);
        for (int c = 0; c < 3; ++c) {
          const double difference = values[3] > 0 ? values[c] / values[3] - soft[c] / soft[3] : 0;
          if (std::abs(std::abs(difference) - least) < 0.01 && least > 0) return got;  // either is right
          if (std::abs(difference) >= least) values[c] += by * difference * values[3];
          if (layout.code != 9) values[c] = std::clamp(values[c], 0.0, values[3]);
        }
        for (double& value : values) value *= layout.full;
        return values;
      });
      expectPremultiplied(*out, layout);
    }
    EXPECT_EQ(filtered("Unsharp Mask", image, {{"inputAmount", 0.0}}), image);
    // One color under any alpha has nothing to set apart.
    std::mt19937 random(67);
    const Bitmap shapes = makeImage(layout, 40, 20, [&]() -> Values {
      const double alpha = premultipliedValues(layout, random)[3];
      return {alpha, 0, alpha, alpha};
    });
    expectPixels(filtered("Unsharp Mask", shapes, {{"inputAmount", 5.0}}), layout, layout.code == 9 ? 1e-5 : 0,
                 [&](auto x, auto y) { return pixelAt(*shapes, layout, x, y); });
  }
}

TEST(ColorMatrix, MixesStraightColors) {
  const char* const components[] = {"Red", "Green", "Blue", "Alpha"};
  const double matrices[][4][5] = {
      {{0.3, 0.6, 0.1, 0, 0}, {0.3, 0.6, 0.1, 0, 0}, {0.3, 0.6, 0.1, 0, 0}, {0, 0, 0, 1, 0}},
      {{0, 1, 0, 0, 0.2}, {0, 0, -2, 1, 0}, {1, 0, 0, 0, 0}, {0.5, 0, 0, 0.4, 0.05}},
      {{1, 0, 0, 0, 0}, {0, 1, 0, 0, 0}, {0, 0, 1, 0, 0}, {0, 0, 0, -1, 1}}};
  for (const Layout& layout : layouts) {
    const Bitmap image = randomImage(layout, 61, 17, Noise::Premultiplied, 68);
    for (const auto& matrix : matrices) {
      Settings settings;
      for (int to = 0; to < 4; ++to) {
        const std::string key = std::string("input") + components[to];
        for (int from = 0; from < 4; ++from) settings.push_back({key + "From" + components[from], matrix[to][from]});
        settings.push_back({key + "Offset", matrix[to][4]});
      }
      const ConstBitmap out = filtered("Color Matrix", image, settings);
      expectPixels(out, layout, layout.code == 9 ? 1e-5 : 0.51, [&](std::size_t x, std::size_t y) {
        Values in = pixelAt(*image, layout, x, y), made;
        const double alpha = in[3];
        for (double& value : in) value = alpha > 0 ? value / alpha : 0;
        in[3] = alpha / layout.full;
        for (int to = 0; to < 4; ++to) {
          made[to] = matrix[to][4];
          for (int from = 0; from < 4; ++from) made[to] += matrix[to][from] * in[from];
          if (to == 3 || layout.code != 9) made[to] = std::clamp(made[to], 0.0, 1.0);
        }
        for (int c = 0; c < 3; ++c) made[c] *= made[3];
        for (double& value : made) value *= layout.full;
        return made;
      });
      expectPremultiplied(*out, layout);
    }
    EXPECT_EQ(filtered("Color Matrix", image), image);
  }
}

// By the conversions of VortoColor, whose blue on the way back is not the model's: it is the green of a third of a turn
// before.
Values shiftedHue(const Values& straight, double hue, double saturation, double lightness) {
  float h = 0, s = 0, l = 0, red = 0, green = 0, blue = 0, unused = 0;
  VortoColor::RGBtoHSL(float(straight[0]), float(straight[1]), float(straight[2]), &h, &s, &l);
  h = float(std::fmod(h + hue + 720, 360.0));
  s = float(std::min(s * (1 + saturation), 1.0));
  l = float(lightness < 0 ? l * (1 + lightness) : l + (1 - l) * lightness);
  VortoColor::HSLtoRGB(h, s, l, &red, &green, &unused);
  VortoColor::HSLtoRGB(h < 120 ? h + 240 : h - 120, s, l, &unused, &blue, &unused);
  return {red, green, blue, straight[3]};
}

TEST(HueSaturationLightness, GoesThroughTheModel) {
  for (const Layout& layout : layouts) {
    const Bitmap image = randomImage(layout, 61, 37, Noise::Premultiplied, 69);
    for (const auto& [hue, saturation, lightness] :
         {std::tuple{-70.0, 0.0, 0.0}, {180.0, 0.6, 0.0}, {0.0, -1.0, 0.3}, {30.0, -0.4, -0.5}, {0.0, 1.0, 0.0}}) {
      const ConstBitmap out =
          filtered("Hue Saturation Lightness", image,
                   {{"inputHue", hue}, {"inputSaturation", saturation}, {"inputLightness", lightness}});
      const double tolerance = layout.code == 9 ? 2e-5 : layout.code == 4 ? 1 : 0.51;
      expectPixels(out, layout, tolerance, [&, h = hue, s = saturation, l = lightness](std::size_t x, std::size_t y) {
        Values values = pixelAt(*image, layout, x, y);
        const double alpha = values[3];
        if (alpha == 0) return values;
        for (double& value : values) value /= alpha;
        values = shiftedHue(values, h, s, l);
        for (double& value : values) value *= alpha;
        return values;
      });
      expectPremultiplied(*out, layout);
    }
    EXPECT_EQ(filtered("Hue Saturation Lightness", image, {{"inputHue", -360.0}}), image);
  }
  // Above 1 the model goes on in proportion.
  const Layout& floats = layouts[3];
  const ConstBitmap bright =
      filtered("Hue Saturation Lightness", makeImage(floats, 20, 1, {4, 2, 1, 1}), {{"inputHue", 120.0}});
  expectPixels(bright, floats, 1e-5, [](auto, auto) { return Values{1, 4, 2, 1}; });
}

TEST(Crop, CutsOffEdges) {
  const struct {
    double left, top, right, bottom;
  } cuts[] = {{1, 2, 3, 4}, {0, 0, 11, 0}, {11, 0, 0, 8}, {12, 0, 0, 0}, {0, 5, 0, 5}, {7, 0, 7, 0}, {4e9, 0, 4e9, 1}};
  for (const Layout& layout : layouts) {
    const Bitmap image = randomImage(layout, 12, 9, Noise::Anything, 70);
    EXPECT_EQ(filtered("Crop", image, {{"inputTrim", 1.0}}), image);
    for (const auto& cut : cuts) {
      const auto crop = effectNamed("Crop", {{"inputImage", ConstBitmap(image)},
                                             {"inputLeft", cut.left},
                                             {"inputTop", cut.top},
                                             {"inputRight", cut.right},
                                             {"inputBottom", cut.bottom}});
      const ConstBitmap kept = rendered(*crop);
      ASSERT_EQ(std::pair(kept->width, kept->height), std::pair(12U, 9U));
      std::vector<std::uint8_t> left, expected;
      const std::size_t size = 4 * layout.channelBytes;
      const auto before = pixelBytes(*image), after = pixelBytes(*kept);
      for (std::size_t i = 0; i < 12 * 9; ++i) {
        const double x = double(i % 12), y = double(i / 12);
        const bool isIn = x >= cut.left && x + cut.right < 12 && y >= cut.top && y + cut.bottom < 9;
        const auto* const pixel = before.data() + i * size;
        if (isIn) left.insert(left.end(), pixel, pixel + size);
        expected.insert(expected.end(), size, 0);
        if (isIn) std::copy_n(pixel, size, expected.end() - std::ptrdiff_t(size));
      }
      EXPECT_EQ(after, expected);
      set(*crop, "inputTrim", 1.0);
      const Outcome outcome = run(*crop);
      EXPECT_EQ(outcome.succeeded, !left.empty());
      if (outcome.image) {
        EXPECT_EQ(pixelBytes(*outcome.image), left);
      } else {
        EXPECT_NE(outcome.reason.find("nothing is left of 12 x 9"), std::string::npos) << outcome.reason;
      }
    }
  }
}

}  // namespace
