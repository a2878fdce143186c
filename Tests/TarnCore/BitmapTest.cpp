// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixel.h"

#include "Platform/Mach/mach.h"
#include "Platform/Sanitizer.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

using Bitmap = std::unique_ptr<VortoBitmap>;

// These tests look behind the pixels too, up to the end of the allocation.
void openSlack(const VortoBitmap& bitmap) {
  unpoisonMemory(bitmap.data, bitmap.allocSize);
}

Bitmap made(std::uint32_t width, std::uint32_t height, std::uint32_t code) {
  Bitmap bitmap(TCCreateBitmap(width, height, code));
  if (bitmap) openSlack(*bitmap);
  return bitmap;
}

void fill(VortoBitmap& bitmap, int seed) {
  for (std::uint32_t i = 0; i < bitmap.allocSize; ++i) bitmap.data[i] = static_cast<std::uint8_t>(i * 7 + seed);
}

TEST(Bitmap, FactoryMakesNineFormats) {
  const struct {
    std::uint32_t code, bits, channels;
  } formats[] = {{0, 8, 4},  {1, 8, 4},  {2, 8, 2},  {4, 16, 4}, {5, 16, 3},
                 {6, 16, 2}, {7, 16, 1}, {8, 16, 4}, {9, 32, 4}};
  for (const auto& format : formats) {
    const Bitmap bitmap = made(3, 2, format.code);
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(bitmap->bitsPerChannel, format.bits);
    EXPECT_EQ(bitmap->channels, format.channels);
    EXPECT_EQ(bitmap->formatCode, format.code);
    EXPECT_EQ(bitmap->imageTag, 9u);
    EXPECT_NE(bitmap->data, nullptr);
    EXPECT_NE(bitmap->memoryEntry, 0u);
    EXPECT_EQ(bitmap->getSize(), 6 * format.bits / 8 * format.channels);
  }
  EXPECT_NE(dynamic_cast<VortoBitmapRGB16*>(made(1, 1, 5).get()), nullptr);
  for (const std::uint32_t code : {3u, 10u, 0xFFFFFFFFu}) EXPECT_EQ(made(1, 1, code), nullptr);
}

TEST(Bitmap, ReservesTheStatedSizes) {
  const struct {
    std::uint32_t width, height, code, size;
  } cases[] = {
      {1, 1, 0, 4096},          {100, 100, 0, 45056},  {256, 200, 0, 233472},
      {1920, 1080, 0, 8327168}, {720, 486, 2, 708608}, {0, 0, 0, 4096},
      {768, 1, 0, 8192},        {767, 1, 0, 4096},     {50944, 1, 0, 208896},
      {50945, 1, 0, 233472},    {50688, 1, 9, 823296}, {0x40000000, 4, 0, 4096}};  // the last one's bytes wrap to none
  for (const auto& c : cases) {
    const Bitmap bitmap = made(c.width, c.height, c.code);
    EXPECT_EQ(bitmap->allocSize, c.size) << c.width << " x " << c.height;
    ASSERT_NE(bitmap->data, nullptr);
    bitmap->data[0] = bitmap->data[bitmap->allocSize - 1] = 1;
  }
  // The bits are divided before the channels multiply, and padding counts in bytes.
  EXPECT_EQ(VortoBitmap(1001, 7, 12, 4, 77, 5).allocSize, ((1001 * 12 / 8 * 4 + 5) * 7 + 1024) / 4096 * 4096 + 4096);
}

TEST(Bitmap, EmptyOneDoesNothing) {
  VortoBitmap bitmap;
  EXPECT_EQ(bitmap.imageTag, 9u);
  EXPECT_EQ(bitmap.allocSize, 0u);
  testing::internal::CaptureStderr();
  bitmap.clear();
  bitmap.deallocateMemory();
  bitmap.deallocateMemory();
  bitmap.unmapFromMemory();
  bitmap.setData("x");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  const Bitmap full = made(4, 4, 0);
  full->clear();
  full->copy(bitmap);
  full->rowPadding = 5;
  EXPECT_EQ(full->data, nullptr);
  EXPECT_EQ(full->memoryEntry, 0u);
  EXPECT_EQ(full->allocSize, 4096u) << "what was reserved is not forgotten";
  full->clear();
  EXPECT_EQ(full->rowPadding, 5u);
}

TEST(Bitmap, SetDataCopiesRowsWithTheirPaddingOrTheSize) {
  std::vector<std::uint8_t> source(10000);
  for (std::size_t i = 0; i < source.size(); ++i) source[i] = static_cast<std::uint8_t>(i * 13 + 1);
  VortoBitmap plain(5, 3, 8, 4, 0, 0);
  openSlack(plain);
  plain.setData(source.data());
  EXPECT_EQ(std::memcmp(plain.data, source.data(), 60), 0);
  EXPECT_EQ(plain.data[60], 0);
  VortoBitmap padded(5, 3, 8, 4, 0, 7);
  openSlack(padded);
  padded.setData(source.data());
  EXPECT_EQ(std::memcmp(padded.data, source.data(), 81), 0);
  EXPECT_EQ(padded.data[81], 0);
}

TEST(Bitmap, CopiesHaveMemoryOfTheirOwn) {
  const Bitmap source = made(60, 60, 4);
  fill(*source, 1);
  source->reserved1 = 3;
  const std::vector<std::uint8_t> before(source->data, source->data + source->allocSize);
  {
    const VortoBitmap copied(*source);
    openSlack(copied);
    EXPECT_NE(copied.data, source->data);
    EXPECT_NE(copied.memoryEntry, source->memoryEntry);
    EXPECT_EQ(copied.formatCode, 4u);
    EXPECT_EQ(copied.reserved1, 3u);
    EXPECT_EQ(std::memcmp(copied.data, before.data(), source->getSize()), 0);
    EXPECT_EQ(copied.data[copied.getSize()], 0) << "only the size is copied";
  }
  EXPECT_EQ(std::memcmp(source->data, before.data(), before.size()), 0) << "the source lost its memory";

  VortoBitmap other(1, 1, 8, 4, 0, 9);
  other.clone(*source);
  EXPECT_EQ(other.width, 60u);
  EXPECT_EQ(other.bitsPerChannel, 16u);
  EXPECT_EQ(other.rowPadding, 9u);
  EXPECT_EQ(std::memcmp(other.data, before.data(), source->getSize()), 0);
  other.clone(other);
  EXPECT_EQ(std::memcmp(other.data, before.data(), source->getSize()), 0);
}

TEST(Bitmap, CopyTakesBytesBetweenEqualChannelCountsAndNothingElse) {
  const Bitmap wide = made(8, 8, 4), bytes = made(16, 8, 0), narrow = made(8, 8, 5);
  fill(*wide, 5);
  bytes->copy(*wide);
  EXPECT_EQ(std::memcmp(bytes->data, wide->data, 512), 0);
  narrow->copy(*wide);
  for (std::uint32_t i = 0; i < narrow->allocSize; ++i) ASSERT_EQ(narrow->data[i], 0);
}

// Sizes that lie: wrapped, padded in pixels, or set by hand. Every access ends with the smaller allocation.
TEST(Bitmap, CopiesStayWithinWhatWasAllocated) {
  const Bitmap small = made(4, 4, 0), large = made(1000, 300, 0);
  fill(*large, 3);
  fill(*small, 4);
  large->copy(*small);
  EXPECT_EQ(std::memcmp(large->data, small->data, small->allocSize), 0);
  EXPECT_EQ(large->data[small->allocSize], static_cast<std::uint8_t>(small->allocSize * 7 + 3));

  VortoBitmap padded(4, 300, 8, 4, 0, 4000);  // getSize() is four times what is there
  ASSERT_GT(padded.getSize(), padded.allocSize);
  const VortoBitmap copied(padded);
  std::vector<std::uint8_t> pixels(padded.allocSize, 9);
  padded.setData(pixels.data());

  const Bitmap wrapped = made(0x40000001, 4, 0);
  fill(*wrapped, 1);
  wrapped->width = 0x3FFFFFFF;
  wrapped->height = 0x10001;
  VortoBitmap destination(1, 1, 8, 4, 0, 0);
  destination.copy(*wrapped);
  const Bitmap yuv = made(2, 1, 2), argb = made(2, 1, 1);
  for (VortoBitmap* bitmap : {yuv.get(), argb.get()}) bitmap->width = bitmap->height = 0x7FFF;
  argb->copy(*yuv);
  yuv->copy(*argb);
  EXPECT_EQ(argb->data[argb->allocSize - 8], 255) << "the last pair that fits";
}

TEST(Bitmap, ConvertsBetweenYUVAndARGB) {
  const Bitmap yuv = made(6, 1, 2), argb = made(6, 1, 1);
  const std::uint8_t pairs[] = {128, 16, 128, 235, 0, 255, 255, 255, 0, 16, 128, 16};
  yuv->setData(pairs);
  argb->copy(*yuv);
  const std::uint8_t pixels[] = {255, 0,   0,   0,  255, 254, 254, 254, 255, 255, 225, 20,
                                 255, 255, 225, 20, 255, 0,   50,  0,   255, 0,   50,  0};
  EXPECT_EQ(std::memcmp(argb->data, pixels, sizeof pixels), 0);

  const std::uint8_t blackAndWhite[] = {255, 255, 255, 255, 255, 255, 255, 255, 0, 0, 0, 0,
                                        9,   0,   0,   0,   255, 255, 255, 255, 0, 0, 0, 0};
  argb->setData(blackAndWhite);
  yuv->copy(*argb);
  const std::uint8_t expected[] = {128, 235, 128, 235, 128, 16, 128, 16, 128, 235, 128, 16};
  EXPECT_EQ(std::memcmp(yuv->data, expected, sizeof expected), 0);

  const Bitmap rgba = made(6, 1, 0);
  VortoBitmap::convertYUVtoRGBA(rgba.get(), yuv.get());
  VortoBitmap::convertRGBAtoYUV(yuv.get(), rgba.get());
  VortoBitmap::convertRGBAtoYUV(nullptr, argb.get());
  rgba->copy(*yuv);
  EXPECT_EQ(rgba->data[0], 0) << "RGBA8 is no partner";
}

TEST(Bitmap, ConvertsOddPixelCountsByTheirSteps) {
  const Bitmap yuv = made(3, 1, 2), argb = made(3, 1, 1);
  std::memset(yuv->data, 128, 16);
  argb->copy(*yuv);
  EXPECT_EQ(argb->data[8], 255) << "the third pixel";
  EXPECT_EQ(argb->data[12], 255) << "its partner, in the slack";
  EXPECT_EQ(argb->data[16], 0);
  std::memset(yuv->data, 1, 16);
  yuv->copy(*argb);
  EXPECT_NE(yuv->data[1], 1);
  EXPECT_EQ(yuv->data[5], 1) << "a pixel without a partner is dropped";
}

}  // namespace
