// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelGradientSample.h"
#include "GradientEditor/VRTGradientEditorLayout.h"
#include "GradientEditor/VRTGradientGutterMap.h"
#include "GradientEditor/VRTGradientKeyboard.h"
#include "Tests/TarnKit/RecordingView.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

VRTGradientGutterGeometry gutter(double width) {
  return VRTGradientGutterGeometry(NSMakeRect(0, 0, width, 26));
}

}  // namespace

TEST(GutterGeometry, PlacesTrackMarkersAndStrip) {
  const auto g = gutter(213);
  for (const double position : {0.0, 0.5, 1.0}) EXPECT_EQ(g.xOfPosition(position), 5 + 203 * position);
  EXPECT_EQ(g.sampleMarker(0), NSMakeRect(0, 0, 11, 14));
  EXPECT_EQ(g.sampleMarker(1), NSMakeRect(203, 0, 11, 14));
  EXPECT_EQ(g.swatch(1), NSMakeRect(205, 2, 7, 7));
  EXPECT_EQ(g.strip(), NSMakeRect(3, 13, 207, 13));
  // 0.1 and 0.7 have no exact form: the middle is the rounded one of single precision.
  EXPECT_EQ(g.middleMarker(0.1, 0.9, 0.75), NSMakeRect(203 * static_cast<double>(0.7f) + 5 - 5, 0, 11, 14));
}

TEST(GutterGeometry, FunctionsAreInverse) {
  for (const double width : {11.0, 60.0, 213.0, 1177.0}) {
    const auto g = gutter(width);
    for (double position = -0.25; position <= 1.25; position += 0.03125) {
      EXPECT_NEAR(g.positionOfX(g.xOfPosition(position)), position, 1e-12) << width;
      const double middle = VRTGradientGutterGeometry::positionOfMiddle(0.2, 0.65, position);
      EXPECT_NEAR(VRTGradientGutterGeometry::middleOfPosition(0.2, 0.65, middle), position, 1e-12);
    }
  }
  EXPECT_EQ(gutter(10).positionOfX(7), 0) << "a track without length";
  EXPECT_EQ(gutter(0).positionOfX(7), 0);
  EXPECT_EQ(VRTGradientGutterGeometry::middleOfPosition(0.4, 0.4, 0.5), 0) << "a segment without length";
  EXPECT_EQ(VRTClampToUnit(kNaN), 0);
  EXPECT_EQ(VRTClampToUnit(kInfinity), 1);
}

TEST(GutterGeometry, OnlyTheRiseTakesADragOff) {
  const auto g = gutter(213);
  const struct {
    double position, rise;
    bool on;
  } cases[] = {{0.5, 0, true},    {0.5, 12.5, true}, {0.5, 13, false}, {0.5, -13.5, true},
               {0.5, -14, false}, {-7.5, 0, true},   {-8, 0, false},   {209.5, 0, true},
               {210, 0, false},   {0, kNaN, false},  {-3.0, 12, true}, {99.0, 12, true}};
  for (const auto& c : cases) EXPECT_EQ(g.dragIsOnGutter(c.position, c.rise), c.on) << c.position << " " << c.rise;
}

class GutterHits : public testing::Test {
 protected:
  GutterHits() {
    for (Stop* stop : {&a, &b, &c}) {
      map[stop->position] = {VortoColor(), stop->middle, VRTGradientSmooth, stop};
    }
  }
  // "a" for the marker of a, "a'" for the middle point after it, "" for nothing.
  std::string hit(double x, double y, const VRTGradientSelection& selection) const {
    bool middle = false;
    const auto found = VRTHitTestGradientGutter(map, gutter(210), selection, {x, y}, &middle);
    if (found == map.end()) return middle ? "?" : "";
    const auto* sample = found->second.sample;
    return std::string(sample == &a ? "a" : sample == &b ? "b" : "c") + (middle ? "'" : "");
  }

  using Stop = VRTChannelGradientSample;
  // x of a: 5, of b: 105, of c: 205; of the middle points 55 and 180.
  Stop a{VortoString(), 0, 0.5, VRTGradientSmooth};
  Stop b{VortoString(), 0.5, 0.75, VRTGradientSmooth};
  Stop c{VortoString(), 1, 0.5, VRTGradientSmooth};
  VRTGradientGutterMap map;
};

TEST_F(GutterHits, MarkersAreHalfOpen) {
  for (const auto& [x, y] : {std::pair{100.0, 0.0}, {110.5, 13.5}}) EXPECT_EQ(hit(x, y, {}), "b") << x;
  for (const auto& [x, y] : {std::pair{99.5, 5.0}, {111, 5}, {105, 14}, {105, -0.5}, {kNaN, 5}}) {
    EXPECT_EQ(hit(x, y, {}), "") << x << ", " << y;
  }
}

TEST_F(GutterHits, MiddlePointsAreHitBesideTheSelection) {
  const struct {
    VRTGradientSelection selection;
    const char *first, *second;  // at the middle points of a and of b
  } cases[] = {
      {{}, "", ""},           {{&a, false}, "a'", ""}, {{&b, false}, "a'", "b'"}, {{&c, false}, "", "b'"},
      {{&a, true}, "a'", ""}, {{&b, true}, "", "b'"},  {{&c, true}, "", ""},
  };
  for (const auto& each : cases) {
    EXPECT_EQ(hit(55, 7, each.selection), each.first);
    EXPECT_EQ(hit(180, 7, each.selection), each.second);
  }
}

TEST_F(GutterHits, EarlierMarkersWinWhereTheyOverlap) {
  Stop d(VortoString(), 0.53, 0.5, VRTGradientSmooth);  // x 111: touches b's marker
  map[d.position] = {VortoColor(), 0.5, VRTGradientSmooth, &d};
  EXPECT_EQ(hit(108, 7, {}), "b");
  map.begin()->second.middle = 0.98;  // a's middle point, x 103
  EXPECT_EQ(hit(105, 7, {&a, false}), "a'") << "a comes before b";
  EXPECT_EQ(hit(109.5, 7, {&a, false}), "b");
}

TEST(GradientKeyboard, FindsAFreePlace) {
  const struct {
    double from, target;
    std::vector<double> others;
    double expected;
  } cases[] = {
      {0.5, 0.51, {0, 1}, 0.51},
      {0.5, -3, {0.2}, 0},
      {0.995, 1.005, {0.2}, 1},
      {0.5, 0, {0}, 0.001},
      {0.5, 1, {1}, 0.999},
      {0.5, 1, {1, 0.999, 0.998}, 0.997},
      {0.5, 0.51, {0.51}, 0.511},
      {0.5, 0.51, {0.5102}, 0.511},
      {0.5, 0.49, {0.49, 0.489}, 0.488},
      {0.001, 0, {0}, 0.001},  // nowhere left to go
      {0.0004, 0, {0}, 0.0004},
      {0, -0.01, {}, 0},
      {0.5, kNaN, {}, 0},
      {7, 7.01, {1}, 0.999},
  };
  for (const auto& each : cases) {
    EXPECT_NEAR(VRTFreeGradientPosition(each.from, each.target, each.others), each.expected, 1e-12)
        << each.from << " to " << each.target;
  }
}

TEST(EditorLayout, AlignsItsRows) {
  for (const double width : {120.0, 236.0, 900.0}) {
    const VRTGradientEditorLayout with(width, true);
    EXPECT_EQ(with.panel.height, 75);
    EXPECT_EQ(with.gutterRGB, NSMakeRect(0, 0, width - 23, 26));
    EXPECT_EQ(with.gutterAlpha, NSMakeRect(0, 50, width - 23, 26));
    const VRTGradientGutterGeometry g(NSMakeRect(0, 0, with.gutterRGB.size.width, 26));
    EXPECT_EQ(with.preview, NSMakeRect(g.strip().origin.x, 26, g.strip().size.width, 24));
    for (const NSRect button : {with.rgbSpread, with.rgbFlop, with.alphaSpread, with.alphaFlop}) {
      EXPECT_EQ(button.origin.x + button.size.width, width);
      EXPECT_GE(button.origin.x, with.gutterRGB.size.width);
      EXPECT_LE(button.origin.y + button.size.height, 75);
    }
    EXPECT_FALSE(NSIntersectsRect(with.rgbSpread, with.rgbFlop));
    EXPECT_FALSE(NSIntersectsRect(with.alphaSpread, with.alphaFlop));
    const VRTGradientEditorLayout without(width, false);
    EXPECT_EQ(without.panel.height, 25);
    EXPECT_EQ(without.preview, NSMakeRect(3, 0, width - 29, 25));
  }
}
