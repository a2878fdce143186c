// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCBitmapSharing.h"

#include "Platform/Mach/mach.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace {

using Bitmap = std::unique_ptr<VortoBitmap>;

#if defined(__SANITIZE_ADDRESS__)
constexpr bool hasAddressSanitizer = true;  // it reserves more address space than any limit would leave
#else
constexpr bool hasAddressSanitizer = false;
#endif

std::ptrdiff_t openDescriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

TEST(BitmapMemory, TenThousandBitmapsNeedNoDescriptors) {
  rlimit limit;
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  limit.rlim_cur = 1024;
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
  const auto before = openDescriptors();
  std::vector<Bitmap> bitmaps;
  for (int i = 0; i < 10000; ++i) {
    bitmaps.emplace_back(TCCreateBitmap(16, 16, 0));
    ASSERT_NE(bitmaps.back()->data, nullptr) << i;
    std::memset(bitmaps.back()->data, i, 1024);
  }
  EXPECT_EQ(openDescriptors(), before);
  for (int i = 0; i < 10000; ++i) ASSERT_EQ(bitmaps[i]->data[1023], static_cast<std::uint8_t>(i));
  bitmaps.clear();
  EXPECT_EQ(openDescriptors(), before);
}

TEST(BitmapMemory, IsMappedAgainWithItsPixels) {
  const Bitmap bitmap(TCCreateBitmap(100, 100, 9));
  std::memset(bitmap->data, 77, bitmap->getSize());
  std::uint8_t* const address = bitmap->data;
  bitmap->mapIntoMemory();
  EXPECT_EQ(bitmap->data, address) << "it was there already";
  bitmap->unmapFromMemory();
  EXPECT_EQ(bitmap->data, nullptr);
  EXPECT_NE(bitmap->memoryEntry, 0u);
  bitmap->mapIntoMemory();
  ASSERT_NE(bitmap->data, nullptr);
  EXPECT_EQ(bitmap->data[bitmap->getSize() - 1], 77);
}

int callbackCalls = 0;
unsigned callbackSize = 0;
bool countCall(unsigned size) {
  ++callbackCalls;
  callbackSize = size;
  return true;
}

// In a process of its own: leaves so little address space that a bitmap does not fit. Answers what went wrong, 0 for
// nothing.
int failToAllocate() {
  const rlimit limit{64 << 20, 64 << 20};
  setrlimit(RLIMIT_AS, &limit);
  VortoBitmap::setGuaranteeMemoryCallback(countCall);
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
}

TEST(BitmapMemory, FailingAllocationCallsBackOnceReportsAndLeavesAnEmptyBitmap) {
  if (hasAddressSanitizer) GTEST_SKIP() << "no limit of address space under the address sanitizer";
  int ends[2];
  ASSERT_EQ(pipe(ends), 0);
  const pid_t child = fork();
  if (child == 0) {
    dup2(ends[1], STDERR_FILENO);
    _exit(failToAllocate());
  }
  close(ends[1]);
  std::string report;
  char buffer[256];
  for (ssize_t count; (count = read(ends[0], buffer, sizeof buffer)) > 0;)
    report.append(buffer, static_cast<std::size_t>(count));
  close(ends[0]);
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
  const std::string line = "could not allocate vm of size 256020480 because 3\n";
  EXPECT_EQ(report, line + line);
}

TEST(BitmapMemory, ReportsWhatItCannotMapOrGiveBack) {
  VortoBitmap bitmap;
  bitmap.allocSize = 4096;
  bitmap.memoryEntry = 0x7ABCDEF0;
  testing::internal::CaptureStderr();
  bitmap.mapIntoMemory();
  EXPECT_EQ(bitmap.data, nullptr);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Could not map 7ABCDEF0 because 29\n");
  testing::internal::CaptureStderr();
  bitmap.deallocateMemory();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "could not deallocate port 7ABCDEF0 because 15\n");
  EXPECT_EQ(bitmap.memoryEntry, 0u);

  std::uint8_t byte = 0;
  bitmap.data = &byte;  // not the start of a page
  bitmap.allocSize = 0;
  testing::internal::CaptureStderr();
  bitmap.unmapFromMemory();
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "Could not unmap: Invalid argument\n");
  EXPECT_EQ(bitmap.data, &byte);
  bitmap.data = nullptr;
}

class Sockets {
 public:
  Sockets() { EXPECT_EQ(socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends), 0); }
  ~Sockets() {
    close(ends[0]);
    close(ends[1]);
  }
  int ends[2];
};

// The other process: every pixel arrives, and is changed.
int receiveAndChange(int socket) {
  int result = -1;
  const Bitmap bitmap(TCReceiveBitmap(socket, &result));
  if (!bitmap || result != 0) return 1;
  if (bitmap->width != 640 || bitmap->height != 480 || bitmap->formatCode != 4 || bitmap->imageTag != 9) return 2;
  for (std::uint32_t i = 0; i < bitmap->getSize(); ++i) {
    if (bitmap->data[i] != static_cast<std::uint8_t>(i * 3)) return 3;
  }
  std::memset(bitmap->data, 0xEE, bitmap->getSize());
  return 0;
}

TEST(BitmapSharing, AnotherProcessReadsAndChangesThePixels) {
  Sockets sockets;
  const Bitmap bitmap(TCCreateBitmap(640, 480, 4));
  for (std::uint32_t i = 0; i < bitmap->getSize(); ++i) bitmap->data[i] = static_cast<std::uint8_t>(i * 3);
  std::uint8_t* const address = bitmap->data;
  const pid_t child = fork();
  if (child == 0) _exit(receiveAndChange(sockets.ends[1]));
  ASSERT_EQ(TCSendBitmap(*bitmap, sockets.ends[0]), 0);
  int status = -1;
  waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(bitmap->data, address);
  for (std::uint32_t i = 0; i < bitmap->getSize(); ++i) ASSERT_EQ(bitmap->data[i], 0xEE);
}

TEST(BitmapSharing, RefusesDescriptorsThatDoNotFitTheMemory) {
  const Bitmap good(TCCreateBitmap(64, 64, 0));
  const struct {
    std::uint32_t VortoBitmap::*field;
    std::uint32_t value;
  } lies[] = {{&VortoBitmap::formatCode, 3},
              {&VortoBitmap::formatCode, 10},
              {&VortoBitmap::formatCode, 9},
              {&VortoBitmap::allocSize, 0},
              {&VortoBitmap::allocSize, 1 << 20}};
  const struct {
    std::uint32_t VortoImage::*field;
    std::uint32_t value;
  } sizes[] = {{&VortoImage::width, 0x40000040}, {&VortoImage::height, 100},        {&VortoImage::height, 0xFFFFFFFF},
               {&VortoImage::channels, 3},       {&VortoImage::bitsPerChannel, 16}, {&VortoImage::rowPadding, 1 << 30}};
  const auto expectRefused = [&good] {
    Sockets sockets;
    const auto before = openDescriptors();
    ASSERT_EQ(TCSendBitmap(*good, sockets.ends[0]), 0);
    int result = 0;
    EXPECT_EQ(Bitmap(TCReceiveBitmap(sockets.ends[1], &result)), nullptr);
    EXPECT_EQ(result, KERN_INVALID_VALUE);
    EXPECT_LE(openDescriptors(), before + 1) << "the entry's own";
  };
  for (const auto& lie : lies) {
    const std::uint32_t truth = std::exchange((*good).*lie.field, lie.value);
    expectRefused();
    (*good).*lie.field = truth;
  }
  for (const auto& lie : sizes) {
    const std::uint32_t truth = std::exchange((*good).*lie.field, lie.value);
    expectRefused();
    (*good).*lie.field = truth;
  }
  Sockets sockets;
  EXPECT_EQ(TCSendBitmap(VortoBitmap(), sockets.ends[0]), KERN_INVALID_NAME);
}

}  // namespace
