// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Effects/Harness.h"
#include "Tests/Support/Tables.h"

namespace {

const char* const suffixes[] = {"RGB", "Red", "Green", "Blue", "Alpha"};

// Neutral but for these: "blackInRGB=0.2 gammaRed=2".
PropertyList levels(const std::string& changes) {
  PropertyList state = neutralLevels();
  std::istringstream words(changes);
  for (std::string word; words >> word;) {
    const std::size_t sign = word.find('=');
    state.set(word.substr(0, sign), PropertyList::real(std::strtod(word.c_str() + sign + 1, nullptr)));
  }
  return state;
}

ConstBitmap throughLevels(const Bitmap& image, const PropertyList& state) {
  return rendered(*effectNamed("Levels", {{"inputImage", image}, {"inputLevels", state}}));
}

double parameter(const PropertyList& state, const char* name, int channel) {
  return state.find(std::string(name) + suffixes[channel])->doubleValue();
}

double limited(double value) {
  return std::fmin(std::fmax(value, 0), 1);
}

// One channel's levels from their definition; limits apply at integer depths, and to alpha.
double stage(const PropertyList& state, int channel, double value, bool limits) {
  const double blackIn = parameter(state, "blackIn", channel);
  const double blackOut = parameter(state, "blackOut", channel);
  double t = (value - blackIn) / (parameter(state, "whiteIn", channel) - blackIn);
  if (limits) t = limited(t);
  if (t > 0) t = std::pow(t, 1 / parameter(state, "gamma", channel));
  const double out = blackOut + t * (parameter(state, "whiteOut", channel) - blackOut);
  return limits ? limited(out) : out;
}

Values expected(const PropertyList& state, const Layout& layout, const Values& in) {
  const bool integer = layout.code != 9;
  const auto stored = [&](double value) { return integer ? std::floor(value * layout.full + 0.5 + 1e-7) : value; };
  const double alpha = in[3] / layout.full;
  const double newAlpha = stored(stage(state, 4, alpha, true)) / layout.full;
  Values out{0, 0, 0, stored(newAlpha)};
  for (int c = 0; c < 3; ++c) {
    if (alpha == 0 && newAlpha == 0) {
      out[c] = in[c];
      continue;
    }
    double straight = alpha > 0 ? in[c] / layout.full / alpha : in[c] / layout.full;
    if (integer) straight = stored(limited(straight)) / layout.full;
    const double toned = stage(state, c + 1, stage(state, 0, straight, integer), integer);
    out[c] = stored(stored(toned) / layout.full * newAlpha);
  }
  return out;
}

constexpr double rounding = 1.2e-7;  // of a float between 0.5 and 1, relative to 1

// The pixel with its straight color moved by a little; alpha stays.
Values nudged(const Values& in, double by) {
  return {in[0] + by * in[3], in[1] + by * in[3], in[2] + by * in[3], in[3]};
}

TEST(Levels, NeutralChangesNoByteAtAnyDepth) {
  for (const Layout& layout : layouts) {
    const Bitmap image = randomImage(layout, 67, 31, Noise::Anything, 3);
    EXPECT_EQ(pixelBytes(*throughLevels(image, neutralLevels())), pixelBytes(*image)) << layout.name;
  }
}

TEST(Levels, AChangeOfOneColorLeavesTheOthersAsTheyAre) {
  const Bitmap image = randomImage(layouts[3], 67, 31, Noise::Premultiplied, 4);
  const ConstBitmap out = throughLevels(image, levels("gammaGreen=2.2"));
  const auto before = pixelsOf(*image, layouts[3]), after = pixelsOf(*out, layouts[3]);
  for (std::size_t i = 0; i < before.size(); ++i) {
    for (const int c : {0, 2, 3}) ASSERT_NEAR(after[i][c], before[i][c], 1e-6) << "float, pixel " << i;
  }
}

TEST(Levels, FollowTheDefinition) {
  for (const Row& row : rowsOf("Levels.txt")) {
    if (row[0] != "settings") continue;
    const PropertyList state = levels(row[1]);
    for (const Layout& layout : layouts) {
      const Bitmap image = randomImage(layout, 61, 40, Noise::Premultiplied, 8);
      const ConstBitmap out = throughLevels(image, state);
      const auto before = pixelsOf(*image, layout), after = pixelsOf(*out, layout);
      for (std::size_t i = 0; i < before.size(); ++i) {
        const Values &in = before[i], &got = after[i];
        if (layout.code != 9) {
          ASSERT_EQ(got, expected(state, layout, in)) << layout.name << " pixel " << i;
          continue;
        }
        // Just above the black point gamma can be infinitely steep: a float result lies between those of values one
        // rounding lower and higher.
        const Values lower = expected(state, layout, nudged(in, -rounding));
        const Values higher = expected(state, layout, nudged(in, rounding));
        for (int c = 0; c < 4; ++c) {
          ASSERT_GE(got[c], std::fmin(lower[c], higher[c]) - 2e-5) << "channel " << c << " of pixel " << i;
          ASSERT_LE(got[c], std::fmax(lower[c], higher[c]) + 2e-5) << "channel " << c << " of pixel " << i;
        }
      }
    }
  }
}

TEST(Levels, EveryWordFollowsTheDefinition) {
  double next = 0;
  const Bitmap image = makeImage(layouts[2], 256, 256, [&] { return Values{next, next, 65535 - next, next++}; });
  for (const Row& row : rowsOf("Levels.txt")) {
    if (row[0] != "settings") continue;
    const PropertyList state = levels(row[1]);
    expectPixels(throughLevels(image, state), layouts[2], 0,
                 [&](auto x, auto y) { return expected(state, layouts[2], pixelAt(*image, layouts[2], x, y)); });
  }
}

TEST(Levels, EverySettingHasADefinedResult) {
  for (const Row& row : rowsOf("Levels.txt")) {
    if (row[0] == "settings") continue;
    const double grey = std::stod(row[2]);
    const Bitmap image = makeImage(layouts[3], 1, 1, {grey, grey, grey, 1});
    EXPECT_NEAR(pixelAt(*throughLevels(image, levels(row[1])), layouts[3], 0, 0)[0], std::stod(row[3]), 1e-6) << row[0];
  }
}

}  // namespace
