// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCImage.h"
#include "TarnCore/TCPixelFormat.h"
#include "TarnCore/TCTextureLimit.h"

#include "Platform/CGL/CGL.h"
#include "Tests/Support/Tables.h"

TEST(PixelFormat, Table) {
  using F = VortoPixelFormat;
  for (const Row& row : rowsOf("GLFormats.txt")) {
    const auto c = static_cast<std::uint32_t>(std::stoul(row[0]));
    std::ostringstream bits, internal, data;
    bits << unsigned(F::hasAlpha(c)) << " " << F::getBitsPerPixel(c) << " " << F::getBitsPerChannel(c);
    internal << std::hex << std::uppercase << F::getGLInternalFormat(c);
    data << std::hex << std::uppercase << F::getGLDataFormat(c) << " " << F::getGLDataType(c);
    EXPECT_EQ((Row{row[0], bits.str(), internal.str(), data.str(),
                   std::to_string(F::getPixelFormat(F::getGLDataFormat(c), F::getGLDataType(c)))}),
              row);
  }
  const std::uint32_t others[][3] = {
      {0x80E1, 0x8367, 0}, {0x80E1, 0x1403, 4}, {0x1909, 0x140B, 8}, {0x1908, 0x1401, 1}};
  for (const auto& [format, type, code] : others) EXPECT_EQ(F::getPixelFormat(format, type), code) << type;
}

TEST(BitDepth, TablesAndReverseLookups) {
  using D = VortoBitDepth;
  const std::uint32_t types[][3] = {{32, 8, 0x1908}, {64, 16, 0x1908}, {64, 16, 0x881A}, {128, 32, 0x8814}, {0, 0, 0}};
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(D::getBitsPerPixel(D::Type(i)), types[i][0]);
    EXPECT_EQ(D::getBitsPerChannel(D::Type(i)), types[i][1]);
    EXPECT_EQ(D::getPixelFormat(D::Type(i)), types[i][2]);
  }
  const int cases[][3] = {{48, 1, 1}, {64, 1, 2}, {128, 3, 3}, {32, 0, 0}, {0, 0, 0}, {-64, 0, 0}, {96, 0, 0}};
  for (const auto& [bits, integer, half] : cases) {
    for (const bool isInteger : {true, false}) {
      EXPECT_EQ(D::getFromBitsPerPixel(bits, isInteger), isInteger ? integer : half) << bits;
      EXPECT_EQ(D::getFromBitsPerChannel(bits / 4, isInteger), isInteger ? integer : half) << bits;
    }
  }
  for (const int bits : {1 << 30, (1 << 30) + 16, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()})
    EXPECT_EQ(D::getFromBitsPerChannel(bits, true), 0) << bits;
}

TEST(Checker, CellsAreEightByEightAndDarkFirst) {
  constexpr unsigned width = 27, height = 19;
  std::vector<unsigned char> pixels(width * height * 4 + 4, 1), expected = pixels;
  for (unsigned i = 0; i < width * height; ++i) {
    const bool isDark = (i % width / 8 + i / width / 8) % 2 == 0;
    for (unsigned k = 0; k < 4; ++k) expected[4 * i + k] = k > 0 && isDark ? 192 : 255;
  }
  VortoMakeCheckerImage(pixels.data(), width, height);
  EXPECT_EQ(pixels, expected);
  VortoMakeCheckerImage(nullptr, 8, 8);
}

TEST(Image, DescribesItselfAndCountsPaddingAsPixels) {
  const VortoImage image(10, 3, 16, 4, 2);
  EXPECT_EQ(image.getSize(), (10u + 2) * 3 * 2 * 4);
  EXPECT_EQ(VortoImage(0x10000, 0x10000, 8, 4, 1).getSize(), 0x40000u) << "wraps at 32 bits";
  EXPECT_TRUE(image.imageTag == 0 && !image.data);
  VortoImageAttributes attributes;
  EXPECT_TRUE(attributes.textureTarget == 0x84F5 && attributes.storageHint == 0x85BD && attributes.flag2 == 1);
  attributes.reserved = 5;
  image.getAttributes(attributes);
  EXPECT_TRUE(attributes.width == 10 && attributes.rowPadding == 2 && attributes.reserved == 5);

  VortoImageAttributes other = attributes;
  other.storageHint = other.extra2 = other.flag1 = 9;
  EXPECT_TRUE(attributes == other);
  other.textureTarget = 1;
  EXPECT_FALSE(attributes == other);
}

TEST(TextureLimit, ByMemoryAndDepth) {
  std::vector<std::array<int, 6>> devices = {// hardware, mebibytes, displays (none counts as one); limits at 8, 16, 32
                                             {1024, 256, 1, 1024, 1024, 1024},
                                             {8192, 512, 2, 2048, 2048, 2048},
                                             {8192, 256, 4, 1920, 1414, 1024},
                                             {8192, 256, 0, 2048, 2048, 2048}};
  for (const int hardware : {2048, 2049, 8192}) {
    for (const int megabytes : {0, 32}) devices.push_back({hardware, megabytes, 1, 1920, 1024, 707});
    for (const int megabytes : {33, 64}) devices.push_back({hardware, megabytes, 1, 1920, 1414, 1024});
    for (const int megabytes : {65, 127, 128}) devices.push_back({hardware, megabytes, 1, 2048, 2048, 1414});
    for (const int megabytes : {129, 256, 2047}) devices.push_back({hardware, megabytes, 1, 2048, 2048, 2048});
  }
  constexpr std::int64_t mebibyte = 1048576;
  for (const auto& [hardware, megabytes, displays, at8, at16, at32] : devices) {
    for (const auto& [bits, expected] : {std::pair{8, at8}, {16, at16}, {32, at32}}) {
      TCTextureLimit limit;
      limit.setDevice(hardware, static_cast<std::uint32_t>(displays), "Other");
      EXPECT_EQ(limit.limit(megabytes * mebibyte, bits), expected) << megabytes << " at " << bits;
    }
  }
  // What memory took stays taken; a renderer's name counts in its first sixteen characters.
  for (const std::string name : {"ATI Radeon X1600 OpenGL Engine", "An ATI Radeon X1600", ""}) {
    TCTextureLimit limit;
    EXPECT_FALSE(limit.wasAsked());
    limit.setDevice(8192, 1, name);
    EXPECT_EQ(limit.isLimitedRenderer, name.starts_with("ATI")) << name;
    const int calls[][3] = {{256, 8, 2048}, {32, 8, 1920}, {256, 8, 1920}, {256, 32, 1920}};
    for (const auto& [megabytes, bits, expected] : calls) EXPECT_EQ(limit.limit(megabytes * mebibyte, bits), expected);
    EXPECT_TRUE(limit.wasAsked());
  }
}

TEST(TextureLimit, OfThisMachinePutsTheContextBack) {
  const CGLContextObj host = CGLCreateSurfacelessContext();
  if (host) CGLSetCurrentContext(host);
  const int at8 = VRTMaxTextureDimension(nullptr, 8);
  EXPECT_TRUE(at8 >= 1024 && at8 <= 2048) << at8;
  EXPECT_LE(VRTMaxTextureDimension(host, 32), at8);
  EXPECT_EQ(VRTMaxTextureDimension(nullptr, 8), at8);
  EXPECT_EQ(CGLGetCurrentContext(), host);
  if (host) CGLDestroyContext(host);
}
