// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/kernels/Between.h"
#include "Effects/kernels/Distance.h"
#include "Effects/kernels/GradientRow.h"
#include "Effects/kernels/Luma.h"
#include "Effects/kernels/Noise.h"
#include "Effects/kernels/Reveal.h"
#include "Tests/Effects/kernels/Targets.h"

// What fills rows from nothing, and what shows where, in every instruction set of the machine against the definitions.

namespace vorto::effects {
namespace {

constexpr std::size_t kCount = 997;

// Positions from below 0 to above 1, with the ends and what is no number.
std::vector<float> positions() {
  std::vector<float> row(kCount);
  for (std::size_t i = 0; i < kCount; ++i) row[i] = static_cast<float>(i) / 800 - 0.1F;
  const float inf = std::numeric_limits<float>::infinity();
  row[3] = 0, row[4] = 1, row[5] = std::nextafter(1.0F, 0.0F), row[6] = std::nanf(""), row[7] = inf, row[8] = -inf;
  return row;
}

template <class Shape>
void expectSameDistances() {
  for (const auto& row : {DistanceRow::at(3, 20.25, 400.5, 1, 1), DistanceRow::at(0, -70000, 0.5, 1e-6, 3),
                          DistanceRow::at(9, 500.7, 9.5, 960, 540)}) {
    std::vector<float> expected(kCount), out(kCount);
    distanceRowScalar<Shape>(row, expected.data(), 0, kCount);
    onEveryTarget([&] {
      distanceRow<Shape>(row, out.data(), kCount);
      EXPECT_EQ(out, expected);
    });
  }
}

TEST(Distances, AreAsDefined) {
  expectSameDistances<CircleShape>();
  expectSameDistances<DiamondShape>();
  expectSameDistances<RectangleShape>();
}

template <class Weight>
void expectSameWeights() {
  const std::vector<float> at = positions();
  std::vector<Weight> expected(kCount), out(kCount);
  for (const float steepness : {1.0F, 10.0F, 1e30F, std::numeric_limits<float>::infinity()}) {
    revealRowScalar(at.data(), 0.40000004F, steepness, expected.data(), kCount);
    onEveryTarget([&] {
      revealRow(at.data(), 0.40000004F, steepness, out.data(), kCount);
      EXPECT_EQ(out, expected) << steepness;
    });
  }
}

TEST(Reveals, AreAsDefined) {
  expectSameWeights<std::uint32_t>();
  expectSameWeights<float>();
}

template <class Layout>
void expectSameLumas() {
  std::vector<typename Layout::Channel> in(4 * kCount);
  std::mt19937 random(3);
  for (auto& each : in) each = static_cast<typename Layout::Channel>(random() % 65536);
  std::vector<float> expected(kCount), out(kCount);
  lumaRowScalar<Layout>(in.data(), expected.data(), kCount);
  onEveryTarget([&] {
    lumaRow<Layout>(in.data(), out.data(), kCount);
    EXPECT_EQ(out, expected);
  });
}

TEST(Lumas, AreAsDefined) {
  expectSameLumas<RGBA8>();
  expectSameLumas<ARGB8>();
  expectSameLumas<RGBA16>();
  expectSameLumas<RGBAFloat>();
}

template <class Layout, class Kernel, class Definition>
void expectSameGradient(Kernel kernel, Definition definition) {
  using Channel = typename Layout::Channel;
  std::vector<LaidPixel<Layout>> table(kGradientSteps + 1);
  std::mt19937 random(2);
  for (auto& pixel : table) {
    for (Channel& channel : pixel) channel = static_cast<Channel>(random() % 256) / static_cast<Channel>(3);
  }
  const std::vector<float> at = positions();
  std::vector<Channel> expected(4 * kCount), out(4 * kCount);
  definition(at.data(), expected.data(), kCount, table.data());
  onEveryTarget([&] {
    kernel(at.data(), out.data(), kCount, table.data());
    EXPECT_EQ(out, expected);
  });
}

TEST(GradientRows, AreAsDefined) {
  expectSameGradient<RGBA8>(gradientRow<RGBA8>, gradientRowScalar<RGBA8>);
  expectSameGradient<RGBA16>(gradientRow<RGBA16>, gradientRowScalar<RGBA16>);
  expectSameGradient<RGBAFloat>(gradientFloatRow, gradientFloatRowScalar);
  std::vector<std::uint32_t> values(kGradientSteps), expected(kCount), out(kCount);
  for (std::size_t i = 0; i < values.size(); ++i) values[i] = static_cast<std::uint32_t>(3 * i);
  valueRowScalar(positions().data(), expected.data(), kCount, values.data());
  onEveryTarget([&] {
    valueRow(positions().data(), out.data(), kCount, values.data());
    EXPECT_EQ(out, expected);
  });
}

template <class Layout>
void expectSamePixels() {
  using Channel = typename Layout::Channel;
  std::vector<float> planes[3] = {positions(), positions(), positions()};
  for (auto& plane : planes) {
    for (float& value : plane) value = std::isfinite(value) ? std::abs(value) : 0.5F;
  }
  std::reverse(planes[1].begin(), planes[1].end());
  std::vector<Channel> expected(4 * kCount), out(4 * kCount);
  opaqueRowScalar<Layout>(planes[0].data(), planes[1].data(), planes[2].data(), expected.data(), kCount);
  onEveryTarget([&] {
    opaqueRow<Layout>(planes[0].data(), planes[1].data(), planes[2].data(), out.data(), kCount);
    EXPECT_EQ(out, expected);
  });
}

TEST(NoiseRows, AreAsDefined) {
  std::vector<float> lattice(kCount), expected(kCount), out(kCount);
  latticeRowScalar(99, 4000000000U, lattice.data(), 0, kCount);
  std::vector<std::int32_t> places(kCount);
  for (std::size_t i = 0; i < kCount; ++i) places[i] = static_cast<std::int32_t>(i * 7 % (kCount - 1));
  const std::vector<float> weights = positions();
  addBetweenRowScalar(lattice.data(), places.data(), weights.data() + 9, 0.3F, expected.data(), kCount - 9);
  onEveryTarget([&] {
    latticeRow(99, 4000000000U, out.data(), kCount);
    EXPECT_EQ(out, lattice);
    std::fill(out.begin(), out.end(), 0.0F);
    addBetweenRow(lattice.data(), places.data(), weights.data() + 9, 0.3F, out.data(), kCount - 9);
    EXPECT_EQ(out, expected);
  });
  expectSamePixels<RGBA8>();
  expectSamePixels<RGBA16>();
  expectSamePixels<RGBAFloat>();
}

}  // namespace
}  // namespace vorto::effects
