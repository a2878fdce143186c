// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/Depth.h"
#include "TarnCore/kernels/Dispatch.h"
#include "TarnCore/kernels/Scale.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <random>
#include <vector>

// The fast forms against the scalar definitions, bit for bit, for every instruction set of the machine.

namespace {

using namespace vorto::kernels;
using Bytes = std::vector<std::uint8_t>;

constexpr std::size_t Guard = 64;
constexpr std::uint8_t GuardByte = 0xA5;

Bytes randomBytes(std::size_t count, unsigned seed) {
  std::mt19937 generator(seed);
  Bytes bytes(count);
  for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(generator());
  return bytes;
}

template <class Function>
void onEveryTarget(Function function) {
  for (const SimdTarget& target : simdTargets()) {
    SCOPED_TRACE(target.name);
    forceSimdTarget(target);
    function();
  }
  restoreSimdTarget();
}

struct Conversion {
  DepthLayout to;
  DepthLayout from;
};

std::vector<Conversion> conversions() {
  std::vector<Conversion> all;
  for (const auto to : {DepthLayout::ARGB8, DepthLayout::RGBA16, DepthLayout::RGBAFloat}) {
    for (const auto from :
         {DepthLayout::RGBA8, DepthLayout::ARGB8, DepthLayout::RGBA16, DepthLayout::RGBAHalf, DepthLayout::RGBAFloat}) {
      all.push_back({to, from});
    }
  }
  return all;
}

// Converts `in` both ways at an offset from alignment and compares, guards included.
void compareConversion(Conversion conversion, const Bytes& in, std::size_t offset) {
  const std::size_t count = in.size() / depthPixelBytes(conversion.from);
  const std::size_t outBytes = count * depthPixelBytes(conversion.to);
  Bytes input(offset + in.size());
  std::memcpy(input.data() + offset, in.data(), in.size());
  Bytes fast(offset + outBytes + 2 * Guard, GuardByte);
  Bytes plain = fast;
  convertDepth(fast.data() + Guard + offset, conversion.to, input.data() + offset, conversion.from, count);
  convertDepthScalar(plain.data() + Guard + offset, conversion.to, input.data() + offset, conversion.from, count);
  const auto difference = std::mismatch(fast.begin(), fast.end(), plain.begin());
  ASSERT_EQ(difference.first, fast.end())
      << "to " << static_cast<int>(conversion.to) << " from " << static_cast<int>(conversion.from) << ", " << count
      << " pixels, first difference at byte " << difference.first - fast.begin() - Guard - offset;
}

// Every stored value of a small domain, once in each channel of a pixel.
template <class T>
Bytes everyValue() {
  const std::size_t values = std::size_t{1} << (8 * sizeof(T));
  Bytes bytes(values * 4 * sizeof(T));
  for (std::size_t i = 0; i < values * 4; ++i) {
    const T value = static_cast<T>(i / 4 + (i % 4) * (values / 4));
    std::memcpy(bytes.data() + i * sizeof(T), &value, sizeof(T));
  }
  return bytes;
}

void appendFloat(Bytes& bytes, std::uint32_t bits) {
  const auto* raw = reinterpret_cast<const std::uint8_t*>(&bits);
  bytes.insert(bytes.end(), raw, raw + 4);
}

// Floats that a conversion could get wrong: around every half step of both integer depths, and every exponent with
// telling mantissas and both signs (zeros, denormals, infinities and NaN among them).
Bytes tellingFloats() {
  Bytes bytes;
  for (const float largest : {255.0f, 65535.0f}) {
    for (int step = 0; step <= 2 * static_cast<int>(largest) + 2; ++step) {
      const auto bits = std::bit_cast<std::uint32_t>(static_cast<float>(step) / 2 / largest);
      for (std::uint32_t near = 0; near < 9; ++near) appendFloat(bytes, bits + near - 4);
    }
  }
  for (std::uint32_t exponent = 0; exponent < 512; ++exponent) {
    for (std::uint32_t mantissa = 0; mantissa < 64; ++mantissa) {
      appendFloat(bytes, exponent << 23 | mantissa << 17 | (mantissa * 0x9E3779B9U >> 15));
      appendFloat(bytes, exponent << 23 | mantissa);
    }
  }
  bytes.resize(bytes.size() / 16 * 16);
  return bytes;
}

Bytes wholeDomain(DepthLayout layout) {
  switch (layout) {
    case DepthLayout::RGBA8:
    case DepthLayout::ARGB8:
      return everyValue<std::uint8_t>();
    case DepthLayout::RGBA16:
    case DepthLayout::RGBAHalf:
      return everyValue<std::uint16_t>();
    case DepthLayout::RGBAFloat:
      return tellingFloats();
  }
  return {};
}

}  // namespace

TEST(DepthKernel, EqualsTheDefinitionOnWholeDomains) {
  onEveryTarget([] {
    for (const Conversion conversion : conversions()) compareConversion(conversion, wholeDomain(conversion.from), 0);
  });
}

TEST(DepthKernel, EqualsTheDefinitionAtEveryWidthAndAlignment) {
  onEveryTarget([] {
    for (const Conversion conversion : conversions()) {
      for (std::size_t count = 1; count <= 130; ++count) {
        compareConversion(conversion, randomBytes(count * depthPixelBytes(conversion.from), 7), count % 5 * 4);
      }
    }
  });
}

TEST(DepthKernel, WritesPastTheCacheTheSame) {
  onEveryTarget([] {
    for (const Conversion conversion : conversions()) {
      constexpr std::size_t kCount = 1013;
      const Bytes in = randomBytes(kCount * depthPixelBytes(conversion.from), 8);
      alignas(64) std::uint8_t out[kCount * 16];
      Bytes plain(kCount * depthPixelBytes(conversion.to));
      convertDepth(out, conversion.to, in.data(), conversion.from, kCount, true);
      convertDepthScalar(plain.data(), conversion.to, in.data(), conversion.from, kCount);
      EXPECT_EQ(std::memcmp(out, plain.data(), plain.size()), 0) << static_cast<int>(conversion.from);
    }
  });
}

// Takes minutes; run with --gtest_also_run_disabled_tests after a change to the rounding.
TEST(DepthKernel, DISABLED_RoundsEveryFloatAsDefined) {
  const std::size_t block = std::size_t{1} << 22;
  Bytes in(block * 4);
  Bytes fast(block * 2);
  Bytes plain(block * 2);
  for (std::uint64_t start = 0; start < std::uint64_t{1} << 32; start += block) {
    for (std::size_t i = 0; i < block; ++i) {
      const auto bits = static_cast<std::uint32_t>(start + i);
      std::memcpy(in.data() + i * 4, &bits, 4);
    }
    for (const auto to : {DepthLayout::ARGB8, DepthLayout::RGBA16}) {
      const std::size_t bytes = block / 4 * depthPixelBytes(to);
      convertDepth(fast.data(), to, in.data(), DepthLayout::RGBAFloat, block / 4);
      convertDepthScalar(plain.data(), to, in.data(), DepthLayout::RGBAFloat, block / 4);
      ASSERT_EQ(std::memcmp(fast.data(), plain.data(), bytes), 0) << std::hex << start;
    }
  }
}

namespace {

struct Extent {
  std::uint32_t width;
  std::uint32_t height;
};

// Scales random pixels both ways, guards on both sides of the destination.
void compareScaling(Extent from, Extent to, std::size_t pixelBytes, std::size_t missingSource,
                    std::size_t missingDestination) {
  const std::size_t sourcePixels = std::size_t{from.width} * from.height;
  const std::size_t destinationPixels = std::size_t{to.width} * to.height;
  const Bytes in = randomBytes((sourcePixels - missingSource) * pixelBytes, 9);
  Bytes fast(destinationPixels * pixelBytes + 2 * Guard, GuardByte);
  Bytes plain = fast;
  const ScaleSource source{in.data(), from.width, from.height, sourcePixels - missingSource};
  const std::size_t accessible = destinationPixels - missingDestination;
  scaleNearest({fast.data() + Guard, to.width, to.height, accessible}, source, pixelBytes);
  scaleNearestScalar({plain.data() + Guard, to.width, to.height, accessible}, source, pixelBytes);
  ASSERT_EQ(fast, plain) << from.width << "x" << from.height << " to " << to.width << "x" << to.height << " of "
                         << pixelBytes;
}

}  // namespace

TEST(ScaleKernel, EqualsTheDefinitionForEveryPixelSize) {
  onEveryTarget([] {
    for (const std::size_t pixelBytes : {2, 4, 6, 8, 16}) {
      for (std::uint32_t width = 1; width <= 130; ++width) {
        compareScaling({width, 3}, {64, 2}, pixelBytes, 0, 0);
        compareScaling({61, 2}, {width, 5}, pixelBytes, 0, 0);
      }
      compareScaling({4000, 3}, {9001, 4}, pixelBytes, 0, 0);
      compareScaling({1920, 4}, {1280, 3}, pixelBytes, 0, 0);
      compareScaling({70, 9}, {40, 9}, pixelBytes, 17, 0);
      compareScaling({70, 9}, {40, 9}, pixelBytes, 0, 17);
    }
  });
}

TEST(ScaleKernel, ConvertsWhileItScales) {
  onEveryTarget([] {
    for (const Conversion conversion : conversions()) {
      for (const Extent to : {Extent{700, 3}, Extent{33, 7}, Extent{90, 4}, Extent{1, 1}}) {
        const Extent from{90, 4};
        const Bytes in = randomBytes(from.width * from.height * depthPixelBytes(conversion.from), 10);
        Bytes fast(std::size_t{to.width} * to.height * depthPixelBytes(conversion.to));
        Bytes plain = fast;
        const ScaleSource source{in.data(), from.width, from.height, from.width * from.height};
        scaleAndConvert({fast.data(), to.width, to.height, to.width * to.height}, conversion.to, source,
                        conversion.from);
        scaleAndConvertScalar({plain.data(), to.width, to.height, to.width * to.height}, conversion.to, source,
                              conversion.from);
        ASSERT_EQ(fast, plain) << static_cast<int>(conversion.to) << static_cast<int>(conversion.from);
      }
    }
  });
}

TEST(ScaleKernel, TakesTheStatedPixels) {
  struct Row {
    Extent from;
    Extent to;
    std::vector<std::uint16_t> expected;
  };
  const Row rows[] = {
      {{4, 4}, {2, 2}, {0, 2, 8, 10}}, {{3, 1}, {2, 1}, {0, 1}}, {{2, 1}, {4, 1}, {0, 0, 1, 1}}, {{3, 1}, {0, 1}, {}},
      {{0, 0}, {2, 1}, {99, 99}},
  };
  for (const Row& row : rows) {
    std::vector<std::uint16_t> in(std::size_t{row.from.width} * row.from.height);
    for (std::size_t i = 0; i < in.size(); ++i) in[i] = static_cast<std::uint16_t>(i);
    std::vector<std::uint16_t> out(std::size_t{row.to.width} * row.to.height, 99);
    scaleNearest({reinterpret_cast<std::uint8_t*>(out.data()), row.to.width, row.to.height, out.size()},
                 {reinterpret_cast<const std::uint8_t*>(in.data()), row.from.width, row.from.height, in.size()}, 2);
    EXPECT_EQ(out, row.expected) << row.from.width << " to " << row.to.width;
  }
}
