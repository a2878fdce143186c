// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramBitmap.h"
#include "HistogramEditor/VRTHistogramEditorLayout.h"
#include "HistogramEditor/VRTHistogramGraph.h"
#include "HistogramEditor/VRTHistogramGutterGeometry.h"
#include "HistogramEditor/VRTHistogramReadout.h"

// Geometry and pixels, without views.

namespace {

// In exact steps, by whole numbers: counts between bins as 256ths of a column's width.
std::int64_t expectedHeight(const TCHistogram::Counts& counts, std::int64_t x, std::int64_t width,
                            std::int64_t height) {
  const std::int64_t largest = *std::max_element(std::begin(counts), std::end(counts));
  const std::int64_t bin = x * 256 / width, rest = x * 256 % width;
  const std::int64_t sum = (width - rest) * counts[bin] + rest * counts[bin + 1];
  const std::int64_t count = (2 * sum + width) / (2 * width);
  return largest == 0 ? 0 : (2 * count * height + largest) / (2 * largest);
}

TEST(HistogramGraph, HeightsInterpolateAndRound) {
  TCHistogram::Counts counts = {};
  for (std::uint32_t i = 0; i < TCHistogram::Bins; ++i) counts[i] = (i * 7919 + 31) % 1013 * ((i + 1) % 3);
  ASSERT_GT(counts[255], 0u) << "so that the last columns lean on an empty neighbour";
  for (const std::uint32_t width : {1u, 2u, 100u, 208u, 255u, 256u, 257u, 600u}) {
    for (const std::uint32_t height : {1u, 72u, 133u}) {
      const auto heights = VRTHistogramHeights(counts, width, height, VRTHistogramScale::Linear);
      ASSERT_EQ(heights.size(), width);
      for (std::uint32_t x = 0; x < width; ++x) {
        ASSERT_EQ(heights[x], expectedHeight(counts, x, width, height)) << x << " of " << width << " x " << height;
      }
    }
  }
  TCHistogram::Counts two = {};
  two[10] = 1000000;
  two[20] = 1000;
  const auto heights = VRTHistogramHeights(two, 256, 100, VRTHistogramScale::Logarithmic);
  EXPECT_TRUE(heights[0] == 0 && heights[10] == 100 && heights[20] == 50);
}

TEST(HistogramGraph, NoCountsNoPixelsAndStrangeChannels) {
  const TCHistogram histogram;
  NSBitmapImageRep bitmap(30, 20, 128);
  for (const auto scale : {VRTHistogramScale::Linear, VRTHistogramScale::Logarithmic}) {
    VRTPaintHistogram(bitmap, histogram.rgb, scale);
    const std::array<std::uint8_t, 4> ground = {181, 187, 200, 255};
    EXPECT_TRUE(std::equal(ground.begin(), ground.end(), bitmap.bitmapData() + 19 * 128 + 4 * 29));
  }
  for (const NSSize size : {NSSize{0, 20}, NSSize{30, -4}, NSSize{std::nan(""), 3}}) {
    const VRTHistogramBitmap none = VRTMakeHistogramBitmap(size);
    VRTPaintHistogram(*none.representation, histogram.rgb, VRTHistogramScale::Linear);
    VRTPaintGreyRamp(*none.representation);
    EXPECT_EQ(none.representation->pixelsWide() * none.representation->pixelsHigh(), 0u);
  }
  EXPECT_EQ(VRTMakeHistogramBitmap({30.9, 7.5}).representation->bytesPerRow(), 128u);
  const std::pair<int, const TCHistogram::Counts*> expected[] = {
      {-1, &histogram.rgb}, {0, &histogram.rgb},   {1, &histogram.red}, {2, &histogram.green},
      {3, &histogram.blue}, {4, &histogram.alpha}, {7, &histogram.rgb}};
  for (const auto& [channel, counts] : expected) EXPECT_EQ(&VRTHistogramCountsOfChannel(histogram, channel), counts);
}

TEST(HistogramGutterGeometry, GammaIsAPlaceBetweenBlackAndWhite) {
  for (const auto& [black, white] : {std::pair{0.2, 0.7}, {0.9, 0.1}}) {
    for (const double gamma : {0.1, 1.0, 3.5}) {
      const double position = VRTHistogramPositionOfGamma(black, white, gamma);
      EXPECT_NEAR(VRTHistogramGammaOfPosition(black, white, position), gamma, 1e-9);
    }
  }
  EXPECT_EQ(VRTHistogramGammaOfPosition(0.5, 0.5, 0.5), 5);
  for (const double one : {std::nan(""), HUGE_VAL}) EXPECT_EQ(VRTHistogramClampToUnit(one), 1);
  EXPECT_EQ(VRTHistogramClampToUnit(-0.1), 0);
}

// Values 0 and 1 of the gutters stand at the inner edges of graph and ramp.
TEST(HistogramEditorLayout, TracksAlign) {
  for (const NSSize size : {NSSize{218, 137}, NSSize{400, 300}, NSSize{120, 100}}) {
    const VRTHistogramEditorLayout layout(size);
    const VRTHistogramEditorLayout both(size, true);
    EXPECT_TRUE(NSEqualSizes(both.histogram.size, layout.histogram.size));
    EXPECT_LT(both.popUp.origin.x + both.popUp.size.width, both.sidePopUp.origin.x);
    EXPECT_EQ(both.sidePopUp.origin.x + both.sidePopUp.size.width, layout.popUp.origin.x + layout.popUp.size.width);
    for (const NSRect gutter : {layout.gutterIn, layout.gutterOut}) {
      const VRTHistogramGutterGeometry geometry(NSMakeRect(0, 0, gutter.size.width, gutter.size.height));
      for (const NSRect framed : {layout.histogram, layout.gradient}) {
        const double left = framed.origin.x + VRTHistogramFrameWidth;
        EXPECT_EQ(gutter.origin.x + geometry.centreOfHandle(0), left);
        EXPECT_EQ(gutter.origin.x + geometry.centreOfHandle(1), left + VRTHistogramPictureSize(framed).width);
      }
    }
    const NSRect rows[] = {layout.gutterOut, layout.gradient, layout.gutterIn, layout.histogram, layout.popUp};
    double top = 0;
    for (const NSRect row : rows) {
      EXPECT_TRUE(row.origin.y >= top && row.size.height > 8);
      top = row.origin.y + row.size.height;
    }
    EXPECT_EQ(top, size.height);
  }
}

// The readout says which levels a bin holds by how they are counted.
TEST(HistogramReadout, LevelsAreThoseThatAreCountedThere) {
  QLocale::setDefault(QLocale::c());
  const std::pair<std::uint32_t, int> depths[] = {{8, 255}, {16, 65535}};
  for (const auto& [bits, most] : depths) {
    std::map<std::size_t, std::pair<int, int>> levels;
    for (int level = 0; level <= most; ++level) {
      const auto byte = static_cast<std::uint8_t>(level);
      const auto word = static_cast<std::uint16_t>(level);
      const std::uint8_t bytes[4] = {byte, byte, byte, byte};
      const std::uint16_t words[4] = {word, word, word, word};
      TCHistogram counted;
      const void* pixel = bits == 8 ? static_cast<const void*>(bytes) : words;
      ASSERT_TRUE(TCCountHistogram({pixel, sizeof words, 1, 1, bits, true}, counted));
      const auto bin = static_cast<std::size_t>(std::find(counted.red, counted.red + 256, 1u) - counted.red);
      levels.try_emplace(bin, level, level).first->second.second = level;
    }
    EXPECT_EQ(levels.rbegin()->first, VRTHistogramLastBin);
    for (const auto& [bin, range] : levels) {
      const QString first = QString::number(range.first), last = QString::number(range.second);
      const QString text = VRTHistogramLevelText(bin, bits);
      EXPECT_TRUE(text.startsWith(first == last ? first + " (" : first + QChar(0x2013) + last + " ("))
          << text.toStdString();
    }
  }
  EXPECT_EQ(VRTHistogramLevelText(51, 32), "0.200");
  EXPECT_EQ(VRTHistogramLevelText(254, 32), QString::fromUtf8("\u2265 1.000"));
}

TEST(HistogramReadout, SharesAreOfTheChannel) {
  QLocale::setDefault(QLocale::c());
  TCHistogram::Counts counts = {};
  EXPECT_EQ(VRTHistogramReadoutAt(counts, 3).share, 0) << "of nothing";
  counts[0] = 10;
  counts[7] = 4000000000;
  counts[8] = 3000000000;
  counts[254] = 70;
  const VRTHistogramReadout readout = VRTHistogramReadoutAt(counts, 7);
  EXPECT_EQ(readout.count, 4000000000u);
  EXPECT_NEAR(readout.share, 4 / 7.0, 1e-6);
  EXPECT_EQ(VRTHistogramPercentText(readout.black), "< 0.01 %") << "more than nothing";
  const std::pair<double, const char*> texts[] = {
      {0, "0 %"}, {0.0084, "0.84 %"}, {0.5, "50.0 %"}, {0.99951, "100 %"}, {1, "100 %"}};
  for (const auto& [share, text] : texts) EXPECT_EQ(VRTHistogramPercentText(share), text);
  EXPECT_EQ(VRTHistogramReadoutAt(counts, 999).bin, VRTHistogramLastBin);

  for (const double width : {208.0, 256.0, 1000.0}) {
    for (std::size_t bin = 0; bin <= VRTHistogramLastBin; ++bin) {
      EXPECT_EQ(VRTHistogramBinOfColumn(VRTHistogramColumnOfBin(bin, width), width), bin);
    }
    EXPECT_EQ(VRTHistogramBinOfColumn(-5, width), 0u);
    EXPECT_EQ(VRTHistogramBinOfColumn(width + 5, width), VRTHistogramLastBin);
  }
  EXPECT_EQ(VRTHistogramBinOfColumn(1, 0), VRTHistogramLastBin);
}

}  // namespace
