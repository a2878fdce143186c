// SPDX-License-Identifier: BSD-3-Clause
#include "Tests/Effects/Harness.h"

#include <cmath>

namespace {

const char* const suffixes[] = {"RGB", "Red", "Green", "Blue", "Alpha"};

PropertyList levels(const std::vector<std::pair<std::string, double>>& changes) {
  PropertyList state = neutralLevels();
  for (const auto& [key, value] : changes) state.set(key, PropertyList::real(value));
  return state;
}

ConstBitmap throughLevels(const Bitmap& image, const PropertyList& state) {
  const auto patch = effectNamed("Levels");
  setImage(*patch, "inputImage", image);
  setState(*patch, "inputLevels", state);
  return rendered(*patch);
}

double greyThrough(double grey, const PropertyList& state) {
  const Bitmap image = makeImage(layouts[3], 1, 1, {grey, grey, grey, 1});
  return pixelAt(*throughLevels(image, state), layouts[3], 0, 0)[0];
}

double parameter(const PropertyList& state, const char* name, int channel) {
  return state.find(std::string(name) + suffixes[channel])->doubleValue();
}

double limited(double value) {
  return std::fmin(std::fmax(value, 0), 1);
}

// One channel's levels from their definition; limits apply at integer depths, and to opacity.
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
  const ConstBitmap out = throughLevels(image, levels({{"gammaGreen", 2.2}}));
  const auto before = pixelsOf(*image, layouts[3]), after = pixelsOf(*out, layouts[3]);
  for (std::size_t i = 0; i < before.size(); ++i) {
    for (const int c : {0, 2, 3}) ASSERT_NEAR(after[i][c], before[i][c], 1e-6) << "float, pixel " << i;
  }
}

TEST(Levels, FollowTheDefinition) {
  const PropertyList settings[] = {
      levels({{"blackInRGB", 0.2}, {"whiteInRGB", 0.7}, {"gammaRGB", 1.8}}),
      levels({{"blackOutRGB", 0.25}, {"whiteOutRGB", 0.5}, {"whiteInRed", 0.4}, {"gammaRed", 0.45}}),
      levels({{"blackInBlue", 0.9}, {"whiteInBlue", 0.1}}),
      levels({{"gammaGreen", 2.2}}),
      levels({{"blackOutGreen", 1}, {"whiteOutGreen", 0}, {"gammaGreen", 5}}),
      levels({{"blackOutAlpha", 0.3}, {"whiteOutAlpha", 0.8}, {"gammaAlpha", 2}}),
      levels({{"blackInAlpha", 0.5}, {"gammaRGB", 1.5}}),
      levels({{"blackOutRed", -0.5}, {"whiteOutRed", 1.5}}),
      levels({{"blackInAlpha", 0.25}, {"whiteInAlpha", 0.5}, {"blackOutAlpha", -0.5}, {"whiteOutAlpha", 1.5}}),
  };
  for (const PropertyList& state : settings) {
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

TEST(Levels, EverySettingHasADefinedResult) {
  struct Row {
    const char* what;
    std::vector<std::pair<std::string, double>> changes;
    double in;
    double out;
  };
  const double nan = std::nan("");
  const Row rows[] = {
      {"equal points: below", {{"blackInRGB", 0.5}, {"whiteInRGB", 0.5}}, 0.4, 0},
      {"equal points: at", {{"blackInRGB", 0.5}, {"whiteInRGB", 0.5}}, 0.5, 1},
      {"gamma 0: between the points", {{"gammaRGB", 0}}, 0.75, 0},
      {"gamma 0: at the white point", {{"gammaRGB", 0}}, 1, 1},
      {"a negative gamma is as 0", {{"gammaRGB", -2}}, 0.75, 0},
      {"gamma NaN is as 1", {{"gammaRGB", nan}, {"whiteOutRGB", 0.5}}, 0.5, 0.25},
      {"points that are NaN are the defaults", {{"blackInRGB", nan}, {"whiteInRGB", nan}, {"gammaRGB", 2}}, 0.25, 0.5},
      {"all zero, as a state without keys", {{"whiteInRGB", 0}, {"whiteOutRGB", 0}, {"gammaRGB", 0}}, 0.6, 0},
      {"floats keep what is below black", {{"gammaRGB", 2}}, -0.25, -0.25},
      {"floats keep what is above white", {{"whiteInRGB", 0.5}}, 2, 4},
  };
  for (const Row& row : rows) {
    EXPECT_NEAR(greyThrough(row.in, levels(row.changes)), row.out, 1e-6) << row.what;
  }
}

}  // namespace
