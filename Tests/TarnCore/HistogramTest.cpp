// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCHistogram.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <vector>

// Histograms of whole images.

namespace {

bool areEqual(const TCHistogram& a, const TCHistogram& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

TCHistogram filledHistogram() {
  TCHistogram histogram;
  histogram.red[3] = 1;
  histogram.rgb[256] = 9;
  return histogram;
}

// White counts in the last bin but one.
TEST(Histogram, ChannelsFollowTheOrder) {
  std::vector<std::uint8_t> pixels(4 * 37 * 11, 255);
  const std::uint8_t first[4] = {10, 20, 30, 40};
  std::copy(first, first + 4, pixels.begin());
  for (const bool isRedFirst : {true, false}) {
    TCHistogram histogram = filledHistogram(), expected;
    for (auto* counts : {&expected.red, &expected.green, &expected.blue, &expected.alpha}) (*counts)[254] = 37 * 11 - 1;
    expected.rgb[254] = 3 * (37 * 11 - 1);
    expected.red[isRedFirst ? 10 : 30] = expected.green[20] = expected.blue[isRedFirst ? 30 : 10] = 1;
    expected.rgb[10] = expected.rgb[20] = expected.rgb[30] = expected.alpha[40] = 1;
    ASSERT_TRUE(TCCountHistogram({pixels.data(), 4 * 37, 37, 11, 8, isRedFirst}, histogram));
    EXPECT_TRUE(areEqual(histogram, expected)) << isRedFirst;
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
    EXPECT_TRUE(areEqual(histogram, {})) << &image - images;
  }
}

}  // namespace
