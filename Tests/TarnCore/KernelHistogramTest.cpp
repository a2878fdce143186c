// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Histogram.h"
#include "Tests/TarnCore/KernelTesting.h"

#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

// Counting in vectors against its definition.

namespace vorto::kernels {
namespace {

using kerneltesting::onEveryTarget;

constexpr HistogramDepth kDepths[] = {HistogramDepth::Bytes, HistogramDepth::Words, HistogramDepth::Floats};

template <class Channel>
constexpr HistogramDepth depthOf() {
  return sizeof(Channel) == 1   ? HistogramDepth::Bytes
         : sizeof(Channel) == 2 ? HistogramDepth::Words
                                : HistogramDepth::Floats;
}

// The counts of an image in every channel of which the values stand, each as many times as there are pixels.
template <class Channel>
void expectBin(Channel value, int bin) {
  constexpr std::size_t pixels = 20;  // a block and a rest
  const std::vector<Channel> image(4 * pixels, value);
  HistogramTables tables = {};
  countHistogram(tables, HistogramRows{depthOf<Channel>(), reinterpret_cast<const std::uint8_t*>(image.data()), pixels,
                                       1, pixels * 4 * sizeof(Channel)});
  for (const auto& counts : tables.counts) ASSERT_EQ(counts[bin], pixels) << value << " bin " << bin;
}

template <class Channel>
void compareValues(const std::vector<Channel>& values) {
  const std::size_t pixels = values.size() / 4;
  const HistogramRows rows{depthOf<Channel>(), reinterpret_cast<const std::uint8_t*>(values.data()), pixels, 1,
                           pixels * 4 * sizeof(Channel)};
  HistogramTables fast = {};
  HistogramTables definition = {};
  countHistogram(fast, rows);
  countHistogramScalar(definition, rows);
  ASSERT_EQ(std::memcmp(&fast, &definition, sizeof fast), 0);
}

TEST(KernelHistogram, TheDefinitionRoundsWithABiasAndStopsAt254) {
  EXPECT_EQ(histogramBin(std::uint8_t{0}), 0);
  EXPECT_EQ(histogramBin(std::uint8_t{254}), 254);
  EXPECT_EQ(histogramBin(std::uint8_t{255}), 254);
  EXPECT_EQ(histogramBin(std::uint16_t{128}), 0);
  EXPECT_EQ(histogramBin(std::uint16_t{129}), 1);
  EXPECT_EQ(histogramBin(std::uint16_t{65535}), 254);
  EXPECT_EQ(histogramBin(-0.2f), 0);
  EXPECT_EQ(histogramBin(0.5f), 127);  // 127.49999 with this divisor
  EXPECT_EQ(histogramBin(1.0f), 254);
  EXPECT_EQ(histogramBin(2.0f), 254);
  EXPECT_EQ(histogramBin(std::numeric_limits<float>::infinity()), 254);
  EXPECT_EQ(histogramBin(-std::numeric_limits<float>::infinity()), 0);
  EXPECT_EQ(histogramBin(std::numeric_limits<float>::quiet_NaN()), 0);
}

TEST(KernelHistogram, EveryByteAndEveryWord) {
  onEveryTarget([] {
    for (int v = 0; v < 256; ++v) {
      expectBin(static_cast<std::uint8_t>(v), std::min(v, 254));
      if (::testing::Test::HasFatalFailure()) return;
    }
    for (int v = 0; v < 65536; ++v) {
      expectBin(static_cast<std::uint16_t>(v), std::min((v + 128) / 257, 254));  // v / 257 is never a half
      if (::testing::Test::HasFatalFailure()) return;
    }
  });
}

// The floats around the first one of each bin decide: bins only rise with the value.
TEST(KernelHistogram, FloatsAtTheEdgeOfEveryBin) {
  onEveryTarget([] {
    for (int bin = 1; bin <= 254; ++bin) {
      std::uint32_t below = 0;
      std::uint32_t first = std::bit_cast<std::uint32_t>(1.0f);
      while (below + 1 < first) {
        const std::uint32_t middle = (below + first) / 2;
        (histogramBin(std::bit_cast<float>(middle)) >= bin ? first : below) = middle;
      }
      for (std::uint32_t bits = first - 4; bits < first + 4; ++bits) {
        expectBin(std::bit_cast<float>(bits), bits < first ? bin - 1 : bin);
        if (::testing::Test::HasFatalFailure()) return;
      }
    }
  });
}

TEST(KernelHistogram, FloatPatternsOfEveryKind) {
  onEveryTarget([] {
    for (const std::uint32_t bits : kerneltesting::tellingFloats()) {
      expectBin(std::bit_cast<float>(bits), histogramBin(std::bit_cast<float>(bits)));
      if (::testing::Test::HasFatalFailure()) return;
    }
    std::vector<float> values;
    for (std::uint64_t bits = 0; bits < std::uint64_t{1} << 32; bits += 4099) {
      values.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
    }
    compareValues(values);
  });
}

// Rows of every width from every alignment with gaps between them, some of one color or of one alpha.
TEST(KernelHistogram, WidthsPitchesAndBlocksOfOneColor) {
  for (const HistogramDepth depth : kDepths) {
    const std::size_t pixelBytes = histogramPixelBytes(depth);
    for (std::size_t width = 1; width <= 70; ++width) {
      const std::size_t pitch = width * pixelBytes + width % 5;
      const std::size_t height = 5;
      kerneltesting::Bytes bytes = kerneltesting::randomBytes(pitch * (height - 1) + width * pixelBytes, 7);
      std::fill_n(bytes.begin(), width * pixelBytes, std::uint8_t{60});
      for (std::size_t x = 0; x < width; ++x) {
        std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(pitch + (x + 1) * pixelBytes - pixelBytes / 4),
                    pixelBytes / 4, std::uint8_t{62});
      }
      for (std::size_t offset = 0; offset < 3; ++offset) {
        // No byte more than the image has, so that reading past it is found out.
        kerneltesting::Bytes memory(offset);
        memory.insert(memory.end(), bytes.begin(), bytes.end());
        memory.shrink_to_fit();
        const HistogramRows rows{depth, memory.data() + offset, width, height, pitch};
        HistogramTables definition = {};
        countHistogramScalar(definition, rows);
        onEveryTarget([&] {
          HistogramTables fast = {};
          countHistogram(fast, rows);
          ASSERT_EQ(std::memcmp(&fast, &definition, sizeof fast), 0) << width << " wide, offset " << offset;
        });
        if (::testing::Test::HasFatalFailure()) return;
      }
    }
  }
}

}  // namespace
}  // namespace vorto::kernels
