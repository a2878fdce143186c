// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Sanitizer.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/kernels/Depth.h"
#include "TarnCore/kernels/Histogram.h"
#include "TarnCore/kernels/Scale.h"
#include "Tests/TarnCore/KernelOperations.h"

#include <cmath>
#include <cstring>
#include <memory>
#include <random>

// Every kernel in every instruction set of the machine against its oracle: every width around those of vectors, any
// alignment, overlaps, whole domains. Between instruction sets every bit is equal; with the oracle NaN equals NaN.

namespace {

using namespace vorto::kernels;
using namespace kerneltesting;
using oracle::randomBytes;

constexpr std::size_t kGuard = 128;

const std::vector<Color>& backgrounds() {
  static const std::vector<Color> all = [] {
    std::vector<Color> made = {{0.2f, 0.7f, 0.9f},        {0, 0, 0},          {1, 1, 1},
                               {0.1f, 1 / 3.0f, 0.013f},  {-0.5f, 1.5f, -0.0f}, {8192, -8192, 3},
                               {9000, -1e30f, 1e38f},     {INFINITY, 1, -INFINITY}, {NAN, 0.5f, 0}};
    std::mt19937 generator(7);
    std::uniform_real_distribution<float> anywhere(-0.25f, 1.25f);
    for (int i = 0; i < 40; ++i) {  // half of them with colors that land next to a half when they are seen through
      const float grey = static_cast<float>(i) / 255;
      made.push_back(i % 2 ? Color{anywhere(generator), anywhere(generator), anywhere(generator)}
                           : Color{grey, std::nextafter(grey, 1.0f), 0.5f / 255 * static_cast<float>(i)});
    }
    return made;
  }();
  return all;
}

// The bytes between guards, at an offset from the alignment of vectors.
class Guarded {
 public:
  Guarded(const Bytes& bytes, std::size_t offset)
      : size_(bytes.size()), all_(bytes.size() + 2 * kGuard + 64 + offset, 0xA5) {
    begin_ = kGuard + offset + (64 - reinterpret_cast<std::uintptr_t>(all_.data()) % 64) % 64;
    std::copy(bytes.begin(), bytes.end(), data());
  }
  To data() { return all_.data() + begin_; }
  // Where the two differ first, guards included; "" where they are the same.
  std::string difference(Guarded& other, oracle::Number number, bool everyBit) {
    const To mine = data() - kGuard;
    const To others = other.data() - kGuard;
    const std::size_t size = size_ + 2 * kGuard;
    if (std::memcmp(mine, others, size) == 0) return "";
    for (std::size_t i = 0, step = oracle::bytesOf(number); i + step <= size; i += step) {
      if (everyBit ? std::memcmp(mine + i, others + i, step) != 0 : !oracle::areSame(number, mine + i, others + i)) {
        return "differs at byte " + std::to_string(static_cast<std::ptrdiff_t>(i) - std::ptrdiff_t{kGuard});
      }
    }
    return "";
  }

 private:
  std::size_t size_;
  Bytes all_;
  std::size_t begin_;
};

// In every instruction set, on units that begin where place() says.
template <class Place>
void compare(const Operation& operation, const Bytes& before, std::size_t offset, Count count, const Color& background,
             Place place) {
  const auto ran = [&](const Run& run) {
    Guarded memory(before, offset);
    place(memory.data(), [&](To to, From from) { run(to, from, count, background); });
    return memory;
  };
  Guarded expected = ran(operation.expected);
  std::unique_ptr<Guarded> scalar;
  onEveryTarget([&] {
    Guarded actual = ran(operation.run);
    if (!scalar) {
      ASSERT_EQ(actual.difference(expected, operation.number, false), "") << count << " units at " << offset;
      scalar = std::make_unique<Guarded>(std::move(actual));
    } else {
      ASSERT_EQ(actual.difference(*scalar, operation.number, true), "") << count << " units at " << offset;
    }
  });
}

class Kernel : public testing::TestWithParam<Operation> {
 protected:
  const Operation& operation() const { return GetParam(); }
  Bytes bytesFor(Count units, unsigned seed) const {
    return randomBytes(units * (operation().isInPlace() ? operation().written : operation().read), seed);
  }
};

TEST_P(Kernel, EveryWidthAndOffset) {
  for (Count width = 0; width <= 130; ++width) {
    for (const auto& [to, from] : {std::pair{0u, 0u}, {1u, 0u}, {0u, 1u}, {4u, 60u}, {63u, 2u}}) {
      Guarded source(bytesFor(width, static_cast<unsigned>(width)), from);
      const Bytes before = operation().isInPlace() ? bytesFor(width, 1) : randomBytes(width * operation().written, 2);
      compare(operation(), before, to, width, backgrounds()[0], [&](To p, auto run) { run(p, source.data()); });
      if (HasFatalFailure()) return;
    }
  }
}

TEST_P(Kernel, WholeDomains) {
  if (!operation().domain) GTEST_SKIP() << "moves bytes, whatever they are";
  const Bytes& domain = *operation().domain;
  const Count units = domain.size() / (operation().isInPlace() ? operation().written : operation().read);
  const std::size_t most = !operation().hasBackground ? 1 : operation().number == oracle::Number::Byte ? 49 : 9;
  for (std::size_t i = 0; i < most; ++i) {
    SCOPED_TRACE(i);
    const Bytes before = operation().isInPlace() ? domain : Bytes(units * operation().written, 1);
    compare(operation(), before, 0, units, backgrounds()[i], [&](To p, auto run) { run(p, domain.data()); });
    if (HasFatalFailure()) return;
  }
}

// Both ends in the same memory, at every distance that a vector could notice: units are taken in order.
TEST_P(Kernel, OverlappingMemory) {
  if (operation().isInPlace() || operation().name.rfind("depth", 0) == 0) GTEST_SKIP() << "never overlaps";
  const Bytes bytes = randomBytes(1500, 3);
  for (const int distance : {-200, -65, -64, -33, -8, -4, -1, 0, 1, 2, 4, 8, 16, 31, 64, 100, 200}) {
    const Count count = 400 / std::max(operation().written, operation().read);
    compare(operation(), bytes, 0, count, backgrounds()[0],
            [&](To p, auto run) { run(p + 500 + distance, p + 500); });
    ASSERT_FALSE(HasFatalFailure()) << "distance " << distance;
  }
}

// In a build with the address sanitizer whoever runs past the pixels of a bitmap is stopped.
TEST_P(Kernel, OverrunIsSeen) {
  if (!hasAddressSanitizer) GTEST_SKIP() << "slack is watched in builds with the address sanitizer alone";
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  static Bytes elsewhere(std::size_t{1} << 14);
  for (const bool reads : {false, true}) {
    const std::size_t unit = reads ? operation().read : operation().written;
    if (unit == 0 || operation().name == "swap") continue;
    const Count count = 64;
    const VortoBitmap bitmap(static_cast<std::uint32_t>(count * unit), 1, 8, 1, 0, 0);
    const auto run = [&](Count n) {
      operation().run(reads ? elsewhere.data() : bitmap.data, reads ? bitmap.data : elsewhere.data(), n, {});
    };
    run(count);
    EXPECT_DEATH(run(count + 1), "AddressSanitizer") << (reads ? "read" : "written");
  }
}

INSTANTIATE_TEST_SUITE_P(Every, Kernel, testing::ValuesIn(operations()), [](const auto& row) { return row.param.name; });

struct Extent {
  std::uint32_t width, height;
  std::size_t pixels() const { return std::size_t{width} * height; }
};
struct Scaling {
  Extent from, to;
  std::size_t missingSource = 0, missingDestination = 0;
};

std::vector<Scaling> scalings() {
  std::vector<Scaling> all = {{{4000, 3}, {9001, 4}}, {{1920, 4}, {1280, 3}}, {{70, 9}, {40, 9}, 17}, {{70, 9}, {40, 9}, 0, 17},
                              {{90, 4}, {700, 3}},    {{90, 4}, {1, 1}},      {{3, 1}, {0, 1}},       {{0, 0}, {2, 1}}};
  for (std::uint32_t width = 1; width <= 130; ++width) {
    all.push_back({{width, 3}, {64, 2}});
    all.push_back({{61, 2}, {width, 5}});
  }
  return all;
}

// run(destination, source) on random pixels, and pixel(to, from) on those that it should name.
template <class Scale, class Pixel>
void compareScaling(const Scaling& s, std::size_t written, std::size_t read, oracle::Number number, Scale run,
                    Pixel pixel) {
  const Bytes in = randomBytes((s.from.pixels() - s.missingSource) * read, 9);
  const ScaleSource source{in.data(), s.from.width, s.from.height, s.from.pixels() - s.missingSource};
  const std::size_t accessible = s.to.pixels() - s.missingDestination;
  Guarded expected(Bytes(s.to.pixels() * written, 7), 0);
  for (std::size_t i = 0; i < accessible; ++i) {
    const std::uint64_t row = oracle::sourceIndex(i / s.to.width, s.to.height, s.from.height);
    const std::uint64_t k = row * s.from.width + oracle::sourceIndex(i % s.to.width, s.to.width, s.from.width);
    if (k < source.accessible) pixel(expected.data() + i * written, in.data() + k * read);
  }
  onEveryTarget([&] {
    Guarded actual(Bytes(s.to.pixels() * written, 7), 0);
    run(ScaleDestination{actual.data(), s.to.width, s.to.height, accessible}, source);
    ASSERT_EQ(actual.difference(expected, number, false), "") << s.from.width << " to " << s.to.width;
  });
}

TEST(ScaleKernel, TakesTheNearestPixels) {
  for (const Scaling& scaling : scalings()) {
    for (const std::size_t bytes : {2, 4, 6, 8, 16}) {
      compareScaling(
          scaling, bytes, bytes, oracle::Number::Byte,
          [&](const auto& to, const auto& from) { scaleNearest(to, from, bytes); },
          [&](To to, From from) { std::copy_n(from, bytes, to); });
    }
    for (const auto to : {DepthLayout::ARGB8, DepthLayout::RGBA16, DepthLayout::RGBAFloat}) {
      for (const auto from : {DepthLayout::RGBA8, DepthLayout::ARGB8, DepthLayout::RGBA16, DepthLayout::RGBAHalf,
                              DepthLayout::RGBAFloat}) {
        static constexpr std::uint32_t codes[] = {0, 1, 4, 8, 9};
        const oracle::Layout out = oracle::layoutOf(codes[static_cast<int>(to)]);
        const oracle::Layout in = oracle::layoutOf(codes[static_cast<int>(from)]);
        compareScaling(
            scaling, out.pixelBytes(), in.pixelBytes(), out.number,
            [&](const auto& d, const auto& s) { scaleAndConvert(d, to, s, from); },
            [&](To o, From i) { oracle::convert(out, o, in, i); });
      }
    }
    if (HasFatalFailure()) return;
  }
}

void compareCounts(const HistogramRows& rows, oracle::Number number) {
  HistogramTables expected = {};
  const std::size_t bytes = oracle::bytesOf(number);
  for (std::size_t i = 0; i < rows.width * rows.height * 4; ++i) {
    const std::size_t x = i % (rows.width * 4);
    ++expected.counts[i % 4][oracle::bin(number, rows.pixels + i / (rows.width * 4) * rows.bytesPerRow + x * bytes)];
  }
  onEveryTarget([&] {
    HistogramTables actual = {};
    countHistogram(actual, rows);
    ASSERT_EQ(std::memcmp(&actual, &expected, sizeof actual), 0) << rows.width << " wide";
  });
}

class HistogramKernel : public testing::TestWithParam<std::uint32_t> {
 protected:
  const oracle::Layout layout = oracle::layoutOf(GetParam());
  const std::size_t pixelBytes = layout.pixelBytes();
  HistogramRows rows(const Bytes& bytes, std::size_t offset, std::size_t width, std::size_t height,
                     std::size_t pitch) const {
    const auto depth = static_cast<HistogramDepth>(std::countr_zero(pixelBytes / 4));
    return {depth, bytes.data() + offset, width, height, pitch};
  }
};

// Each value once, and each in a row of its own that is long enough for what is counted once for a block.
TEST_P(HistogramKernel, WholeDomain) {
  const Bytes& domain = oracle::domainOf(layout);
  const std::size_t pixels = domain.size() / pixelBytes;
  compareCounts(rows(domain, 0, pixels, 1, domain.size()), layout.number);
  const std::size_t values = std::min<std::size_t>(pixels, 300000);
  Bytes blocks(values * 20 * pixelBytes);
  for (std::size_t i = 0; i < blocks.size(); ++i) {
    const std::size_t row = i / (20 * pixelBytes);
    blocks[i] = domain[domain.size() - (row + 1) * pixelBytes + i % pixelBytes];
  }
  compareCounts(rows(blocks, 0, 20, values, 20 * pixelBytes), layout.number);
}

// Rows of every width from every alignment with gaps between them, one of one color and one of one alpha, and no byte
// more than the image has.
TEST_P(HistogramKernel, EveryWidthPitchAndOffset) {
  for (std::size_t width = 1; width <= 70; ++width) {
    for (std::size_t offset = 0; offset < 3; ++offset) {
      const std::size_t pitch = width * pixelBytes + width % 5;
      Bytes bytes = randomBytes(offset + pitch * 4 + width * pixelBytes, 7);
      std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(offset), width * pixelBytes, std::uint8_t{60});
      for (std::size_t x = 1; x <= width; ++x) {
        std::fill_n(bytes.data() + offset + pitch + x * pixelBytes - pixelBytes / 4, pixelBytes / 4, std::uint8_t{62});
      }
      compareCounts(rows(bytes, offset, width, 5, pitch), layout.number);
      if (HasFatalFailure()) return;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Depths, HistogramKernel, testing::Values(oracle::kRGBA8, oracle::kRGBA16, oracle::kFloat));

}  // namespace
