// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCImage.h"
#include "TarnCore/TCPixelFormat.h"
#include "TarnCore/TCTextureLimit.h"

#include "Platform/CGL/CGL.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

namespace {

// OpenGL's numbers, spelled out here so that a wrong name in the table is seen.
struct Row {
  std::uint32_t code, hasAlpha, perPixel, perChannel, internalFormat, dataFormat, dataType;
};
constexpr Row rows[] = {
    {0, 1, 32, 8, 0x8058, 0x1908, 0x8367},  {1, 1, 32, 8, 0x1908, 0x80E1, 0x8035},
    {2, 0, 32, 8, 0x1908, 0x85B9, 0x85BA},  {3, 0, 32, 8, 0x1908, 0x80E1, 0x8035},
    {4, 1, 64, 16, 0x805B, 0x1908, 0x1403}, {5, 0, 48, 16, 0x1908, 0x1907, 0x1403},
    {6, 1, 32, 16, 0x1908, 0x190A, 0x1403}, {7, 0, 16, 16, 0x1908, 0x1909, 0x1403},
    {8, 1, 64, 16, 0x881A, 0x1908, 0x140B}, {9, 1, 128, 32, 0x8814, 0x1908, 0x1406},
    {10, 0, 32, 8, 0x1908, 0x80E1, 0x8035}, {0xFFFFFFFF, 0, 32, 8, 0x1908, 0x80E1, 0x8035},
};

TEST(PixelFormat, Table) {
  for (const Row& row : rows) {
    EXPECT_EQ(VortoPixelFormat::hasAlpha(row.code), row.hasAlpha != 0) << row.code;
    EXPECT_EQ(VortoPixelFormat::getBitsPerPixel(row.code), row.perPixel) << row.code;
    EXPECT_EQ(VortoPixelFormat::getBitsPerChannel(row.code), row.perChannel) << row.code;
    EXPECT_EQ(VortoPixelFormat::getGLInternalFormat(row.code), row.internalFormat) << row.code;
    EXPECT_EQ(VortoPixelFormat::getGLDataFormat(row.code), row.dataFormat) << row.code;
    EXPECT_EQ(VortoPixelFormat::getGLDataType(row.code), row.dataType) << row.code;
    const std::uint32_t back = row.code == 3 || row.code > 9 ? 1 : row.code;
    EXPECT_EQ(VortoPixelFormat::getPixelFormat(row.dataFormat, row.dataType), back) << row.code;
  }
  EXPECT_EQ(VortoPixelFormat::getPixelFormat(0x80E1, 0x8367), 0u);
  EXPECT_EQ(VortoPixelFormat::getPixelFormat(0x80E1, 0x1403), 4u);
  EXPECT_EQ(VortoPixelFormat::getPixelFormat(0x1909, 0x140B), 8u);
  EXPECT_EQ(VortoPixelFormat::getPixelFormat(0x1908, 0x1401), 1u);
}

TEST(BitDepth, TablesAndReverseLookups) {
  using D = VortoBitDepth;
  const std::uint32_t perPixel[] = {32, 64, 64, 128, 0}, perChannel[] = {8, 16, 16, 32, 0},
                      format[] = {0x1908, 0x1908, 0x881A, 0x8814, 0};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(D::getBitsPerPixel(D::Type(i)), perPixel[i]);
    EXPECT_EQ(D::getBitsPerChannel(D::Type(i)), perChannel[i]);
    EXPECT_EQ(D::getPixelFormat(D::Type(i)), format[i]);
  }
  const struct {
    int bits, integer, half;
  } cases[] = {{48, 1, 1}, {64, 1, 2}, {128, 3, 3}, {32, 0, 0}, {0, 0, 0}, {-64, 0, 0}, {96, 0, 0}};
  for (const auto& [bits, integer, half] : cases) {
    EXPECT_EQ(D::getFromBitsPerPixel(bits, true), integer) << bits;
    EXPECT_EQ(D::getFromBitsPerPixel(bits, false), half) << bits;
    EXPECT_EQ(D::getFromBitsPerChannel(bits / 4, true), integer) << bits;
    EXPECT_EQ(D::getFromBitsPerChannel(bits / 4, false), half) << bits;
  }
  for (const int bits : {1 << 30, (1 << 30) + 16, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    EXPECT_EQ(D::getFromBitsPerChannel(bits, true), 0) << bits;
}

TEST(Checker, CellsAreEightByEightAndDarkFirst) {
  constexpr unsigned width = 27, height = 19;
  std::vector<unsigned char> pixels(width * height * 4 + 4, 1);
  VortoMakeCheckerImage(pixels.data(), width, height);
  for (unsigned y = 0; y < height; ++y) {
    for (unsigned x = 0; x < width; ++x) {
      const unsigned char* pixel = &pixels[(y * width + x) * 4];
      const int expected = (x / 8 + y / 8) % 2 == 0 ? 192 : 255;
      ASSERT_EQ(pixel[0], 255);
      for (int i = 1; i < 4; ++i) ASSERT_EQ(pixel[i], expected) << x << ", " << y;
    }
  }
  EXPECT_EQ(pixels[width * height * 4], 1);
  VortoMakeCheckerImage(nullptr, 8, 8);
}

TEST(Image, DescribesItselfAndCountsPaddingAsPixels) {
  VortoImage image(10, 3, 16, 4, 2);
  EXPECT_EQ(image.getSize(), (10u + 2) * 3 * 2 * 4);
  EXPECT_EQ(image.imageTag, 0u);
  EXPECT_EQ(image.data, nullptr);
  VortoImageAttributes attributes;
  EXPECT_EQ(attributes.textureTarget, 0x84F5u);
  EXPECT_EQ(attributes.storageHint, 0x85BDu);
  EXPECT_EQ(attributes.flag2, 1);
  attributes.reserved = 5;
  image.getAttributes(attributes);
  EXPECT_EQ(attributes.width, 10u);
  EXPECT_EQ(attributes.rowPadding, 2u);
  EXPECT_EQ(attributes.reserved, 5u);

  VortoImageAttributes other = attributes;
  other.storageHint = other.extra2 = other.flag1 = 9;
  EXPECT_TRUE(attributes == other);
  other.textureTarget = 1;
  EXPECT_FALSE(attributes == other);
  EXPECT_EQ(VortoImage(0x10000, 0x10000, 8, 4, 1).getSize(), 0x40000u) << "wraps at 32 bits";
}

constexpr std::int64_t mebibyte = 1048576;

int limitOf(int hardware, std::int64_t megabytes, int bits, std::uint32_t displays = 1, const char* name = "Other") {
  TCTextureLimit limit;
  limit.setDevice(hardware, displays, name);
  return limit.limit(megabytes * mebibyte, bits);
}

TEST(TextureLimit, ByMemoryAndDepth) {
  const struct {
    std::int64_t megabytes;
    int at8, at16, at32;
  } cases[] = {{0, 1920, 1024, 707},    {32, 1920, 1024, 707},   {33, 1920, 1414, 1024},  {64, 1920, 1414, 1024},
               {65, 2048, 2048, 1414},  {127, 2048, 2048, 1414}, {128, 2048, 2048, 1414}, {129, 2048, 2048, 2048},
               {256, 2048, 2048, 2048}, {2047, 2048, 2048, 2048}};
  for (const auto& c : cases) {
    for (const int hardware : {2048, 2049, 8192}) {
      EXPECT_EQ(limitOf(hardware, c.megabytes, 8), c.at8) << c.megabytes;
      EXPECT_EQ(limitOf(hardware, c.megabytes, 16), c.at16 < c.at8 ? c.at16 : c.at8) << c.megabytes;
      EXPECT_EQ(limitOf(hardware, c.megabytes, 32), c.at32) << c.megabytes;
    }
  }
  EXPECT_EQ(limitOf(1024, 256, 8), 1024);
  EXPECT_EQ(limitOf(8192, 512, 16, 2), 2048);
  EXPECT_EQ(limitOf(8192, 256, 32, 4), 1024) << "64 MiB each";
  EXPECT_EQ(limitOf(8192, 256, 8, 0), 2048) << "no display counts as one";
  EXPECT_EQ(limitOf(8192, 256, 8, 1, "ATI Radeon X1600 OpenGL Engine"), 2048);
}

TEST(TextureLimit, RendererNameCountsInItsFirstSixteenCharacters) {
  TCTextureLimit limit;
  limit.setDevice(8192, 1, "ATI Radeon X1600 OpenGL Engine");
  EXPECT_TRUE(limit.isLimitedRenderer);
  limit.setDevice(8192, 1, "An ATI Radeon X1600");
  EXPECT_FALSE(limit.isLimitedRenderer);
  limit.setDevice(8192, 1, "");
  EXPECT_FALSE(limit.isLimitedRenderer);
}

TEST(TextureLimit, WhatMemoryTookStaysTaken) {
  TCTextureLimit limit;
  EXPECT_FALSE(limit.wasAsked());
  limit.setDevice(8192, 1, "Other");
  EXPECT_EQ(limit.limit(256 * mebibyte, 8), 2048);
  EXPECT_EQ(limit.limit(32 * mebibyte, 8), 1920);
  EXPECT_EQ(limit.limit(256 * mebibyte, 8), 1920);
  EXPECT_EQ(limit.limit(256 * mebibyte, 32), 1920);
  EXPECT_TRUE(limit.wasAsked());
}

TEST(TextureLimit, OfThisMachineIsAnsweredAndPutsTheContextBack) {
  const CGLContextObj host = CGLCreateSurfacelessContext();
  if (host) CGLSetCurrentContext(host);
  const int at8 = VRTMaxTextureDimension(nullptr, 8);
  EXPECT_GE(at8, 1024);
  EXPECT_LE(at8, 2048);
  EXPECT_LE(VRTMaxTextureDimension(host, 32), at8);
  EXPECT_EQ(VRTMaxTextureDimension(nullptr, 8), at8);
  EXPECT_EQ(CGLGetCurrentContext(), host);
  if (host) CGLDestroyContext(host);
}

}  // namespace
