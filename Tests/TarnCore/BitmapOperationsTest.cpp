// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Sanitizer.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCBitmapScaling.h"
#include "TarnCore/TCColor.h"
#include "TarnCore/TCPixel.h"
#include "Tests/TarnCore/EveryTarget.h"
#include "Tests/TarnCore/PixelOracle.h"

#include <sys/mman.h>
#include <unistd.h>

// Whole-image operations through the bitmap: which layout each code gets, rows and padding, reports, and the ends of
// the allocation. Bitmaps lie between two pages that nobody may touch.

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);  // of bitmap-operations

namespace {

using oracle::Bytes;
using oracle::From;
using oracle::layoutOf;
using oracle::randomBytes;
using oracle::To;

struct Size {
  std::uint32_t width, height, padding = 0;
};

// A bitmap of few pages, of random bytes, that ends where the next page may not be touched.
class PageBitmap : public VortoBitmap {
 public:
  static constexpr std::size_t kPage = 4096;

  PageBitmap(Size size, std::uint32_t code, unsigned seed = 1, std::uint32_t pages = 1) {
    allocSize = pages * kPage;
    region_ =
        static_cast<std::uint8_t*>(mmap(nullptr, allocSize + 2 * kPage, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    mprotect(region_ + kPage, allocSize, PROT_READ | PROT_WRITE);
    data = region_ + kPage;
    width = size.width;
    height = size.height;
    bitsPerChannel = static_cast<std::uint32_t>(8 * oracle::bytesOf(layoutOf(code).number));
    channels = static_cast<std::uint32_t>(layoutOf(code).channels);
    rowPadding = size.padding;
    formatCode = code;
    static std::map<unsigned, Bytes> contents;
    Bytes& content = contents[seed];
    if (content.size() < allocSize) content = randomBytes(allocSize, seed);
    std::copy_n(content.begin(), allocSize, data);
  }
  ~PageBitmap() override {
    data = nullptr;
    munmap(region_, allocSize + 2 * kPage);
  }
  Bytes bytes() const { return Bytes(data, data + allocSize); }
  std::size_t pixel() const { return channels * bitsPerChannel / 8; }
  std::size_t row() const { return width * pixel() + rowPadding; }

 private:
  std::uint8_t* region_;
};

constexpr oracle::Color kUnder = {0.25f, 0.5f, 0.75f};
const VortoColor kBackground(0.25f, 0.5f, 0.75f, 1);

using V = VortoBitmap;

struct InPlace {
  const char* name;
  std::function<void(V&)> run;
  const char* layouts;  // the format whose layout each code takes, by code from 0 to 10; '-' leaves the bitmap alone
  bool inRows;          // of so many channels and bits with padding; else consecutive pixels of the layout
  std::function<void(const oracle::Layout&, To)> pixel;
};

std::function<void(V&)> output(bool unpremultiply, bool opaque, bool alphaToGray) {
  return [=](V& b) { b.doOutputConversion(unpremultiply, opaque, alphaToGray, kBackground); };
}
auto alphaOf(double alpha) {
  return [=](const oracle::Layout& layout, To p) { oracle::setAlpha(layout, p, alpha); };
}
void straight(const oracle::Layout& layout, To p) {
  oracle::unpremultiply(layout, p, kUnder);
}

const InPlace kInPlace[] = {
    {"invertAlpha", &V::invertAlpha, "01004060890", false, oracle::complementAlpha},
    {"setConstantAlpha", [](V& b) { b.setConstantAlpha(0.5); }, "01004060890", false, alphaOf(0.5)},
    {"setConstantAlpha of more than 1", [](V& b) { b.setConstantAlpha(1.3); }, "01004060890", false, alphaOf(1.3)},
    {"duplicateAlphaToRGB", &V::duplicateAlphaToRGB, "01004000890", false, oracle::alphaIntoColors},
    {"unpremultiply", [](V& b) { b.unpremultiply(kBackground); }, "01004000890", false, straight},
    {"preMult", &V::preMult, "01---------", true, oracle::premultiply},
    {"unPreMult", &V::unPreMult, "00000000000", true, [](auto&, To p) { oracle::unpremultiplyTruncated(p); }},
    {"convertToARGB", &V::convertToARGB, "0---4----9-", false, [](auto& l, To p) { oracle::rotate(l, p, true); }},
    {"convertToRGBA", &V::convertToRGBA, "-1--4----9-", false, [](auto& l, To p) { oracle::rotate(l, p, false); }},
    {"output", output(false, true, false), "01004060890", false, alphaOf(1)},
    {"output to gray", output(true, true, true), "01004000890", false, oracle::alphaIntoColors},
    {"output of nothing", output(false, false, false), "-----------", false, nullptr},
    {"output unpremultiplied", output(true, false, false), "01004000890", false, straight},
};

void expectInPlace(const InPlace& operation, const PageBitmap& bitmap, Bytes& expected) {
  const char layoutCode = operation.layouts[bitmap.formatCode];
  if (layoutCode == '-') return;
  const oracle::Layout layout = layoutOf(static_cast<std::uint32_t>(layoutCode - '0'));
  const std::size_t size = operation.inRows ? 4 : layout.pixelBytes();
  const std::size_t step = operation.inRows ? bitmap.pixel() : size;
  for (std::size_t y = 0; y < bitmap.height; ++y) {
    for (std::size_t x = 0; x < bitmap.width; ++x) {
      const std::size_t at = operation.inRows ? y * bitmap.row() + x * step : (y * bitmap.width + x) * step;
      if (at + size <= expected.size()) operation.pixel(layout, expected.data() + at);
    }
  }
}

Bytes flipped(const Bytes& before, std::size_t row, std::size_t height) {
  Bytes after = before;
  for (std::size_t i = 0; i < row * height && i < before.size(); ++i) {
    const std::size_t from = (height - 1 - i / row) * row + i % row;
    if (from < before.size()) after[i] = before[from];
  }
  return after;
}

// The last two sizes are larger than the page: what they do ends with it. Only 8-bit reordering changes the code.
TEST(BitmapInPlace, FollowsTheTable) {
  for (std::uint32_t code = 0; code < 11; ++code) {
    for (const Size& size : {Size{5, 3}, {16, 4}, {7, 4, 3}, {1, 1}, {0, 5}, {70, 60}, {33, 90, 5}}) {
      SCOPED_TRACE(std::to_string(code) + " of " + std::to_string(size.width) + " x " + std::to_string(size.height));
      for (const InPlace& operation : kInPlace) {
        PageBitmap bitmap(size, code);
        bitmap.data[0] = 0;
        Bytes expected = bitmap.bytes();
        expectInPlace(operation, bitmap, expected);
        operation.run(bitmap);
        const bool isReordered = std::string_view(operation.name).starts_with("convertTo") && code < 2;
        EXPECT_EQ(bitmap.formatCode, isReordered && operation.layouts[code] != '-' ? 1 - code : code) << operation.name;
        EXPECT_TRUE(oracle::areSame(layoutOf(code).number, expected, bitmap.bytes())) << operation.name;
      }
      PageBitmap bitmap(size, code);
      const Bytes expected = flipped(bitmap.bytes(), bitmap.row(), size.height);
      bitmap.flip();
      EXPECT_TRUE(expected == bitmap.bytes()) << "flip";
    }
  }
}

// What a copy makes of the destination's bytes, on bitmaps that lie in separate pages or are one.
struct Copy {
  const char* name;
  std::function<void(V& to, const V& from)> run;
  bool mirrored;
  void (*pixel)(To, From);  // of the first four bytes of each pixel; null where whole rows go with their padding
  const char* codes;
};

template <bool alphaFirst>
void swizzlePixel(To to, From from) {
  Bytes pixel(from, from + 4);
  oracle::rotate(layoutOf(oracle::kRGBA8), pixel.data(), alphaFirst);
  std::copy(pixel.begin(), pixel.end(), to);
}
void straightPixel(To to, From from) {
  oracle::unpremultiplyTruncated(to, from, kUnder);
}
const Copy kCopies[] = {
    {"flip", &V::copyWithFlip, true, nullptr, "012456789"},
    {"flip to RGBA", &V::copyWithFlipAndSwizzleARGBtoRGBA, true, swizzlePixel<false>, "01"},
    {"to RGBA", &V::copyWithSwizzleARGBToRGBA, false, swizzlePixel<false>, "01459"},
    {"to ARGB", &V::copyWithSwizzleRGBToARGB, false, swizzlePixel<true>, "01459"},
    {"unPreMult", [](V& to, const V& from) { to.copyWithUnPreMult(from, kBackground); }, false, straightPixel, "01459"},
    {"output", [](V& t, const V& f) { t.copyWithOutputConversion(f, true, false, false, kBackground); }, false,
     straightPixel, "019"},
};

void expectCopy(const Copy& copy, const PageBitmap& to, const PageBitmap& from, const Bytes& in, Bytes& expected) {
  const std::size_t size = copy.pixel ? 4 : 1;
  const std::size_t step = copy.pixel ? from.pixel() : 1;
  for (std::size_t y = 0; y < from.height; ++y) {
    const std::size_t line = (copy.mirrored ? from.height - 1 - y : y) * from.row();
    for (std::size_t x = 0; copy.pixel ? x < from.width * step : x < from.row(); x += step) {
      if (y * to.row() + x + size > expected.size() || line + x + size > in.size()) continue;
      if (copy.pixel) {
        copy.pixel(&expected[y * to.row() + x], &in[line + x]);
      } else {
        expected[y * to.row() + x] = in[line + x];
      }
    }
  }
}

TEST(BitmapCopies, FollowTheTable) {
  for (const Copy& copy : kCopies) {
    for (const char code : std::string(copy.codes)) {
      // The last two exceed the page.
      for (const Size& size : {Size{16, 1, 4}, {9, 2}, {7, 4, 5}, {20, 60, 4}, {70, 70}}) {
        PageBitmap from(size, static_cast<std::uint32_t>(code - '0'));
        from.data[0] = 0;
        const Size shape = {size.width, size.height, copy.mirrored ? size.padding : 2 * size.padding};
        PageBitmap to(shape, from.formatCode, 2);
        const Bytes in = from.bytes();
        Bytes expected = to.bytes();
        expectCopy(copy, to, from, in, expected);
        copy.run(to, from);
        EXPECT_TRUE(to.bytes() == expected)
            << copy.name << " of " << code << ", " << size.width << " x " << size.height;
        EXPECT_TRUE(from.bytes() == in);
      }
    }
  }
}

TEST(BitmapCopies, FlippingConversionAndItself) {
  for (const std::uint32_t width : {1u, 5u, 16u}) {
    const PageBitmap from({width, 6, 2}, 2);
    PageBitmap to({width, 6, 4}, 1, 2);
    Bytes expected = to.bytes();
    for (std::size_t row = 0; row < 6; ++row) {
      for (std::size_t i = 0; i < from.row(); i += 4) {
        oracle::pairToARGB(&expected[row * to.row() + 2 * i], from.data + (5 - row) * from.row() + i);
      }
    }
    to.copyWithFlip(from);
    EXPECT_EQ(to.bytes(), expected) << width;
  }
  // Rows follow one another, so the upper half becomes the lower one, which then finds itself.
  PageBitmap bitmap({8, 5}, 0);
  Bytes expected = bitmap.bytes();
  for (std::size_t i = 0; i < 64; ++i) expected[i] = expected[(4 - i / 32) * 32 + i % 32];
  bitmap.copyWithFlip(bitmap);
  EXPECT_EQ(bitmap.bytes(), expected);
}

TEST(BitmapCopies, CroppingCopiesWhatBothHaveAndChromaLags) {
  constexpr int most = 2147483647;
  constexpr std::pair<int, int> corners[] = {{0, 0},    {3, 2},           {-4, -3},         {0, -1},
                                             {5, 1000}, {-2000000000, 7}, {most, -most - 1}};
  for (int i = 0; i < 7 * 3 * 2; ++i) {
    const auto [x, y] = corners[i % 7];
    const std::uint32_t code = std::array{0u, 4u, 7u}[i / 7 % 3];
    PageBitmap from({17, 9, 6}, code), to({11, 6}, code, 2);
    const auto fromRow = static_cast<std::int64_t>(from.row()), toRow = static_cast<std::int64_t>(to.row());
    const Bytes in = from.bytes();
    Bytes expected = to.bytes();
    for (std::int64_t at = 0; at < toRow * 6; ++at) {
      const std::int64_t row = y + (i >= 21 ? 5 - at / toRow : at / toRow);
      const std::int64_t begin = row * fromRow + x * static_cast<std::int64_t>(from.pixel()) + at % toRow;
      if (begin >= 0 && begin < 4096) expected[static_cast<std::size_t>(at)] = in[static_cast<std::size_t>(begin)];
    }
    to.copyWithCropping(from, x, y, i >= 21);
    EXPECT_EQ(to.bytes(), expected) << code << " at " << x << ", " << y;
  }
  for (const std::uint32_t code : {1u, 4u}) {  // four and eight bytes a pixel
    for (const std::size_t x : {0, 1, 2, 5}) {
      PageBitmap from({80, 6}, 2), to({70, 3}, code, 2);
      Bytes expected = to.bytes();
      for (std::size_t row = 0; row < 3; ++row) {
        const From pixels = from.data + (4 - row) * from.row() + 2 * x;
        oracle::laggingRow(&expected[row * to.row()], to.pixel(), pixels, x % 2 == 1, 70);
      }
      to.copyWithCropping(from, static_cast<int>(x), 2, true);
      EXPECT_EQ(to.bytes(), expected) << code << " from column " << x;
    }
  }
}

// Wherever the rectangle lies, and whatever the descriptors say: what the fuzz target checks, on random steps.
TEST(BitmapCopies, NothingLeavesTheAllocation) {
  for (unsigned seed = 0; seed < 6000; ++seed) {
    const Bytes steps = randomBytes(300, seed);
    LLVMFuzzerTestOneInput(steps.data(), steps.size());
  }
}

TEST(BitmapCopies, WithoutMemoryNothingHappens) {
  PageBitmap other({4, 4}, 1);
  const Bytes before = other.bytes();
  for (std::uint32_t code = 0; code < 11; ++code) {
    VortoBitmap empty;
    empty.formatCode = code;
    empty.width = empty.height = empty.channels = 4;
    empty.bitsPerChannel = 8;
    empty.allocSize = 4096;  // as after a failed allocation
    for (const InPlace& operation : kInPlace) operation.run(empty);
    for (const auto& [to, from] : {std::pair<V*, V*>{&empty, &other}, {&other, &empty}}) {
      for (const Copy& copy : kCopies) copy.run(*to, *from);
      to->copy(*from);
      to->copyWithCropping(*from, 0, 0, false);
      to->copyWithScaling(*from);
      to->copyWithScalingAndDepthConversion(*from);
    }
    EXPECT_EQ(empty.formatCode, code);
  }
  EXPECT_EQ(other.bytes(), before);
}

TEST(BitmapCopiesDeathTest, MismatchedRowsAndFormatsAreReported) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  PageBitmap narrow({4, 4}, 0), wide({5, 4}, 0), yuv({4, 4}, 2);
  const auto flip = &V::copyWithFlip, toRGBA = &V::copyWithFlipAndSwizzleARGBtoRGBA;
  for (const auto& [to, from, run] :
       {std::tuple{&narrow, &wide, flip}, {&narrow, &yuv, flip}, {&yuv, &narrow, flip}, {&narrow, &wide, toRGBA}}) {
    // The report goes to standard output, which is turned to where it can be matched.
    EXPECT_DEATH((dup2(2, 1), (to->*run)(*from)), "File TarnCore/TCBitmap, line [0-9]+ should not have been reached");
  }
}

// What scaling by nearest neighbours makes, each pixel by convert.
template <class Convert>
Bytes scaled(const PageBitmap& to, std::size_t written, const PageBitmap& from, std::size_t read, Convert convert) {
  Bytes expected = to.bytes();
  for (std::size_t i = 0; i < std::size_t{to.width} * to.height && (i + 1) * written <= to.allocSize; ++i) {
    const std::uint64_t k = oracle::sourceIndex(i / to.width, to.height, from.height) * from.width +
                            oracle::sourceIndex(i % to.width, to.width, from.width);
    if ((k + 1) * read <= from.allocSize) convert(&expected[i * written], from.data + k * read);
  }
  return expected;
}

// Runs in every instruction set: as expected, and between them every bit is equal.
void expectScaled(const PageBitmap& to, const Bytes& expected, const std::function<void(V&)>& run) {
  Bytes first;
  onEveryTarget([&] {
    PageBitmap actual({to.width, to.height}, to.formatCode, 2, to.allocSize / PageBitmap::kPage);
    run(actual);
    if (first.empty()) first = actual.bytes();
    ASSERT_TRUE(actual.bytes() == first) << to.width;
  });
  ASSERT_TRUE(oracle::areSame(layoutOf(to.formatCode).number, first, expected)) << to.formatCode << ", " << to.width;
}

// 4:2:2 is turned into colors first.
TEST(BitmapScaling, TakesPixelsInTheDestinationsLayoutAndConvertsThemByBothCodes) {
  std::vector<std::pair<Size, Size>> scales = {{{6, 4}, {6, 4}},       {{6, 4}, {3, 2}},       {{6, 4}, {24, 9}},
                                               {{6, 4}, {4, 1}},       {{4000, 3}, {9001, 4}}, {{3, 1}, {0, 1}},
                                               {{90, 4}, {700, 3}},    {{90, 4}, {1, 1}},      {{70, 9}, {40, 9}},
                                               {{1920, 4}, {1280, 3}}, {{0, 0}, {2, 1}}};
  for (std::uint32_t width = 1; width <= 70; ++width) {
    scales.push_back({{width, 3}, {40, 2}});
    scales.push_back({{61, 2}, {width, 5}});
  }
  for (const auto& [fromSize, toSize] : scales) {
    const std::uint32_t pages = fromSize.width > 1000 ? 16 : 1;
    const bool everyCode = fromSize.width == 6;
    for (std::uint32_t code = 0; code < 11; ++code) {  // 3 and 10 count as RGBA8
      const PageBitmap to(toSize, code, 2, pages);
      const std::size_t step = to.pixel();
      const bool converts = code == 1 || code == 4 || code == 9;
      for (std::uint32_t source = 0; source < 11; ++source) {
        const bool isColors = source == 2 && code == 1 && fromSize.width > 0;
        if (!everyCode && !isColors && source != code && (!converts || source % 4 > 1)) continue;
        const PageBitmap from(fromSize, source, 1, pages);
        PageBitmap colors(fromSize, source == 2 ? 1 : source, 1, pages);  // those of 4:2:2, or the same again
        const std::size_t pairs = source == 2 ? (std::size_t{fromSize.width} * fromSize.height + 1) / 2 : 0;
        for (std::size_t i = 0; i < pairs; ++i) oracle::pairToARGB(colors.data + 8 * i, from.data + 4 * i);
        if (everyCode ? source != 2 || step <= 4 : source != 2 || isColors) {
          const Bytes expected = scaled(to, step, colors, step, [&](To o, From i) { std::copy_n(i, step, o); });
          expectScaled(to, expected, [&](V& b) { b.copyWithScaling(from); });
        }
        // Those of no conversion count as RGBA8.
        const oracle::Layout in = layoutOf(source > 4 && source < 8 ? 0 : colors.formatCode);
        const auto convert = [&](To o, From i) { oracle::convert(layoutOf(code), o, in, i); };
        expectScaled(to, converts ? scaled(to, step, colors, in.pixelBytes(), convert) : to.bytes(),
                     [&](V& b) { b.copyWithScalingAndDepthConversion(from); });
      }
    }
    ASSERT_FALSE(HasFailure()) << fromSize.width;
  }
}

// The two families take their arguments in opposite orders.
TEST(BitmapScaling, TypedScalers) {
  using Pixel = VortoPixel4<std::uint16_t, VortoPixelInfoRGBA16>;
  VortoBitmapRGBA16 source(4, 4), half(2, 2);
  VortoBitmapARGB8 bytes(2, 2);
  const Bytes before = randomBytes(source.getSize(), 5);
  source.setData(before.data());
  scaleBitmap<VortoBitmapRGBA16, Pixel>(&half, &source);
  scaleAndDepthConvertBitmapToARGB8<VortoBitmapRGBA16, Pixel>(&source, &bytes);
  for (std::size_t i = 0; i < 4; ++i) {
    const From from = source.data + (i / 2 * 8 + i % 2 * 2) * 8;
    std::uint8_t pixel[4];
    oracle::convert(layoutOf(1), pixel, layoutOf(4), from);
    EXPECT_TRUE(std::equal(from, from + 8, half.data + i * 8) && std::equal(pixel, pixel + 4, bytes.data + i * 4));
  }
  scaleBitmap<VortoBitmapRGBA16, Pixel>(&source, &source);
  scaleBitmap<VortoBitmapRGBA16, Pixel>(&source, nullptr);
  scaleAndDepthConvertBitmapToARGB8<VortoBitmapRGBA16, Pixel>(nullptr, &bytes);
  EXPECT_EQ(Bytes(source.data, source.data + 128), before);
}

TEST(BitmapScaling, OutputWithoutUnpremultiplicationClonesAndFinishesAlpha) {
  for (const bool gray : {false, true}) {
    const PageBitmap source({7, 3}, 4);
    Bytes expected(source.data, source.data + 7 * 3 * 8);
    for (To p = expected.data(); p < expected.data() + expected.size(); p += 8) {
      gray ? oracle::alphaIntoColors(layoutOf(4), p) : oracle::setAlpha(layoutOf(4), p, 1);
    }
    VortoBitmap output;
    output.copyWithOutputConversion(source, false, true, gray, kBackground);
    EXPECT_TRUE(output.width == 7 && output.formatCode == 4);
    EXPECT_EQ(Bytes(output.data, output.data + output.getSize()), expected);
  }
}

// In a build with the address sanitizer, though the allocation goes on behind the pixels.
TEST(BitmapSlack, FirstByteBehindThePixelsIsOutOfBounds) {
  for (const auto& [code, padding] : {std::pair{0u, 0u}, {2u, 0u}, {5u, 0u}, {9u, 0u}, {0u, 6u}}) {
    if (!kHasAddressSanitizer) break;
    const oracle::Layout layout = layoutOf(code);
    const VortoBitmap bitmap(37, 5, static_cast<std::uint32_t>(8 * oracle::bytesOf(layout.number)),
                             static_cast<std::uint32_t>(layout.channels), code, padding);
    volatile std::uint8_t* const end = bitmap.data + 5 * (37 * layout.pixelBytes() + padding);
    end[-1] = 1;
    EXPECT_DEATH(end[0] = 1, "AddressSanitizer") << code;
  }
}

}  // namespace
