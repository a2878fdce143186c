// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/ExecutionContext.h"

#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTImage.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"

#include <gtest/gtest.h>

#include <cstring>
#include <numeric>

namespace {

std::shared_ptr<VortoBitmap> countingBitmap(std::uint32_t width, std::uint32_t height, std::uint32_t formatCode) {
  std::shared_ptr<VortoBitmap> bitmap(TCCreateBitmap(width, height, formatCode));
  std::iota(bitmap->data, bitmap->data + bitmap->getSize(), std::uint8_t{0});
  return bitmap;
}

struct Pixels {
  const void* address = reinterpret_cast<const void*>(1);
  std::size_t rowBytes = 1;
};

Pixels pixelsOf(VortoExecutionContext& context, const QCImage& image) {
  Pixels pixels;
  context.getPixelsFromImage(image, &pixels.address, &pixels.rowBytes);
  return pixels;
}

class ForeignImage : public QCImage {
 public:
  std::size_t pixelsWide() const override { return 3; }
  std::size_t pixelsHigh() const override { return 2; }
  int _bufferPixelSize() const override { return 4; }
};

}  // namespace

TEST(ExecutionContext, GivesThePixelsThatFlow) {
  host::ExecutionContext context;
  const struct {
    std::uint32_t format;
    std::size_t pixelSize;
  } layouts[] = {{VortoPixelFormat::RGBA8, 4}, {VortoPixelFormat::RGBA16, 8}, {VortoPixelFormat::RGBAFloat, 16}};
  for (const auto& layout : layouts) {
    const auto bitmap = countingBitmap(5, 3, layout.format);
    const VRTImage image(bitmap);
    EXPECT_EQ(context.pixelsWideFromImage(image), 5u);
    EXPECT_EQ(context.pixelsHighFromImage(image), 3u);
    EXPECT_NE(context.formatFromImage(image), 0);
    const Pixels pixels = pixelsOf(context, image);
    EXPECT_EQ(pixels.address, bitmap->data) << "no copy";
    EXPECT_EQ(pixels.rowBytes, 5 * layout.pixelSize);
  }
}

TEST(ExecutionContext, GivesArgbWithRedFirstAsLongAsTheImageLives) {
  host::ExecutionContext context;
  const VRTImage image(countingBitmap(3, 2, VortoPixelFormat::ARGB8));
  const VRTImage other(countingBitmap(2, 2, VortoPixelFormat::ARGB8));
  const Pixels pixels = pixelsOf(context, image);
  ASSERT_NE(pixels.address, nullptr);
  EXPECT_EQ(pixels.rowBytes, 12u);
  const std::uint8_t expected[] = {1, 2, 3, 0, 5, 6, 7, 4, 9, 10, 11, 8};
  EXPECT_EQ(std::memcmp(pixels.address, expected, sizeof expected), 0);
  EXPECT_NE(pixelsOf(context, other).address, pixels.address);
  EXPECT_EQ(pixelsOf(context, image).address, pixels.address) << "converted once";
  EXPECT_EQ(std::memcmp(pixels.address, expected, sizeof expected), 0);
}

TEST(ExecutionContext, HasNoPixelsOfAnythingElse) {
  host::ExecutionContext context;
  const auto unmapped = countingBitmap(4, 4, VortoPixelFormat::RGBA8);
  unmapped->deallocateMemory();
  const auto claimsTooMuch = countingBitmap(4, 4, VortoPixelFormat::RGBA8);
  claimsTooMuch->height = 1u << 20;
  const VRTImage images[] = {VRTImage(countingBitmap(4, 4, VortoPixelFormat::YUV8)),
                             VRTImage(countingBitmap(4, 4, VortoPixelFormat::RGBAHalfFloat)),
                             VRTImage(countingBitmap(4, 4, VortoPixelFormat::RGB16)), VRTImage(unmapped),
                             VRTImage(claimsTooMuch)};
  const auto expectNone = [&](const QCImage& image) {
    const Pixels pixels = pixelsOf(context, image);
    EXPECT_EQ(pixels.address, nullptr);
    EXPECT_EQ(pixels.rowBytes, 0u);
  };
  for (const VRTImage& image : images) expectNone(image);
  expectNone(ForeignImage());
  EXPECT_EQ(context.pixelsWideFromImage(ForeignImage()), 3u);
}

TEST(ExecutionContext, IsProvidedToPatchesThatBringNone) {
  QCPatch patch;
  EXPECT_EQ(vortoExecutionContext(patch), nullptr);
  host::provideExecutionContext();
  VortoExecutionContext* const provided = vortoExecutionContext(patch);
  EXPECT_NE(dynamic_cast<host::ExecutionContext*>(provided), nullptr);

  class OwnPatch : public QCPatch, public VortoRuntime {};
  OwnPatch own;
  EXPECT_EQ(vortoExecutionContext(own), nullptr) << "its own result counts";
  VortoSetExecutionContextProvider(nullptr);
}
