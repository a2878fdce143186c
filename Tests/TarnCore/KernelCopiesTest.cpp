// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/BytePatterns.h"
#include "TarnCore/kernels/Memory.h"
#include "TarnCore/kernels/UnpremultiplyTruncated.h"
#include "TarnCore/kernels/YUV422.h"
#include "Tests/TarnCore/KernelTesting.h"

#include <functional>

// Copying operations: the fast forms against the definitions, bit for bit, for every instruction set of the machine.

namespace {

using namespace vorto::kernels;
using namespace kerneltesting;

constexpr BytePattern kOrder = BytePattern::ofOrder({1, 2, 3, 0});
constexpr Background kBackground = {0.2f, 0.7f, 0.9f};

struct Copy {
  const char* name;
  std::size_t written, read;  // bytes of a unit
  std::function<void(std::uint8_t*, const std::uint8_t*, std::size_t)> fast, definition;
};

std::vector<Copy> copies() {
  using To = std::uint8_t*;
  using From = const std::uint8_t*;
  using Count = std::size_t;
  return {
      {"copy", 1, 1, [](To to, From from, Count n) { copyBytes(to, from, n, false); }, copyBytesScalar},
      {"streamed copy", 1, 1, [](To to, From from, Count n) { copyBytes(to, from, n, true); }, copyBytesScalar},
      {"shuffle", 4, 4, [](To to, From from, Count n) { shuffleBytes(to, from, 4 * n, kOrder, 4, false); },
       [](To to, From from, Count n) { shuffleBytesScalar(to, from, 4 * n, kOrder, 4); }},
      {"streamed shuffle", 4, 4, [](To to, From from, Count n) { shuffleBytes(to, from, 4 * n, kOrder, 4, true); },
       [](To to, From from, Count n) { shuffleBytesScalar(to, from, 4 * n, kOrder, 4); }},
      {"truncated", 4, 4, [](To to, From from, Count n) { unpremultiplyTruncated(to, from, n, 4, kBackground); },
       [](To to, From from, Count n) { unpremultiplyTruncatedScalar(to, from, n, 4, kBackground); }},
      {"truncated, 6 bytes apart", 6, 6,
       [](To to, From from, Count n) { unpremultiplyTruncated(to, from, n, 6, kBackground); },
       [](To to, From from, Count n) { unpremultiplyTruncatedScalar(to, from, n, 6, kBackground); }},
      {"YUV to ARGB", 8, 4, [](To to, From from, Count n) { convertYUVtoARGB(to, from, n, false); },
       convertYUVtoARGBScalar},
      {"streamed YUV to ARGB", 8, 4, [](To to, From from, Count n) { convertYUVtoARGB(to, from, n, true); },
       convertYUVtoARGBScalar},
      {"ARGB to YUV", 4, 8, [](To to, From from, Count n) { convertARGBtoYUV(to, from, n, false); },
       convertARGBtoYUVScalar},
      {"streamed ARGB to YUV", 4, 8, [](To to, From from, Count n) { convertARGBtoYUV(to, from, n, true); },
       convertARGBtoYUVScalar},
      {"lagging from an even column", 4, 2,
       [](To to, From from, Count n) { convertLaggingYUVtoARGB(to, 4, from, false, n, true); },
       [](To to, From from, Count n) { convertLaggingYUVtoARGBScalar(to, 4, from, false, n); }},
      {"lagging from an odd column", 4, 2,
       [](To to, From from, Count n) { convertLaggingYUVtoARGB(to, 4, from, true, n); },
       [](To to, From from, Count n) { convertLaggingYUVtoARGBScalar(to, 4, from, true, n); }},
      {"lagging into eight bytes", 8, 2,
       [](To to, From from, Count n) { convertLaggingYUVtoARGB(to, 8, from, false, n); },
       [](To to, From from, Count n) { convertLaggingYUVtoARGBScalar(to, 8, from, false, n); }},
  };
}

TEST(KernelCopies, EveryWidthAndOffset) {
  for (const Copy& operation : copies()) {
    SCOPED_TRACE(operation.name);
    onEveryTarget([&] {
      for (std::size_t width = 0; width <= 130; ++width) {
        const Bytes empty = randomBytes(width * operation.written, 1);
        for (const auto& [to, from] : {std::pair{0, 0}, {1, 0}, {0, 1}, {4, 60}, {63, 2}}) {
          Guarded source(randomBytes(width * operation.read, static_cast<unsigned>(width)),
                         static_cast<std::size_t>(from));
          compareInPlace(
              empty, static_cast<std::size_t>(to), [&](auto* p) { operation.fast(p, source.data(), width); },
              [&](auto* p) { operation.definition(p, source.data(), width); });
          ASSERT_FALSE(HasFailure()) << width;
        }
      }
    });
  }
}

// Both ends in the same memory, at every distance that a vector could notice.
TEST(KernelCopies, OverlappingMemoryIsTakenInOrder) {
  const Bytes bytes = randomBytes(1500, 3);
  for (const Copy& operation : copies()) {
    SCOPED_TRACE(operation.name);
    onEveryTarget([&] {
      for (const int distance : {-200, -65, -64, -33, -8, -4, -1, 0, 1, 2, 4, 8, 16, 31, 64, 100, 200}) {
        const std::size_t count = 400 / std::max(operation.written, operation.read);
        compareInPlace(
            bytes, 0, [&](auto* p) { operation.fast(p + 500 + distance, p + 500, count); },
            [&](auto* p) { operation.definition(p + 500 + distance, p + 500, count); });
        ASSERT_FALSE(HasFailure()) << "distance " << distance;
      }
    });
  }
}

// Every Y with every U, every Y with every V, and U with V.
Bytes everyChroma() {
  Bytes bytes;
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) {
      const auto x = static_cast<std::uint8_t>(a);
      const auto y = static_cast<std::uint8_t>(b);
      const std::uint8_t pairs[3][4] = {{x, y, 99, static_cast<std::uint8_t>(~y)}, {160, y, x, 7}, {x, 128, y, 255}};
      for (const auto& pair : pairs) append(bytes, pair);
    }
  }
  const Bytes more = randomBytes(std::size_t{1} << 20, 11);
  for (const auto byte : more) bytes.push_back(byte);
  return bytes;
}

TEST(KernelCopies, EveryChroma) {
  Bytes yuv = everyChroma();
  const Bytes argb(yuv.size() * 2, 1);
  const std::size_t pairs = yuv.size() / 4;
  onEveryTarget([&] {
    compareInPlace(
        argb, 0, [&](auto* p) { convertYUVtoARGB(p, yuv.data(), pairs); },
        [&](auto* p) { convertYUVtoARGBScalar(p, yuv.data(), pairs); });
    compareInPlace(
        argb, 0, [&](auto* p) { convertLaggingYUVtoARGB(p, 4, yuv.data(), false, 2 * pairs); },
        [&](auto* p) { convertLaggingYUVtoARGBScalar(p, 4, yuv.data(), false, 2 * pairs); });
  });
}

TEST(KernelCopies, EveryColor) {
  // Every pair of bytes as two channels of one pixel, and as the same channel of two neighbours.
  Bytes argb;
  for (int a = 0; a < 256; ++a) {
    for (int b = 0; b < 256; ++b) {
      const auto x = static_cast<std::uint8_t>(a);
      const auto y = static_cast<std::uint8_t>(b);
      const std::uint8_t pairs[3][8] = {
          {1, x, y, 255, 2, y, 0, x}, {3, 255, x, y, 4, x, 255, y}, {0, 0, x, 0, 9, y, y, y}};
      for (const auto& pair : pairs) append(argb, pair);
    }
  }
  const Bytes more = randomBytes(std::size_t{1} << 20, 12);
  for (const auto byte : more) argb.push_back(byte);
  const Bytes yuv(argb.size() / 2, 1);
  onEveryTarget([&] {
    compareInPlace(
        yuv, 0, [&](auto* p) { convertARGBtoYUV(p, argb.data(), argb.size() / 8); },
        [&](auto* p) { convertARGBtoYUVScalar(p, argb.data(), argb.size() / 8); });
  });
}

// The formulas once more: division that rounds down instead of shifts.
int shifted(int v) {
  return (v - ((v % 256) + 256) % 256) / 256;
}

TEST(KernelCopies, ConversionsFollowTheFormulas) {
  const Bytes yuv = everyChroma();
  Bytes argb(yuv.size() * 2);
  convertYUVtoARGB(argb.data(), yuv.data(), yuv.size() / 4);
  for (std::size_t i = 0; i < argb.size(); i += 4) {
    const std::size_t pair = i / 8 * 4;
    const int y = yuv[pair + (i % 8 == 0 ? 1 : 3)] - 16;
    const int u = yuv[pair] - 128;
    const int v = yuv[pair + 2] - 128;
    ASSERT_EQ(argb[i], 255);
    ASSERT_EQ(argb[i + 1], std::clamp(shifted(298 * y + 409 * v), 0, 255));
    ASSERT_EQ(argb[i + 2], std::clamp(shifted(298 * y - 100 * u - 208 * v), 0, 255));
    ASSERT_EQ(argb[i + 3], std::clamp(shifted(298 * y + 516 * u), 0, 255));
  }
  Bytes back(yuv.size());
  convertARGBtoYUV(back.data(), argb.data(), back.size() / 4);
  for (std::size_t i = 0; i < back.size(); i += 4) {
    const std::uint8_t* p = argb.data() + 2 * i;
    const int r = (p[1] + p[5]) / 2;
    const int g = (p[2] + p[6]) / 2;
    const int b = (p[3] + p[7]) / 2;
    ASSERT_EQ(back[i], shifted(-38 * r - 74 * g + 112 * b) + 128);
    ASSERT_EQ(back[i + 1], (66 * p[1] + 129 * p[2] + 25 * p[3]) / 256 + 16);
    ASSERT_EQ(back[i + 2], shifted(112 * r - 94 * g - 18 * b) + 128);
    ASSERT_EQ(back[i + 3], (66 * p[5] + 129 * p[6] + 25 * p[7]) / 256 + 16);
  }
}

}  // namespace
