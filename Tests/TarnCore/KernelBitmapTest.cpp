// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCColor.h"
#include "TarnCore/TCPixel.h"
#include "Tests/TarnCore/KernelTesting.h"

#include <sys/mman.h>
#include <unistd.h>

#include <functional>

// Whole-image operations through the bitmap: which layout each code gets, rows and padding, reports, and the ends of
// the allocation. Bitmaps lie between two pages that nobody may touch, and what they should hold is computed once more,
// byte by byte.

namespace {

using kerneltesting::Bytes;
using kerneltesting::randomBytes;

struct Shape {
  std::uint32_t bits, channels;
};
Shape shapeOf(std::uint32_t code) {
  static constexpr Shape shapes[] = {{8, 4},  {8, 4},  {8, 2},  {8, 4},  {16, 4}, {16, 3},
                                     {16, 2}, {16, 1}, {16, 4}, {32, 4}, {8, 4}};
  return shapes[std::min(code, 10u)];
}

// A bitmap of one page that ends where the next page may not be touched.
class PageBitmap : public VortoBitmap {
 public:
  static constexpr std::size_t kPage = 4096;

  PageBitmap(std::uint32_t w, std::uint32_t h, std::uint32_t code, std::uint32_t padding = 0, unsigned seed = 1) {
    region_ = static_cast<std::uint8_t*>(mmap(nullptr, 3 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    mprotect(region_ + kPage, kPage, PROT_READ | PROT_WRITE);
    data = region_ + kPage;
    allocSize = kPage;
    width = w;
    height = h;
    bitsPerChannel = shapeOf(code).bits;
    channels = shapeOf(code).channels;
    rowPadding = padding;
    formatCode = code;
    const Bytes content = randomBytes(kPage, seed);
    std::copy(content.begin(), content.end(), data);
  }
  ~PageBitmap() override {
    data = nullptr;
    munmap(region_, 3 * kPage);
  }
  Bytes bytes() const { return Bytes(data, data + kPage); }
  std::size_t pixel() const { return channels * bitsPerChannel / 8; }
  std::size_t row() const { return width * pixel() + rowPadding; }

 private:
  std::uint8_t* region_;
};

template <class T>
T channelAt(const Bytes& bytes, std::size_t position) {
  T value;
  std::memcpy(&value, bytes.data() + position, sizeof value);
  return value;
}
template <class T>
void setChannelAt(Bytes& bytes, std::size_t position, T value) {
  std::memcpy(bytes.data() + position, &value, sizeof value);
}

// The pixels of width x height that fit the page, each given by its first byte.
template <class Function>
void forPixels(const PageBitmap& bitmap, std::size_t pixelBytes, Function function) {
  const std::size_t pixels = std::size_t{bitmap.width} * bitmap.height;
  for (std::size_t i = 0; i < pixels && (i + 1) * pixelBytes <= PageBitmap::kPage; ++i) function(i * pixelBytes);
}

std::size_t bytesPerPixel(std::uint32_t code) {
  return code == 9 ? 16 : code == 4 || code == 8 ? 8 : 4;
}

struct Operation {
  const char* name;
  std::function<void(VortoBitmap&)> run;
  std::function<void(Bytes&, const PageBitmap&)> expect;
};

void expectInvertedAlpha(Bytes& b, const PageBitmap& bitmap) {
  const std::uint32_t code = bitmap.formatCode;
  forPixels(bitmap, bytesPerPixel(code), [&](std::size_t p) {
    if (code == 9) return setChannelAt(b, p + 12, 1 - channelAt<float>(b, p + 12));
    if (code == 8) return setChannelAt(b, p + 6, half(1 - static_cast<float>(channelAt<half>(b, p + 6))));
    if (code == 4) return setChannelAt<std::uint16_t>(b, p + 6, 65535 - channelAt<std::uint16_t>(b, p + 6));
    if (code == 6) return setChannelAt<std::uint16_t>(b, p + 2, 65535 - channelAt<std::uint16_t>(b, p + 2));
    const std::size_t alpha = code == 1 ? p : p + 3;
    b[alpha] = static_cast<std::uint8_t>(255 - b[alpha]);
  });
}

void expectHalfAlpha(Bytes& b, const PageBitmap& bitmap) {
  const std::uint32_t code = bitmap.formatCode;
  forPixels(bitmap, bytesPerPixel(code), [&](std::size_t p) {
    if (code == 9) return setChannelAt(b, p + 12, 0.5f);
    if (code == 8) return setChannelAt<std::uint16_t>(b, p + 6, 0x3800);
    if (code == 4) return setChannelAt<std::uint16_t>(b, p + 6, 32768);
    if (code == 6) return setChannelAt<std::uint16_t>(b, p + 2, 32768);
    b[code == 1 ? p : p + 3] = 128;
  });
}

void expectAlphaInColors(Bytes& b, const PageBitmap& bitmap) {
  const std::uint32_t code = bitmap.formatCode;
  const std::size_t size = bytesPerPixel(code);
  forPixels(bitmap, size, [&](std::size_t p) {
    const std::size_t alpha = code == 1 ? p : p + size - size / 4;
    for (std::size_t k = 0; k < size; ++k) b[p + k] = b[alpha + k % (size / 4)];
  });
}

template <class Pixel>
void unpremultiplyOne(Bytes& b, std::size_t p, const VortoColor& background) {
  auto pixel = channelAt<Pixel>(b, p);
  const float a = pixel.getAlphafn();
  const auto straight = [a](float c, float under) { return a > 0 ? (c - under * (1 - a)) * (1 / a) : under; };
  pixel.setRedfn(straight(pixel.getRedfn(), background.getRed()));
  pixel.setGreenfn(straight(pixel.getGreenfn(), background.getGreen()));
  pixel.setBluefn(straight(pixel.getBluefn(), background.getBlue()));
  setChannelAt(b, p, pixel);
}

const VortoColor kBackground(VortoColor::YUV, 0.5f, 0.1f, -0.2f, 1);

void expectStraight(Bytes& b, const PageBitmap& bitmap) {
  const std::uint32_t code = bitmap.formatCode;
  forPixels(bitmap, bytesPerPixel(code), [&](std::size_t p) {
    if (code == 9) return unpremultiplyOne<VortoPixel4<float, VortoPixelInfoRGBAFloat>>(b, p, kBackground);
    if (code == 8) return unpremultiplyOne<VortoPixel4<half, VortoPixelInfoRGBAHalfFloat>>(b, p, kBackground);
    if (code == 4) return unpremultiplyOne<VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>>(b, p, kBackground);
    if (code == 1) return unpremultiplyOne<VortoPixel4<std::uint8_t, VortoPixelInfoARGB8>>(b, p, kBackground);
    unpremultiplyOne<VortoPixel4<std::uint8_t, VortoPixelInfoRGBA8>>(b, p, kBackground);
  });
}

void expectPremultiplied(Bytes& b, const PageBitmap& bitmap) {
  if (bitmap.formatCode > 1) return;
  for (std::size_t y = 0; y < bitmap.height; ++y) {
    for (std::size_t x = 0; x < bitmap.width; ++x) {
      const std::size_t p = y * bitmap.row() + 4 * x;
      if (p + 4 > b.size()) return;
      const std::size_t alpha = bitmap.formatCode == 1 ? p : p + 3;
      for (std::size_t k = p; k < p + 4; ++k) {
        if (k != alpha) b[k] = static_cast<std::uint8_t>(b[k] * b[alpha] / 255);
      }
    }
  }
}

void rotatePixels(Bytes& b, const PageBitmap& bitmap, bool toARGB) {
  const std::uint32_t code = bitmap.formatCode;
  if (code != 4 && code != 9 && code != (toARGB ? 0u : 1u)) return;
  const auto size = static_cast<std::ptrdiff_t>(bytesPerPixel(code));
  forPixels(bitmap, bytesPerPixel(code), [&](std::size_t p) {
    const auto first = b.begin() + static_cast<std::ptrdiff_t>(p);
    std::rotate(first, first + (toARGB ? size - size / 4 : size / 4), first + size);
  });
}

void expectFlipped(Bytes& b, const PageBitmap& bitmap) {
  const Bytes before = b;
  for (std::size_t i = 0; i < bitmap.row() * bitmap.height; ++i) {
    const std::size_t from = (bitmap.height - 1 - i / bitmap.row()) * bitmap.row() + i % bitmap.row();
    if (i < b.size() && from < b.size()) b[i] = before[from];
  }
}

const Operation kOperations[] = {
    {"invertAlpha", [](VortoBitmap& b) { b.invertAlpha(); }, expectInvertedAlpha},
    {"setConstantAlpha", [](VortoBitmap& b) { b.setConstantAlpha(0.5); }, expectHalfAlpha},
    {"duplicateAlphaToRGB", [](VortoBitmap& b) { b.duplicateAlphaToRGB(); }, expectAlphaInColors},
    {"unpremultiply", [](VortoBitmap& b) { b.unpremultiply(kBackground); }, expectStraight},
    {"preMult", [](VortoBitmap& b) { b.preMult(); }, expectPremultiplied},
    {"convertToARGB", [](VortoBitmap& b) { b.convertToARGB(); },
     [](Bytes& bytes, const PageBitmap& b) { rotatePixels(bytes, b, true); }},
    {"convertToRGBA", [](VortoBitmap& b) { b.convertToRGBA(); },
     [](Bytes& bytes, const PageBitmap& b) { rotatePixels(bytes, b, false); }},
    {"flip", [](VortoBitmap& b) { b.flip(); }, expectFlipped},
};

class InPlaceDispatch : public testing::TestWithParam<std::uint32_t> {};

TEST_P(InPlaceDispatch, FollowsTheTable) {
  struct Size {
    std::uint32_t width, height, padding;
  };
  // The last two are larger than the page: what they do ends with it.
  for (const Size& size : {Size{5, 3, 0}, {16, 4, 0}, {7, 4, 3}, {1, 1, 0}, {0, 5, 0}, {70, 60, 0}, {33, 90, 5}}) {
    for (const Operation& operation : kOperations) {
      PageBitmap bitmap(size.width, size.height, GetParam(), size.padding);
      Bytes expected = bitmap.bytes();
      operation.expect(expected, bitmap);
      operation.run(bitmap);
      const bool same = expected == bitmap.bytes();
      EXPECT_TRUE(same) << operation.name << " of " << size.width << " x " << size.height;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(EveryCode, InPlaceDispatch, testing::Range(0u, 11u));

TEST(KernelBitmap, OnlyEightBitReorderingChangesTheCode) {
  for (std::uint32_t code = 0; code < 11; ++code) {
    PageBitmap bitmap(4, 4, code);
    bitmap.convertToARGB();
    EXPECT_EQ(bitmap.formatCode, code == 0 ? 1 : code);
    bitmap.formatCode = code;
    bitmap.convertToRGBA();
    EXPECT_EQ(bitmap.formatCode, code == 1 ? 0 : code);
  }
}

TEST(KernelBitmap, TruncatingFormsTakeTheFirstFourBytesOfAnyPixel) {
  const auto truncated = [](float v) { return static_cast<std::uint8_t>(v * 255.0f); };
  for (const std::uint32_t code : {0u, 1u, 4u, 5u, 9u}) {
    PageBitmap source(9, 5, code, 2);
    source.data[0] = 0;  // one transparent pixel
    PageBitmap destination(9, 5, code, 7, 2);
    Bytes inPlace = source.bytes();
    Bytes copied = destination.bytes();
    for (std::size_t i = 0; i < 45; ++i) {
      const std::size_t p = i / 9 * source.row() + i % 9 * source.pixel();
      const std::size_t to = i / 9 * destination.row() + i % 9 * source.pixel();
      const Bytes before = source.bytes();
      const float a = static_cast<float>(before[p]) / 255;
      copied[to] = truncated(a);
      const float under[3] = {0.25f, 0.5f, 1.0f};
      for (std::size_t k = 1; k < 4; ++k) {
        const float c = static_cast<float>(before[p + k]) / 255;
        if (a > 0) inPlace[p + k] = truncated(std::min(c / a, 1.0f));
        const float straight = a > 0 ? (c - under[k - 1] * (1 - a)) / a : under[k - 1];
        copied[to + k] = truncated(std::clamp(straight, 0.0f, 1.0f));
      }
      if (a > 0) inPlace[p] = truncated(a);
    }
    destination.copyWithUnPreMult(source, VortoColor(0.25f, 0.5f, 1, 1));
    source.unPreMult();
    EXPECT_EQ(source.bytes(), inPlace) << code;
    EXPECT_EQ(destination.bytes(), copied) << code;
  }
}

TEST(KernelBitmap, TruncatedExamples) {
  PageBitmap bitmap(3, 1, 1);
  const std::uint8_t in[12] = {0, 10, 20, 30, 128, 64, 128, 200, 255, 1, 2, 254};
  const std::uint8_t out[12] = {0, 10, 20, 30, 128, 127, 255, 255, 255, 1, 2, 254};
  std::memcpy(bitmap.data, in, 12);
  bitmap.unPreMult();
  EXPECT_EQ(std::memcmp(bitmap.data, out, 12), 0);
}

TEST(KernelBitmap, SwizzlesTakeTheFirstFourBytesOfAnyPixel) {
  for (const bool toRGBA : {true, false}) {
    for (const std::uint32_t code : {0u, 1u, 4u, 5u, 9u}) {
      PageBitmap source(9, 40, code, 2);  // of the larger layouts more than a page
      PageBitmap destination(9, 40, code, 0, 2);
      const Bytes from = source.bytes();
      Bytes expected = destination.bytes();
      for (std::size_t i = 0; i < 9 * 40; ++i) {
        const std::size_t p = i / 9 * source.row() + i % 9 * source.pixel();
        const std::size_t to = i / 9 * destination.row() + i % 9 * source.pixel();
        if (p + 4 > from.size() || to + 4 > from.size()) continue;
        for (std::size_t k = 0; k < 4; ++k) expected[to + k] = from[p + (toRGBA ? k + 1 : k + 3) % 4];
      }
      toRGBA ? destination.copyWithSwizzleARGBToRGBA(source) : destination.copyWithSwizzleRGBToARGB(source);
      EXPECT_EQ(destination.bytes(), expected) << code;
      EXPECT_EQ(source.bytes(), from);
    }
  }
}

TEST(KernelBitmap, FlippingCopies) {
  for (const std::uint32_t height : {1u, 2u, 7u, 60u}) {  // the last is larger than the page
    PageBitmap source(20, height, 1, 4);
    PageBitmap plain(20, height, 1, 4, 2);
    PageBitmap swizzled(20, height, 0, 4, 3);
    const Bytes from = source.bytes();
    Bytes expectedPlain = plain.bytes();
    Bytes expectedSwizzled = swizzled.bytes();
    for (std::size_t i = 0; i < height * source.row(); ++i) {
      const std::size_t column = i % source.row();
      const std::size_t row = (height - 1 - i / source.row()) * source.row();
      if (i < from.size() && row + column < from.size()) expectedPlain[i] = from[row + column];
      const std::size_t pixel = row + column / 4 * 4;
      if (column < 80 && i / 4 * 4 + 4 <= from.size() && pixel + 4 <= from.size()) {
        expectedSwizzled[i] = from[pixel + (column + 1) % 4];
      }
    }
    plain.copyWithFlip(source);
    swizzled.copyWithFlipAndSwizzleARGBtoRGBA(source);
    EXPECT_EQ(plain.bytes(), expectedPlain) << height;
    EXPECT_EQ(swizzled.bytes(), expectedSwizzled) << height;
  }
}

// Rows follow one another, so the upper half becomes the lower one, which then finds itself.
TEST(KernelBitmap, FlippingCopyOfItself) {
  PageBitmap bitmap(8, 5, 0);
  Bytes expected = bitmap.bytes();
  for (std::size_t i = 0; i < 64; ++i) expected[i] = expected[(4 - i / 32) * 32 + i % 32];
  bitmap.copyWithFlip(bitmap);
  EXPECT_EQ(bitmap.bytes(), expected);
}

void storeExpectedARGB(Bytes& bytes, std::size_t to, int Y, int U, int V) {
  const int y = 298 * (Y - 16);
  const int values[4] = {255 << 8, y + 409 * (V - 128), y - 100 * (U - 128) - 208 * (V - 128), y + 516 * (U - 128)};
  for (std::size_t k = 0; k < 4; ++k) bytes[to + k] = static_cast<std::uint8_t>(std::clamp(values[k] >> 8, 0, 255));
}

TEST(KernelBitmap, FlippingConversion) {
  for (const std::uint32_t width : {1u, 5u, 16u}) {
    PageBitmap source(width, 6, 2, 2);
    PageBitmap destination(width, 6, 1, 4, 2);
    const Bytes from = source.bytes();
    Bytes expected = destination.bytes();
    for (std::size_t row = 0; row < 6; ++row) {
      const std::size_t begin = (5 - row) * source.row();
      for (std::size_t i = 0; i < source.row(); i += 4) {
        const std::size_t to = row * destination.row() + 2 * i;
        storeExpectedARGB(expected, to, from[begin + i + 1], from[begin + i], from[begin + i + 2]);
        storeExpectedARGB(expected, to + 4, from[begin + i + 3], from[begin + i], from[begin + i + 2]);
      }
    }
    destination.copyWithFlip(source);
    EXPECT_EQ(destination.bytes(), expected) << width;
  }
}

TEST(KernelBitmap, CroppingCopiesWhatBothHave) {
  for (const std::uint32_t code : {0u, 4u, 7u}) {
    for (const bool flip : {false, true}) {
      for (const auto& [x, y] :
           {std::pair{0, 0}, {3, 2}, {-4, -3}, {0, -1}, {5, 1000}, {-2000000000, 7}, {2147483647, -2147483647 - 1}}) {
        PageBitmap source(17, 9, code, 6);
        PageBitmap destination(11, 6, code, 0, 2);
        const Bytes from = source.bytes();
        Bytes expected = destination.bytes();
        for (std::size_t i = 0; i < destination.row() * 6; ++i) {
          const auto row = static_cast<std::int64_t>(i / destination.row());
          const std::int64_t begin = (y + (flip ? 5 - row : row)) * static_cast<std::int64_t>(source.row()) +
                                     x * static_cast<std::int64_t>(source.pixel()) +
                                     static_cast<std::int64_t>(i % destination.row());
          if (begin >= 0 && begin < 4096) expected[i] = from[static_cast<std::size_t>(begin)];
        }
        destination.copyWithCropping(source, x, y, flip);
        EXPECT_EQ(destination.bytes(), expected) << code << " at " << x << ", " << y;
      }
    }
  }
}

TEST(KernelBitmap, CroppedChromaLags) {
  for (const std::uint32_t code : {1u, 4u}) {  // four and eight bytes a pixel
    for (const int x : {0, 1, 2, 5}) {
      PageBitmap source(80, 6, 2);
      PageBitmap destination(70, 3, code, 0, 2);
      const Bytes from = source.bytes();
      Bytes expected = destination.bytes();
      for (std::size_t row = 0; row < 3; ++row) {
        const std::size_t begin = (2 + (2 - row)) * source.row();
        const std::size_t pair = begin + static_cast<std::size_t>(x / 2) * 4;
        int U = from[pair];
        int V = from[pair + 2];
        for (std::size_t j = 0; j < 70; ++j) {
          const std::size_t c = static_cast<std::size_t>(x) + j;
          (c % 2 == 0 ? U : V) = from[begin + 2 * c];
          storeExpectedARGB(expected, row * destination.row() + j * destination.pixel(), from[begin + 2 * c + 1], U, V);
        }
      }
      destination.copyWithCropping(source, x, 2, true);
      EXPECT_EQ(destination.bytes(), expected) << code << " from column " << x;
    }
  }
}

// Wherever the rectangle lies, and whatever the descriptors say, the pages around stay untouched.
TEST(KernelBitmap, NothingLeavesTheAllocation) {
  const std::uint32_t sizes[] = {0, 1, 3, 64, 1000, 65536, 0x40000001, 0xFFFFFFFF};
  const int places[] = {0, 1, -1, -70, 2047, 2048, 1000000, 2147483647, -2147483647 - 1};
  std::mt19937 random(5);
  const auto pick = [&](const auto& values) { return values[random() % std::size(values)]; };
  for (int round = 0; round < 3000; ++round) {
    PageBitmap a(pick(sizes), pick(sizes), random() % 11, random() % 3 ? 0 : random() % 9);
    PageBitmap b(pick(sizes), pick(sizes), random() % 11, random() % 3 ? 0 : random() % 9, 2);
    if (random() % 4 == 0) a.channels = pick(sizes);
    if (random() % 4 == 0) b.bitsPerChannel = pick(sizes);
    a.copyWithCropping(b, pick(places), pick(places), random() % 2);
    a.copyWithSwizzleARGBToRGBA(b);
    a.copyWithUnPreMult(b, VortoColor::WHITE);
    VortoBitmap::convertYUVtoRGBA(&a, &b);
    VortoBitmap::convertRGBAtoYUV(&a, &b);
    for (const Operation& operation : kOperations) operation.run(a);
    a.unPreMult();
    a.channels = b.channels;
    a.bitsPerChannel = b.bitsPerChannel;
    a.width = b.width;
    a.rowPadding = b.rowPadding;
    a.copyWithFlip(b);
    a.copyWithFlipAndSwizzleARGBtoRGBA(b);
  }
}

TEST(KernelBitmap, WithoutMemoryNothingHappens) {
  VortoBitmap empty;
  PageBitmap other(4, 4, 1);
  const Bytes before = other.bytes();
  for (std::uint32_t code = 0; code < 11; ++code) {
    empty.formatCode = code;
    empty.width = empty.height = 4;
    empty.channels = 4;
    empty.bitsPerChannel = 8;
    empty.allocSize = 4096;  // as after a failed allocation
    for (const Operation& operation : kOperations) operation.run(empty);
    empty.unPreMult();
    for (const auto& [to, from] : {std::pair<VortoBitmap*, VortoBitmap*>{&empty, &other}, {&other, &empty}}) {
      to->copyWithFlip(*from);
      to->copyWithFlipAndSwizzleARGBtoRGBA(*from);
      to->copyWithSwizzleARGBToRGBA(*from);
      to->copyWithSwizzleRGBToARGB(*from);
      to->copyWithCropping(*from, 0, 0, false);
      to->copyWithUnPreMult(*from, VortoColor::RED);
    }
    EXPECT_EQ(empty.formatCode, code);
  }
  EXPECT_EQ(other.bytes(), before);
}

TEST(KernelBitmapDeathTest, MismatchedRowsAndFormatsAreReported) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  PageBitmap narrow(4, 4, 0);
  PageBitmap wide(5, 4, 0);
  PageBitmap yuv(4, 4, 2);
  // The report goes to standard output; the sink turns it to where it can be matched.
  const auto reported = [](auto run) {
    dup2(2, 1);
    run();
  };
  const char* const report = "File TarnCore/TCBitmap, line [0-9]+ should not have been reached";
  EXPECT_DEATH(reported([&] { narrow.copyWithFlip(wide); }), report);
  EXPECT_DEATH(reported([&] { narrow.copyWithFlip(yuv); }), report);
  EXPECT_DEATH(reported([&] { yuv.copyWithFlip(narrow); }), report);
  EXPECT_DEATH(reported([&] { narrow.copyWithFlipAndSwizzleARGBtoRGBA(wide); }), report);
}

}  // namespace
