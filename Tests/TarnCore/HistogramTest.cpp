// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCHistogram.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>
#include <numeric>
#include <vector>

// Histograms of whole images.

namespace {

std::uint64_t sumOf(const TCHistogram::Counts& counts) {
  return std::accumulate(std::begin(counts), std::end(counts), std::uint64_t{0});
}

bool isEmpty(const TCHistogram& histogram) {
  return sumOf(histogram.rgb) + sumOf(histogram.red) + sumOf(histogram.green) + sumOf(histogram.blue) +
             sumOf(histogram.alpha) ==
         0;
}

TCHistogram filledHistogram() {
  TCHistogram histogram;
  histogram.red[3] = 1;
  histogram.rgb[256] = 9;
  return histogram;
}

TEST(Histogram, ChannelsFollowTheOrder) {
  const std::uint8_t pixel[4] = {10, 20, 30, 40};
  TCHistogram histogram = filledHistogram();
  ASSERT_TRUE(TCCountHistogram({pixel, 4, 1, 1, 8, true}, histogram));
  EXPECT_EQ(histogram.red[10] + histogram.green[20] + histogram.blue[30] + histogram.alpha[40], 4u);
  ASSERT_TRUE(TCCountHistogram({pixel, 4, 1, 1, 8, false}, histogram));
  EXPECT_EQ(histogram.red[30] + histogram.green[20] + histogram.blue[10] + histogram.alpha[40], 4u);
  EXPECT_EQ(histogram.rgb[10] + histogram.rgb[20] + histogram.rgb[30], 3u);
  EXPECT_EQ(histogram.rgb[40], 0u);
  EXPECT_EQ(sumOf(histogram.rgb), 3u);
  EXPECT_EQ(sumOf(histogram.red), 1u);
}

TEST(Histogram, WhiteCountsInTheLastBinButOne) {
  const std::vector<std::uint8_t> white(4 * 37 * 11, 255);
  TCHistogram histogram;
  ASSERT_TRUE(TCCountHistogram({white.data(), 4 * 37, 37, 11, 8, true}, histogram));
  EXPECT_EQ(histogram.rgb[254], 3u * 37 * 11);
  for (const auto* counts : {&histogram.red, &histogram.green, &histogram.blue, &histogram.alpha}) {
    EXPECT_EQ((*counts)[254], 37u * 11);
    EXPECT_EQ((*counts)[255], 0u);
  }
}

TEST(Histogram, WhatIsNoImageCountsNothing) {
  const std::vector<std::uint8_t> pixels(64, 7);
  constexpr std::size_t huge = std::numeric_limits<std::size_t>::max();
  const TCHistogramImage images[] = {
      {nullptr, 16, 4, 4, 8, true},                                        // no address
      {pixels.data(), 16, 0, 4, 8, true},                                  // no columns
      {pixels.data(), 16, 4, 0, 8, true},                                  // no rows
      {pixels.data(), 15, 4, 4, 8, true},                                  // rows that overlap
      {pixels.data(), 0, 4, 4, 8, true},                                   //
      {pixels.data(), 16, 4, 4, 32, true},                                 // the pitch of another depth
      {pixels.data(), 16, 4, 4, 12, true},                                 // no such depth
      {pixels.data(), 16, 4, 4, 0, true},                                  //
      {pixels.data(), huge, huge, huge, 8, true},                          // sizes that wrap
      {pixels.data(), huge, huge / 4 + 2, 1, 8, true},                     //
      {pixels.data(), huge, 4, 4, 8, true},                                //
      {pixels.data(), huge / 4, 4, 4, 8, true},                            //
      {pixels.data(), std::size_t{1} << 20, 1u << 18, 1u << 18, 8, true},  // more than counts can hold
  };
  for (const TCHistogramImage& image : images) {
    TCHistogram histogram = filledHistogram();
    EXPECT_FALSE(TCCountHistogram(image, histogram)) << &image - images;
    EXPECT_TRUE(isEmpty(histogram)) << &image - images;
  }
}

}  // namespace
