// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCBitmapSharing.h"
#include "TarnCore/TCPixel.h"

#include "Platform/Mach/mach.h"
#include "Platform/Sanitizer.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/TarnCore/PixelOracle.h"

#include <sys/resource.h>
#include <unistd.h>

namespace {

using oracle::Bytes;
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

Bytes bytesOf(const VortoBitmap& bitmap) {
  return Bytes(bitmap.data, bitmap.data + bitmap.allocSize);
}

// Returns what it was filled with.
Bytes fill(VortoBitmap& bitmap, unsigned seed) {
  const Bytes bytes = oracle::randomBytes(bitmap.allocSize, seed);
  std::copy(bytes.begin(), bytes.end(), bitmap.data);
  return bytes;
}

// The destination's getSize() bytes of the source, 0 behind them.
Bytes copied(Bytes source, const VortoBitmap& destination) {
  source.resize(destination.getSize());
  source.resize(destination.allocSize);
  return source;
}

TEST(Bitmap, FactoryMakesNineFormats) {
  for (std::uint32_t code = 0; code < 12; ++code) {
    const Bitmap bitmap = made(3, 2, code);
    ASSERT_EQ(bitmap == nullptr, code == 3 || code > 9) << code;
    if (!bitmap) continue;
    const oracle::Layout layout = oracle::layoutOf(code);
    EXPECT_EQ(bitmap->bitsPerChannel, 8 * oracle::bytesOf(layout.number));
    EXPECT_EQ(bitmap->getSize(), 6 * layout.pixelBytes());
    EXPECT_TRUE(bitmap->formatCode == code && bitmap->imageTag == 9 && bitmap->data && bitmap->memoryEntry);
  }
  EXPECT_NE(dynamic_cast<VortoBitmapRGB16*>(made(1, 1, 5).get()), nullptr);
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
  EXPECT_TRUE(bitmap.imageTag == 9 && bitmap.allocSize == 0);
  testing::internal::CaptureStderr();
  bitmap.clear();
  for (int i = 0; i < 2; ++i) bitmap.deallocateMemory();
  bitmap.unmapFromMemory();
  bitmap.setData("x");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
  const Bitmap full = made(4, 4, 0);
  full->rowPadding = 5;
  full->clear();
  full->copy(bitmap);
  EXPECT_TRUE(!full->data && full->memoryEntry == 0 && full->rowPadding == 5);
  EXPECT_EQ(full->allocSize, 4096u) << "what was reserved is not forgotten";
}

TEST(Bitmap, SetDataCopiesRowsWithTheirPaddingOrTheSize) {
  for (const auto& [padding, size] : {std::pair{0u, 60u}, {7u, 81u}}) {
    VortoBitmap bitmap(5, 3, 8, 4, 0, padding);
    openSlack(bitmap);
    Bytes source = oracle::randomBytes(bitmap.allocSize, 1);
    bitmap.setData(source.data());
    std::fill(source.begin() + size, source.end(), std::uint8_t{0});
    EXPECT_EQ(bytesOf(bitmap), source);
  }
}

TEST(Bitmap, CopiesHaveMemoryOfTheirOwn) {
  const Bitmap source = made(60, 60, 4);
  const Bytes before = fill(*source, 1);
  source->reserved1 = 3;
  {
    const VortoBitmap copy(*source);
    openSlack(copy);
    EXPECT_TRUE(copy.data != source->data && copy.memoryEntry != source->memoryEntry);
    EXPECT_TRUE(copy.formatCode == 4 && copy.reserved1 == 3);
    EXPECT_EQ(bytesOf(copy), copied(before, copy));
  }
  EXPECT_EQ(bytesOf(*source), before) << "the source lost its memory";

  VortoBitmap other(1, 1, 8, 4, 0, 9);
  for (const VortoBitmap* from : std::initializer_list<const VortoBitmap*>{source.get(), &other}) {
    other.clone(*from);
    EXPECT_TRUE(other.width == 60 && other.bitsPerChannel == 16 && other.rowPadding == 9);
    EXPECT_EQ(std::memcmp(other.data, before.data(), source->getSize()), 0);
  }
}

// Sizes may lie, as they wrap, or are padded in pixels: every access ends with the smaller allocation.
TEST(Bitmap, CopyTakesBytesBetweenEqualChannelCountsAndNothingElse) {
  const Bitmap wide = made(8, 8, 4);
  Bytes pixels = fill(*wide, 5);
  for (const auto& [width, height, code] : {std::array{16u, 8u, 0u}, {8, 8, 5}, {1000, 300, 0}}) {
    const Bitmap to = made(width, height, code);
    to->copy(*wide);
    EXPECT_EQ(bytesOf(*to), copied(code == 5 ? Bytes() : pixels, *to));
  }
  VortoBitmap padded(4, 300, 8, 4, 0, 4000);  // getSize() is four times what is there
  ASSERT_GT(padded.getSize(), padded.allocSize);
  const VortoBitmap copy(padded);
  pixels.resize(padded.allocSize);
  padded.setData(pixels.data());
}

// By pairs over the whole image: the last pixel of an odd count has its partner in the slack one way, and is dropped
// the other way. With a width that lies, all that both allocations hold.
TEST(Bitmap, ConvertsBetweenYUVAndARGB) {
  for (const auto& [width, height, pixels] : {std::array{6u, 1u, 6u}, {3, 1, 3}, {1, 1, 1}, {5, 3, 15}, {5, 1, 1024}}) {
    const Bitmap yuv = made(width, height, 2), argb = made(width, height, 1), rgba = made(width, height, 0);
    for (VortoBitmap* bitmap : {yuv.get(), argb.get()}) bitmap->width = pixels == 1024 ? 0x7FFF : width;
    Bytes expected(argb->allocSize);
    fill(*yuv, 6);
    for (std::size_t i = 0; i < pixels; i += 2) oracle::pairToARGB(&expected[4 * i], yuv->data + 2 * i);
    argb->copy(*yuv);
    EXPECT_EQ(bytesOf(*argb), expected) << width;

    fill(*argb, 7);
    expected = bytesOf(*yuv);
    for (std::size_t i = 0; i + 1 < pixels; i += 2) oracle::pairToYUV(&expected[2 * i], argb->data + 4 * i);
    yuv->copy(*argb);
    EXPECT_EQ(bytesOf(*yuv), expected) << width;

    VortoBitmap::convertYUVtoRGBA(rgba.get(), yuv.get());
    VortoBitmap::convertRGBAtoYUV(yuv.get(), rgba.get());
    VortoBitmap::convertRGBAtoYUV(nullptr, argb.get());
    rgba->copy(*yuv);
    EXPECT_EQ(bytesOf(*yuv), expected) << "RGBA8 is no partner";
    EXPECT_EQ(bytesOf(*rgba), Bytes(rgba->allocSize));
  }
}

TEST(BitmapMemory, TenThousandBitmapsNeedNoDescriptors) {
  rlimit limit;
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  limit.rlim_cur = 1024;
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
  const auto before = openDescriptors();
  std::vector<Bitmap> bitmaps(10000);
  int i = 0;
  for (Bitmap& bitmap : bitmaps) {
    bitmap.reset(TCCreateBitmap(16, 16, 0));
    ASSERT_NE(bitmap->data, nullptr) << i;
    std::memset(bitmap->data, i++, 1024);
  }
  for (const Bitmap& bitmap : bitmaps) ASSERT_EQ(bitmap->data[1023], static_cast<std::uint8_t>(&bitmap - &bitmaps[0]));
  EXPECT_EQ(openDescriptors(), before);
}

// In a process of its own, that leaves so little address space that a bitmap does not fit.
TEST(BitmapMemory, FailingAllocationCallsBackOnceReportsAndLeavesAnEmptyBitmap) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "no limit of address space under the address sanitizer";
  const ChildResult child = RunInChild([] {
    const rlimit limit{64 << 20, 64 << 20};
    setrlimit(RLIMIT_AS, &limit);
    static int callbackCalls = 0;
    static unsigned callbackSize = 0;
    VortoBitmap::setGuaranteeMemoryCallback([](unsigned size) {
      ++callbackCalls;
      callbackSize = size;
      return true;
    });
    VortoBitmap bitmap(8000, 8000, 8, 4, 0, 0);
    if (bitmap.data || bitmap.memoryEntry != 0) return 1;
    if (callbackCalls != 1 || callbackSize != bitmap.allocSize) return 2;
    if (bitmap.allocSize != (8000u * 8000 * 4 + 1024 + 32767) / 32768 * 32768 + 4096) return 3;
    VortoBitmap::setGuaranteeMemoryCallback(nullptr);
    const VortoBitmap copied(bitmap);
    if (copied.data || callbackCalls != 1) return 4;
    bitmap.setData("");
    bitmap.copy(copied);
    bitmap.clear();
    return 0;
  });
  EXPECT_TRUE(child.exitedWith(0)) << child.status;
  const std::string line = "could not allocate vm of size 256020480 because 3\n";
  EXPECT_EQ(child.errors, line + line);
}

TEST(BitmapMemory, IsMappedAgainWithItsPixelsOrSaysWhyNot) {
  const Bitmap good = made(100, 100, 9);
  const Bytes pixels = fill(*good, 8);
  std::uint8_t* const address = good->data;
  good->mapIntoMemory();
  EXPECT_EQ(good->data, address) << "it was there already";
  good->unmapFromMemory();
  EXPECT_TRUE(!good->data && good->memoryEntry != 0);
  good->mapIntoMemory();
  ASSERT_NE(good->data, nullptr);
  EXPECT_EQ(std::memcmp(good->data, pixels.data(), good->getSize()), 0);

  VortoBitmap bitmap;
  std::uint8_t byte = 0;
  bitmap.allocSize = 4096;
  bitmap.memoryEntry = 0x7ABCDEF0;
  testing::internal::CaptureStderr();
  bitmap.mapIntoMemory();
  EXPECT_EQ(bitmap.data, nullptr);
  bitmap.deallocateMemory();
  EXPECT_EQ(bitmap.memoryEntry, 0u);
  bitmap.data = &byte;  // not the start of a page
  bitmap.allocSize = 0;
  bitmap.unmapFromMemory();
  EXPECT_EQ(std::exchange(bitmap.data, nullptr), &byte);
  EXPECT_EQ(testing::internal::GetCapturedStderr(),
            "Could not map 7ABCDEF0 because 29\n"
            "could not deallocate port 7ABCDEF0 because 15\n"
            "Could not unmap: Invalid argument\n");
}

TEST(BitmapSharing, AnotherProcessReadsAndChangesThePixels) {
  SocketPair sockets;
  const Bitmap bitmap = made(640, 480, 4);
  const Bytes pixels = fill(*bitmap, 9);
  std::uint8_t* const address = bitmap->data;
  ASSERT_EQ(TCSendBitmap(*bitmap, sockets.ours()), 0);
  const ChildResult child = RunInChild([&] {
    int result = -1;
    const Bitmap b(TCReceiveBitmap(sockets.theirs(), &result));
    if (!b || result != 0) return 1;
    if (b->width != 640 || b->height != 480 || b->formatCode != 4 || b->imageTag != 9) return 2;
    if (std::memcmp(b->data, pixels.data(), b->getSize()) != 0) return 3;
    std::memset(b->data, 0xEE, b->getSize());
    return 0;
  });
  EXPECT_TRUE(child.exitedWith(0)) << child.status;
  EXPECT_EQ(bitmap->data, address);
  EXPECT_EQ(std::count(address, address + bitmap->getSize(), 0xEE), bitmap->getSize());
}

// Each lie is refused before it is sent, unless it is about the memory itself, and by whoever receives it all the same.
TEST(BitmapSharing, RefusesDescriptorsThatDoNotFitTheMemory) {
  const Bitmap good(TCCreateBitmap(64, 64, 0));
  VortoBitmap& b = *good;
  const std::pair<std::uint32_t&, std::uint32_t> lies[] = {
      {b.formatCode, 3},      {b.formatCode, 10},     {b.formatCode, 9},      {b.allocSize, 0},
      {b.allocSize, 1 << 20}, {b.width, 0x40000040},  {b.height, 100},        {b.height, 0xFFFFFFFF},
      {b.channels, 3},        {b.bitsPerChannel, 16}, {b.rowPadding, 1 << 30}};
  for (const auto& [field, value] : lies) {
    const SocketPair sockets, refused;
    const auto before = openDescriptors();
    const std::uint32_t truth = std::exchange(field, value);
    const std::uint32_t note[] = {b.width,      b.height,     b.bitsPerChannel, b.channels,
                                  b.rowPadding, b.formatCode, b.allocSize};
    EXPECT_EQ(TCSendBitmap(b, refused.ours()), value == 1 << 20 ? KERN_SUCCESS : KERN_INVALID_VALUE);
    ASSERT_EQ(mach_send_memory_entry(sockets.ours(), b.memoryEntry, note, sizeof note), KERN_SUCCESS);
    field = truth;
    int result = 0;
    EXPECT_EQ(Bitmap(TCReceiveBitmap(sockets.theirs(), &result)), nullptr);
    EXPECT_EQ(result, KERN_INVALID_VALUE) << value;
    EXPECT_LE(openDescriptors(), before + 2) << "the entry's own, and what lies in the other socket";
  }
  const SocketPair sockets;
  EXPECT_EQ(TCSendBitmap(VortoBitmap(), sockets.ours()), KERN_INVALID_NAME);
  // The reserved size of large 4:2:2 leaves padding out.
  EXPECT_EQ(TCSendBitmap(VortoBitmap(1000, 300, 8, 2, 2, 1000), sockets.ours()), KERN_INVALID_VALUE);
  EXPECT_EQ(TCSendBitmap(VortoBitmap(1000, 30, 8, 2, 2, 1000), sockets.ours()), KERN_SUCCESS);
}

}  // namespace
