// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCHistogram.h"
#include "Tests/TarnCore/EveryTarget.h"
#include "Tests/TarnCore/PixelOracle.h"

// Histograms of whole images, in every instruction set.

namespace {

using namespace oracle;

bool areEqual(const TCHistogram& a, const TCHistogram& b) {
  return std::memcmp(&a, &b, sizeof a) == 0;
}

TCHistogram filledHistogram() {
  TCHistogram histogram;
  histogram.red[3] = 1;
  histogram.rgb[256] = 9;
  return histogram;
}

class HistogramOf : public testing::TestWithParam<std::uint32_t> {
 protected:
  const Layout layout = layoutOf(GetParam());
  const std::size_t pixelBytes = layout.pixelBytes();

  void compare(From pixels, std::size_t width, std::size_t height, std::size_t pitch) {
    TCHistogram expected;
    TCHistogram::Counts* const channels[] = {&expected.red, &expected.green, &expected.blue, &expected.alpha};
    for (std::size_t i = 0; i < width * height * 4; ++i) {
      const From row = pixels + i / (width * 4) * pitch;
      const int at = bin(layout.number, row + i % (width * 4) * bytesOf(layout.number));
      ++(*channels[i % 4])[at];
      if (i % 4 != 3) ++expected.rgb[at];
    }
    const auto bits = static_cast<std::uint32_t>(8 * bytesOf(layout.number));
    for (const bool isRedFirst : {true, false}) {
      onEveryTarget([&] {
        TCHistogram actual = filledHistogram();
        ASSERT_TRUE(TCCountHistogram({pixels, pitch, width, height, bits, isRedFirst}, actual));
        ASSERT_TRUE(areEqual(actual, expected)) << width << " wide";
      });
      std::swap(expected.red, expected.blue);
    }
  }
};

// Each value once, and each in a row of its own that is long enough for what is counted once for a block.
TEST_P(HistogramOf, WholeDomain) {
  const Bytes& domain = domainOf(layout);
  compare(domain.data(), domain.size() / pixelBytes, 1, domain.size());
  const std::size_t values = std::min<std::size_t>(domain.size() / pixelBytes, 100000);
  Bytes blocks(values * 20 * pixelBytes);
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    blocks[i] = domain[domain.size() - (i / (20 * pixelBytes) + 1) * pixelBytes + i % pixelBytes];
  }
  compare(blocks.data(), 20, values, 20 * pixelBytes);
}

// Rows of every width from every alignment with gaps between them, one of one color and one of one alpha, and no byte
// more than the image has.
TEST_P(HistogramOf, EveryWidthPitchAndOffset) {
  for (std::size_t width = 1; width <= 70; ++width) {
    const std::size_t offset = width % 3;
    const std::size_t pitch = width * pixelBytes + width % 5;
    Bytes bytes = randomBytes(offset + pitch * 4 + width * pixelBytes, 7);
    std::fill_n(bytes.data() + offset, width * pixelBytes, std::uint8_t{60});
    for (std::size_t x = 1; x <= width; ++x) {
      std::fill_n(bytes.data() + offset + pitch + x * pixelBytes - pixelBytes / 4, pixelBytes / 4, std::uint8_t{62});
    }
    compare(bytes.data() + offset, width, 5, pitch);
  }
}

INSTANTIATE_TEST_SUITE_P(Depths, HistogramOf, testing::Values(kRGBA8, kRGBA16, kFloat));

TEST(Histogram, WhatIsNoImageCountsNothing) {
  const std::vector<std::uint8_t> pixels(64, 7);
  constexpr std::size_t huge = std::numeric_limits<std::size_t>::max();
  const From at = pixels.data();
  constexpr std::size_t many = std::size_t{1} << 18;
  // No address, columns or rows; rows that overlap; another depth's pitch; no such depth; sizes that wrap; and more
  // pixels than counts can hold.
  const TCHistogramImage images[] = {{nullptr, 16, 4, 4, 8, true},
                                     {at, 16, 0, 4, 8, true},
                                     {at, 16, 4, 0, 8, true},
                                     {at, 15, 4, 4, 8, true},
                                     {at, 0, 4, 4, 8, true},
                                     {at, 16, 4, 4, 32, true},
                                     {at, 16, 4, 4, 12, true},
                                     {at, 16, 4, 4, 0, true},
                                     {at, huge, huge, huge, 8, true},
                                     {at, huge, huge / 4 + 2, 1, 8, true},
                                     {at, huge, 4, 4, 8, true},
                                     {at, huge / 4, 4, 4, 8, true},
                                     {at, 4 * many, many, many, 8, true}};
  for (const TCHistogramImage& image : images) {
    TCHistogram histogram = filledHistogram();
    EXPECT_FALSE(TCCountHistogram(image, histogram)) << &image - images;
    EXPECT_TRUE(areEqual(histogram, {})) << &image - images;
  }
}

}  // namespace
