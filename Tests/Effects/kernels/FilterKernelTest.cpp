// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/ColorMatrix.h"
#include "Effects/kernels/Fill.h"
#include "Effects/kernels/GaussianLines.h"
#include "Effects/kernels/HueShift.h"
#include "Effects/kernels/Invert.h"
#include "Effects/kernels/Paint.h"
#include "Effects/kernels/Resample.h"
#include "Effects/kernels/Unsharp.h"

#include "Tests/Effects/kernels/Targets.h"

// The kernels of filters in every instruction set of the machine against their definitions.

namespace vorto::effects {
namespace {

template <class Channel>
using FilterRows = Rows<Channel>;
using Channels = testing::Types<std::uint8_t, std::uint16_t, float>;
TYPED_TEST_SUITE(FilterRows, Channels);

TYPED_TEST(FilterRows, InvertFillAndPaintAsDefined) {
  withLayoutsOf<TypeParam>([&](auto layout) {
    using Layout = decltype(layout);
    const auto in = this->row();
    const LaidPixel<Layout> color{this->channel(), this->channel(), this->channel(), this->channel()};
    this->expectSame([&](auto* out, std::size_t count) { invertRowScalar<Layout>(in.data(), out, count); },
                     [&](auto* out, std::size_t count) { invertRow<Layout>(in.data(), out, count); });
    this->expectSame([&](auto* out, std::size_t count) { fillRowScalar<Layout>(in.data(), out, count, color); },
                     [&](auto* out, std::size_t count) { fillRow<Layout>(in.data(), out, count, color); });
    this->expectSame(
        [&](auto* out, std::size_t count) {
          for (std::size_t i = 0; i < 4 * count; ++i) out[i] = color[i % 4];
        },
        [&](auto* out, std::size_t count) { paintRow<Layout>(color, out, count); });
  });
}

TYPED_TEST(FilterRows, SharpenAndMixColorsAsDefined) {
  withLayoutsOf<TypeParam>([&](auto layout) {
    using Layout = decltype(layout);
    const auto in = this->row();
    const auto other = this->row();
    std::vector<float> blurred(other.begin(), other.end());
    for (const UnsharpSettings settings : {UnsharpSettings{0.7F, 0.1F}, {5, 0}}) {
      this->expectSame(
          [&](auto* out, std::size_t n) { unsharpRowScalar<Layout>(in.data(), blurred.data(), out, n, settings); },
          [&](auto* out, std::size_t n) { unsharpRow<Layout>(in.data(), blurred.data(), out, n, settings); });
    }
    const ColorMatrix matrix{
        {{0.3F, 0.6F, 0.1F, 0.2F, -0.1F}, {1, -1, 0.5F, 0, 0.1F}, {0, 0, 0, 1, 0}, {-0.5F, 0, 0.25F, 0.9F, 0.2F}}};
    this->expectSame([&](auto* out, std::size_t n) { colorMatrixRowScalar<Layout>(in.data(), out, n, matrix); },
                     [&](auto* out, std::size_t n) { colorMatrixRow<Layout>(in.data(), out, n, matrix); });
    const HueShift shift{5.3F, 1.7F, 0.6F, 0.4F};
    this->expectSame([&](auto* out, std::size_t n) { hueShiftRowScalar<Layout>(in.data(), out, n, shift); },
                     [&](auto* out, std::size_t n) { hueShiftRow<Layout>(in.data(), out, n, shift); });
  });
}

TYPED_TEST(FilterRows, LoadAndStoreLinesAsDefined) {
  using Channel = TypeParam;
  constexpr std::size_t pixels = 37, lanes = 32, rowCount = 5;
  auto in = this->row();
  if constexpr (std::is_same_v<Channel, float>) {
    const float inf = std::numeric_limits<float>::infinity();
    std::copy_n(std::begin({inf, -inf, std::nanf(""), 1e38F, 1e-44F, -0.0F}), 6, in.begin() + 20);
  }
  const Channel* rows[rowCount];
  for (std::size_t row = 0; row < rowCount; ++row) rows[row] = in.data() + 4 * pixels * row;
  std::vector<float> expected(pixels * lanes, 7), lines(expected);
  gaussianLoadScalar(rows, rowCount, pixels, expected.data(), lanes);
  onEveryTarget([&] {
    std::ranges::fill(lines, 7);
    gaussianLoad(rows, rowCount, pixels, lines.data(), lanes);
    EXPECT_EQ(lines, expected);
  });
  std::vector<float> row(4 * pixels), expectedRow(row);
  gaussianLoadScalar(rows, 1, pixels, expectedRow.data(), 4);
  onEveryTarget([&] {
    gaussianLoad(rows, 1, pixels, row.data(), 4);
    EXPECT_EQ(row, expectedRow);
  });
  // As rows: some values too small to be one, and some outside the range.
  for (std::size_t i = 0; i < lines.size(); i += 3) lines[i] = i % 2 ? lines[i] * 2 - 40 : 1e-24F;
  withLayoutsOf<Channel>([&](auto layout) {
    using Layout = decltype(layout);
    for (const std::size_t width : {8, 7, 3, 1}) {
      std::vector<Channel> stored(rowCount * lanes, Channel{7}), out(stored);
      gaussianStoreScalar<Layout>(lines.data(), lanes, rowCount, width, stored.data(), lanes * sizeof(Channel));
      onEveryTarget([&] {
        std::ranges::fill(out, Channel{7});
        gaussianStore<Layout>(lines.data(), lanes, rowCount, width, out.data(), lanes * sizeof(Channel));
        EXPECT_EQ(out, stored);
      });
    }
  });
}

TEST(GaussianLines, AreFilteredAsDefined) {
  std::mt19937 random(3);
  constexpr std::size_t lanes = 64, room = 11;
  for (const double sigma : {0.01, 0.3, 1.0, 2.9, 3.1, 20.0, 100.0}) {
    const GaussianFilter filter = gaussianFilter(sigma);
    ASSERT_LE(filter.radius(), room);
    for (const std::size_t count : {1, 2, 50}) {
      std::vector<float> in((count + 2 * room) * lanes), expected(count * lanes), out(expected);
      for (float& value : in) value = std::uniform_real_distribution<float>(-1, 2)(random);
      for (const auto edges : {GaussianEdges::Transparent, GaussianEdges::Repeat}) {
        gaussianLinesScalar(filter, in.data() + room * lanes, expected.data(), count, lanes, edges);
        onEveryTarget([&] {
          gaussianLines(filter, in.data() + room * lanes, out.data(), count, lanes, edges);
          EXPECT_EQ(out, expected) << sigma << ", " << count;
        });
      }
      if (filter.weights.empty()) continue;
      gaussianLinesScalar(filter, in.data() + room * lanes, expected.data(), 16, 4, {});
      onEveryTarget([&] {
        gaussianLines(filter, in.data() + room * lanes, out.data(), 16, 4, {});
        EXPECT_TRUE(std::equal(out.begin(), out.begin() + 64, expected.begin())) << sigma << ", a row";
      });
    }
  }
}

TYPED_TEST(FilterRows, ResampleAsDefined) {
  constexpr std::int64_t width = 60, height = 30;
  using Kind = ResampleKernel::Kind;
  withLayoutsOf<TypeParam>([&](auto layout) {
    using Layout = decltype(layout);
    const auto image = this->row();
    const ResampleSource<TypeParam> in{image.data(), width * 4 * sizeof(TypeParam), width, height};
    for (const auto& [scaleX, scaleY] : {std::pair{1.0, 1.0}, {0.3, 1.0}, {0.7, 0.011}}) {
      for (const Kind kind : {Kind::Linear, Kind::Lanczos3}) {
        const ResampleKernel kernel(kind, scaleX, scaleY);
        for (const ResamplePlaces& places : {ResamplePlaces{-4.2, 3.3, 0.231, 0.07}, {70, 20, -0.26, 0}}) {
          std::vector<TypeParam> expected(4 * 330, TypeParam{7}), out(expected);
          resampleRowScalar<Layout>(in, kernel, places, 2, 327, expected.data());
          onEveryTarget([&] {
            std::ranges::fill(out, TypeParam{7});
            resampleRow<Layout>(in, kernel, places, 2, 327, out.data());
            EXPECT_EQ(out, expected) << scaleX;
          });
        }
      }
    }
  });
}

}  // namespace
}  // namespace vorto::effects
