// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Texts/ColorPalette.h"
#include "Host/Texts/CssGradient.h"
#include "Host/Texts/GimpGradient.h"
#include "Host/Texts/GradientText.h"
#include "Host/Texts/SvgGradient.h"
#include "Tests/Host/Parts/GradientScale.h"

#include <cstdio>
#include <fstream>
#include <random>

// What the formats of other programs mean, formula by formula, against the gradients that become of them.

namespace {

std::string documentText(const std::string& name) {
  std::ifstream file(std::string(VORTO_TEST_DOCUMENTS "/") + name, std::ios::binary);
  EXPECT_TRUE(file) << name;
  return {std::istreambuf_iterator<char>(file), {}};
}

Straight between(const Straight& a, const Straight& b, double share) {
  Straight color;
  for (std::size_t i = 0; i < 4; ++i) color[i] = (1 - share) * a[i] + share * b[i];
  return color;
}

// By sextants.
Straight colorOfHsv(double degrees, double saturation, double value, double alpha = 1) {
  const double hue = std::fmod(std::fmod(degrees, 360) + 360, 360) / 60;
  const int sextant = std::min(static_cast<int>(hue), 5);
  const double f = hue - sextant;
  const double p = value * (1 - saturation);
  const double q = value * (1 - saturation * f);
  const double t = value * (1 - saturation * (1 - f));
  const Straight colors[] = {{value, t, p}, {q, value, p}, {p, value, t}, {p, q, value}, {t, p, value}, {value, p, q}};
  Straight color = colors[sextant];
  color[3] = alpha;
  return color;
}

// waves.ggr: a blending of each type; two segments turn the hue.
Straight wavesAt(double x) {
  const auto linear = [](double t, double m) { return t <= m ? t / m / 2 : 0.5 + (t - m) / (1 - m) / 2; };
  const Straight purple{0.1, 0, 0.3, 1}, brown{0.9, 0.4, 0.1, 1}, sea{0, 0.6, 0.8, 0.5}, white{1, 1, 1, 1};
  if (x <= 0.2) return between(purple, brown, linear(x / 0.2, 0.25));
  if (x <= 0.4) return between(brown, sea, std::pow((x - 0.2) / 0.2, std::log(0.5) / std::log(0.25)));
  if (x <= 0.55) {
    return between(sea, white, (std::sin(M_PI * (linear((x - 0.4) / 0.15, 2 / 3.0) - 0.5)) + 1) / 2);
  }
  if (x <= 0.7) {  // red to blue, hue rising
    const double share = std::sqrt(std::max(0.0, 1 - std::pow(linear((x - 0.55) / 0.15, 1 / 3.0) - 1, 2)));
    return colorOfHsv(240 * share, 1, 1);
  }
  if (x <= 0.85) {  // blue to yellow, hue falling
    const double share = 1 - std::sqrt(std::max(0.0, 1 - std::pow(linear((x - 0.7) / 0.15, 2 / 3.0), 2)));
    return colorOfHsv(240 - 180 * share, 1, 1);
  }
  const double gray = x >= 0.9 ? 0.8 : 0.2;
  return {gray, gray, gray, 1};
}

}  // namespace

TEST(ForeignGradients, GimpSegmentsAreMetWithin255th) {
  host::Notes notes;
  const host::GradientStops stops = host::gradientOfGimp(documentText("waves.ggr"), notes);
  const Scale scale(stops);
  largestDifference([&](double x) { return scale.at(x); }, wavesAt,
                    positionsAround({0, 0.05, 0.2, 0.4, 0.5, 0.55, 0.6, 0.7, 0.8, 0.85, 0.9, 1}));
  ASSERT_EQ(notes.size(), 1u);
  EXPECT_TRUE(notes[0].ends_with(" stops were added, so that the file's gradient is met within 1/255")) << notes[0];
  EXPECT_LT(stops.colors.size(), 100u) << "few are enough";
}

TEST(ForeignGradients, PalettesAreMetWithin255th) {
  host::Notes notes;
  const Scale sea(host::gradientOfPalette(documentText("sea.cpt"), notes));
  EXPECT_TRUE(notes.empty()) << notes[0];
  const auto gray = [](double r, double g, double b) { return Straight{r / 255, g / 255, b / 255, 1}; };
  const auto seaAt = [&](double x) {
    const double z = -8000 + 11000 * x;
    if (z < -4000) return between(gray(20, 30, 80), gray(40, 90, 160), (z + 8000) / 4000);
    if (x < 8 / 11.0) return between(gray(40, 90, 160), gray(190, 230, 240), (z + 4000) / 4000);
    if (x < 8500 / 11000.0) return gray(90, 140, 60);
    return between(gray(170, 150, 90), gray(255, 255, 255), (z - 500) / 2500);
  };
  largestDifference([&](double x) { return sea.at(x); }, seaAt, positionsAround({4 / 11.0, 8 / 11.0, 8500 / 11000.0}));

  const Scale hues(host::gradientOfPalette(documentText("hues.cpt"), notes));
  const auto huesAt = [&](double x) {
    if (x < 0.5) return colorOfHsv(600 * x, 1 - 0.4 * x, 1);
    const double t = (x - 0.5) / 0.25;
    if (x < 0.75) return colorOfHsv(240 - 180 * t, 1 - t, 0.5 + 0.5 * t);
    const double white = 4 * (1 - x);
    return colorOfHsv(60 * white, 0, white + (1 - white) * 128 / 255);
  };
  largestDifference([&](double x) { return hues.at(x); }, huesAt, positionsAround({0.1, 0.2, 0.3, 0.4, 0.5, 0.75}));
  EXPECT_EQ(notes.size(), 1u);
}

TEST(ForeignGradients, CssIsBlendedPremultipliedAndBentByHints) {
  const auto cssStretch = [](const Straight& a, const Straight& b, double t, double hint) {
    const double share = std::pow(t, std::log(0.5) / std::log(hint));
    const double alpha = (1 - share) * a[3] + share * b[3];
    Straight color{0, 0, 0, alpha};
    for (std::size_t i = 0; i < 3; ++i) color[i] = ((1 - share) * a[i] * a[3] + share * b[i] * b[3]) / alpha;
    return color;
  };
  struct Row {
    const char* css;
    Straight first, last;
    double hint;
  };
  const Row rows[] = {
      {"linear-gradient(red, transparent)", {1, 0, 0, 1}, {0, 0, 0, 0}, 0.5},
      {"linear-gradient(rgb(0 255 0 / 10%), rgba(0, 0, 255, 1))", {0, 1, 0, 0.1}, {0, 0, 1, 1}, 0.5},
      {"linear-gradient(#fff8, 80%, #0000)", {1, 1, 1, 136 / 255.0}, {1, 1, 1, 0}, 0.8},
      {"linear-gradient(black, 5%, white)", {0, 0, 0, 1}, {1, 1, 1, 1}, 0.05},
      {"linear-gradient(rgb(255 0 0 / 0.0001), lime)", {1, 0, 0, 0.0001}, {0, 1, 0, 1}, 0.5},
      {"linear-gradient(red 0%, rgb(0 0 255 / 50%))", {1, 0, 0, 1}, {0, 0, 1, 0.5}, 0.5},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.css);
    host::Notes notes;
    const Scale scale(host::gradientOfCss(row.css, notes));
    largestDifference([&](double x) { return scale.at(x); },
                      [&](double x) { return cssStretch(row.first, row.last, x, row.hint); },
                      positionsAround({0, row.hint, 1}));
  }
}

// The stops that the formats come to where nothing has to be added, as text.
TEST(ForeignGradients, StopsThatNeedNoOthersStayThemselves) {
  const auto text = [](const host::GradientStops& stops) { return host::textOfGradient(stops); };
  host::Notes notes;
  const std::pair<const char*, const char*> css[] = {
      {"background: linear-gradient(to right, red, white 20% 40%, blue);\n",
       "#ff0000 0%, #ffffff 20%, #ffffff 40%, #0000ff 100%"},
      {"linear-gradient(90deg in srgb, red 50%, lime 20%, blue)",
       "#ff0000 constant 0%, #00ff00 49.999999999999994%, #0000ff 100%"},
      {"LINEAR-GRADIENT(Red 25%, BLUE 25%, blue 50%, #00f 50%, #fff)",
       "#ff0000 constant 0%, #0000ff 24.999999999999997%, #0000ff 50%, #ffffff 100%"},
      {"linear-gradient(red, blue 60%, lime 30%, white)",
       "#ff0000 0%, #0000ff 59.99999999999999%, #00ff00 60%, #ffffff 100%"},
      {"linear-gradient(#f008, #00f8)", "#ff0000 0%, #0000ff 100%, opacity 53.33333333333333% smooth 0%"},
      {"linear-gradient(red -50%, blue 150%)", "#ff0000 -50%, #0000ff 150%"},
  };
  for (const auto& [from, to] : css) {
    EXPECT_EQ(text(host::gradientOfCss(from, notes)), to) << from;
  }
  EXPECT_TRUE(notes.empty()) << notes[0];
  EXPECT_EQ(text(host::gradientOfSvg(documentText("dusk.svg"), notes)),
            "#0b1026 0%, #783c5a 39.999999999999997%, #ffd700 40%, color(srgb 0.25 0.75 0.75) 100%, "
            "opacity 100% 0%, opacity 50% 39.999999999999997%, "
            "opacity 100% 40%, opacity 25% 100%");
  ASSERT_EQ(notes.size(), 1u);
  EXPECT_EQ(notes[0], "the first of its 2 gradients was read, \"placed\"");
  notes.clear();
  EXPECT_EQ(text(host::gradientOfGimp("GIMP Gradient\n1\n0 0.5 1 0 0 0 0.5 1 1 1 1 0 0 3 2\n", notes)),
            "#ffffff 0%, #000000 100%, opacity 100% 0%, opacity 0% 100%");
  EXPECT_EQ(notes.size(), 1u) << "of the palette's colors";
  notes.clear();
  host::gradientOfCss("linear-gradient(to left, red, blue)", notes);
  EXPECT_EQ(notes, host::Notes{"its direction has no place in a gradient and is left out"});
}

namespace {

host::GradientStops randomGradient(std::mt19937& random) {
  std::uniform_real_distribution<double> unit(0, 1);
  const auto some = [&] { return random() % 4 == 0 ? std::round(unit(random) * 4) / 4 : unit(random); };
  host::GradientStops stops;
  for (std::size_t i = 0, count = 1 + random() % 5; i < count; ++i) {
    stops.colors.push_back(
        {some(), 0.1 + 0.8 * unit(random), static_cast<int>(random() % 3), {some(), some(), some()}});
  }
  for (std::size_t i = 0, count = 1 + random() % 3; i < count; ++i) {
    stops.opacities.push_back({some(), 0.1 + 0.8 * unit(random), static_cast<int>(random() % 3), {some()}});
  }
  return stops;
}

}  // namespace

// What is written for other programs and read again shows the same; CSS is met twice. At a jump two colors meet, of
// which the formats choose one or the other.
TEST(ForeignGradients, AreWrittenWithin255th) {
  std::mt19937 random(20);
  for (int round = 0; round < 60; ++round) {
    const host::GradientStops stops = randomGradient(random);
    SCOPED_TRACE(host::textOfGradient(stops));
    const Scale scale(stops);
    std::vector<double> jumps;
    for (const auto& stop : stops.colors) jumps.push_back(stop.position);
    for (const auto& stop : stops.opacities) jumps.push_back(stop.position);
    std::vector<double> positions = positionsAround({});
    std::erase_if(positions, [&](double x) {
      return std::ranges::any_of(jumps, [&](double jump) { return std::abs(x - jump) < 1e-12; });
    });
    host::Notes notes;
    std::string reason;
    const auto css = host::cssOfGradient(stops, notes, &reason);
    const auto svg = host::svgOfGradient(stops, notes, &reason);
    const auto gimp = host::gimpOfGradient(stops, notes, &reason);
    ASSERT_TRUE(css && svg && gimp) << reason;
    const auto at = [](const Scale& of) { return [&of](double x) { return of.at(x); }; };
    const Scale svgScale(host::gradientOfSvg(*svg, notes));
    largestDifference(at(svgScale), at(scale), positions);
    const Scale gimpScale(host::gradientOfGimp(*gimp, notes));
    largestDifference(at(gimpScale), at(scale), positions);
    const Scale cssScale(host::gradientOfCss(*css, notes));
    const auto half = [&](const Scale& of) {
      return [&of](double x) {
        Straight color = of.at(x);
        for (double& component : color) component /= 2;
        return color;
      };
    };
    largestDifference(half(cssScale), half(scale), positions);
    if (HasFailure()) break;
  }
}

// Jumps, which take two stops one number apart, are jumps again.
TEST(ForeignGradients, AreWrittenWithoutMoreStopsThanTheyHave) {
  host::Notes notes;
  const host::GradientStops stops = host::gradientOfPalette(documentText("sea.cpt"), notes);
  std::string reason;
  const std::string css = host::cssOfGradient(stops, notes, &reason).value_or(reason);
  EXPECT_EQ(css,
            "linear-gradient(to right, #141e50 0%, #285aa0 36.363636363636365%, #bee6f0 72.72727272727273%, "
            "#5a8c3c 72.72727272727273%, #5a8c3c 77.27272727272726%, #aa965a 77.27272727272726%, #ffffff 100%)\n");
  EXPECT_TRUE(notes.empty());
}

TEST(ForeignGradients, WhatCannotBeWrittenIsNamed) {
  const std::pair<const char*, const char*> rows[] = {
      {"none", "it has no colors"},
      {"red, blue, opacity none", "it has no opacities"},
      {"red interpolation(7), blue", "interpolation 7"},
      {"color(srgb 1.5 0 0) 25%", "at 25% has the value 1.5, beyond 0 to 1"},
  };
  for (const auto& [text, said] : rows) {
    host::Notes notes;
    const host::GradientStops stops = host::gradientOfText(text, notes);
    for (const auto write : {host::cssOfGradient, host::svgOfGradient, host::gimpOfGradient}) {
      std::string reason;
      EXPECT_FALSE(write(stops, notes, &reason)) << text;
      EXPECT_NE(reason.find(said), std::string::npos) << reason;
    }
  }
}
