// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCColor.h"
#include "TarnCore/TCPixelFormat.h"
#include "TarnCore/kernels/AlphaComplement.h"
#include "TarnCore/kernels/BytePatterns.h"
#include "TarnCore/kernels/Depth.h"
#include "TarnCore/kernels/Memory.h"
#include "TarnCore/kernels/Premultiply.h"
#include "TarnCore/kernels/Unpremultiply.h"
#include "TarnCore/kernels/YUV422.h"

#include "Platform/Sanitizer.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

// In a build with the address sanitizer, whoever runs past the pixels of a bitmap is stopped, though its memory goes
// on; operations whose rule goes on too are not.

namespace {

using namespace vorto::kernels;
using Bitmap = std::unique_ptr<VortoBitmap>;

Bitmap made(std::uint32_t width, std::uint32_t height, std::uint32_t code) {
  return Bitmap(TCCreateBitmap(width, height, code));
}

class BitmapSlackTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!hasAddressSanitizer) GTEST_SKIP() << "slack is watched in builds with the address sanitizer alone";
    GTEST_FLAG_SET(death_test_style, "threadsafe");
  }
};

TEST_F(BitmapSlackTest, FirstByteBehindThePixelsIsOutOfBounds) {
  for (const std::uint32_t code : {0, 2, 5, 9}) {
    const Bitmap bitmap = made(37, 5, code);
    ASSERT_LT(bitmap->getSize(), bitmap->allocSize);
    volatile std::uint8_t* const end = bitmap->data + bitmap->getSize();
    end[-1] = 1;
    EXPECT_DEATH(end[0] = 1, "AddressSanitizer") << code;
  }
  const VortoBitmap padded(10, 4, 8, 4, 0, 6);
  volatile std::uint8_t* const rows = padded.data;
  rows[4 * 46 - 1] = 1;
  EXPECT_DEATH(rows[4 * 46] = 1, "AddressSanitizer");
}

struct Overrun {
  const char* name;
  std::uint32_t code;
  std::function<void(std::uint8_t* pixels, std::size_t count)> run;
};

class OverrunTest : public BitmapSlackTest, public testing::WithParamInterface<Overrun> {};

// One pixel too many, at widths that end within a vector and at its end.
TEST_P(OverrunTest, OfAKernelIsSeen) {
  for (const std::size_t width : {std::size_t{5}, std::size_t{64}, std::size_t{131}}) {
    const Bitmap bitmap = made(static_cast<std::uint32_t>(width), 1, GetParam().code);
    GetParam().run(bitmap->data, width);
    EXPECT_DEATH(GetParam().run(bitmap->data, width + 1), "AddressSanitizer") << width;
  }
}

constexpr Background background = {0.5f, 0.5f, 0.5f};
constexpr std::size_t most = 256;  // pixels
alignas(64) std::uint8_t elsewhere[16 * most];

const Overrun overruns[] = {
    {"premultiply", 0, premultiplyRGBA8},
    {"unpremultiply8", 1, [](auto* p, auto n) { unpremultiplyARGB8(p, n, background); }},
    {"unpremultiply16", 4, [](auto* p, auto n) { unpremultiplyRGBA16(p, n, background); }},
    {"unpremultiplyHalf", 8, [](auto* p, auto n) { unpremultiplyRGBAHalf(p, n, background); }},
    {"unpremultiplyFloat", 9, [](auto* p, auto n) { unpremultiplyRGBAFloat(p, n, background); }},
    {"complementHalf", 8, complementAlphaHalf},
    {"complementFloat", 9, complementAlphaFloat},
    {"shuffleInPlace", 0,
     [](auto* p, auto n) {
       shuffleBytes(p, p, 4 * n, BytePattern::ofOrder({1, 2, 3, 0}), 4, false);
     }},
    {"readForDepth", 4,
     [](auto* p, auto n) { convertDepth(elsewhere, DepthLayout::ARGB8, p, DepthLayout::RGBA16, n); }},
    {"writeForDepth", 9,
     [](auto* p, auto n) { convertDepth(p, DepthLayout::RGBAFloat, elsewhere, DepthLayout::RGBA8, n); }},
    {"readYUV", 2, [](auto* p, auto n) { convertLaggingYUVtoARGB(elsewhere, 4, p, false, n); }},
    {"copiedFrom", 0, [](auto* p, auto n) { copyBytes(elsewhere, p, 4 * n, false); }},
    {"copiedTo", 0, [](auto* p, auto n) { copyBytes(p, elsewhere, 4 * n, false); }},
    {"streamedTo", 0, [](auto* p, auto n) { copyBytes(p, elsewhere, 4 * n, true); }},
};

INSTANTIATE_TEST_SUITE_P(Kernels, OverrunTest, testing::ValuesIn(overruns),
                         [](const auto& row) { return std::string(row.param.name); });

// What follows must not stop: each reaches behind the pixels by its rule.
TEST_F(BitmapSlackTest, RulesThatReachFurtherAreNoFaults) {
  for (const std::uint32_t code : {2, 5, 7}) {
    const Bitmap bitmap = made(33, 3, code);
    bitmap->duplicateAlphaToRGB();
    bitmap->unpremultiply(VortoColor(0.5f, 0.5f, 0.5f, 1.0f));
    bitmap->unPreMult();
    bitmap->flip();
  }
  const Bitmap small = made(3, 3, 0), large = made(50, 7, 0), wide = made(20, 5, 9), odd = made(33, 1, 2);
  large->copy(*small);
  large->copyWithSwizzleARGBToRGBA(*made(60, 9, 9));
  wide->copyWithScaling(*small);
  wide->copyWithScalingAndDepthConversion(*odd);
  large->copyWithCropping(*small, 2, 2, true);
  made(33, 1, 1)->copy(*odd);
  const VortoBitmap padded(10, 4, 8, 4, 0, 6);
  const VortoBitmap copied(padded);
  EXPECT_EQ(copied.getSize(), padded.getSize());
}

}  // namespace
