// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/kernels/AlphaComplement.h"
#include "TarnCore/kernels/BytePatterns.h"
#include "TarnCore/kernels/Depth.h"
#include "TarnCore/kernels/Memory.h"
#include "TarnCore/kernels/Premultiply.h"
#include "TarnCore/kernels/UnpremultiplyTruncated.h"
#include "TarnCore/kernels/YUV422.h"
#include "Tests/TarnCore/EveryTarget.h"
#include "Tests/TarnCore/PixelOracle.h"

// Every kernel in every instruction set of the machine against its oracle: every width around those of vectors, any
// alignment, overlaps, whole domains. Between instruction sets every bit is equal; with the oracle NaN equals NaN.

namespace {

using namespace vorto::kernels;
using namespace oracle;

using Form = std::function<void(To, From, Count, const Color& background)>;
using Unit = std::function<void(To, From, const Color& background)>;
using Domain = std::function<const Bytes&()>;

Domain domain(std::uint32_t code) {
  return [code]() -> const Bytes& { return domainOf(layoutOf(code)); };
}

struct Operation {
  std::string name;
  std::size_t written, read;  // bytes of a unit; in place, `read` is 0
  Number number;              // what is written
  Form run, expected;
  Domain domain = nullptr;  // what it reads; none where any bytes do
  bool hasBackground = false;

  bool isInPlace() const { return read == 0; }
  std::size_t taken() const { return isInPlace() ? written : read; }
};

// Unit by unit, in order.
Form each(std::size_t written, std::size_t read, Unit unit) {
  return [=](To to, From from, Count n, const Color& b) {
    for (Count i = 0; i < n; ++i) unit(to + i * written, from + i * read, b);
  };
}

Background kernelColor(const Color& c) {
  return {c.values[0], c.values[1], c.values[2]};
}

std::vector<Operation> inPlaceOperations() {
  std::vector<Operation> all;
  const auto add = [&](const char* name, std::uint32_t code, Form run, Unit unit, bool hasBackground = false) {
    const Layout layout = layoutOf(code);
    all.push_back({name + std::to_string(code), layout.pixelBytes(), 0, layout.number, run,
                   each(layout.pixelBytes(), 0, unit), domain(code), hasBackground});
  };
  const auto addPlain = [&](const char* name, std::uint32_t code, auto run, auto pixel) {
    add(
        name, code, [=](To p, From, Count n, auto&) { run(p, n); },
        [=](To p, From, auto&) { pixel(layoutOf(code), p); });
  };
  const auto addUnpremultiply = [&](std::uint32_t code, void (*run)(To, Count, const Background&)) {
    add(
        "unpremultiply", code, [=](To p, From, Count n, auto& b) { run(p, n, kernelColor(b)); },
        [=](To p, From, auto& b) { unpremultiply(layoutOf(code), p, b); }, true);
  };
  for (const std::uint32_t code : {kRGBA8, kARGB8, kRGBA16, kLuminanceAlpha16, kHalf, kFloat}) {
    const Layout layout = layoutOf(code);
    const std::size_t size = layout.pixelBytes();
    std::uint8_t values[16] = {}, mask[16] = {};
    for (std::size_t i = 0; i < 16; i += size) {
      setAlpha(layout, values + i, 0.3);
      std::fill_n(layout.channel(mask + i, layout.alpha), bytesOf(layout.number), std::uint8_t{255});
    }
    const auto alpha = BytePattern::ofPixel(mask), value = BytePattern::ofPixel(values);
    const auto replace = [=](To p, Count n) { replaceBytes(p, n * size, alpha, value); };
    const auto complement = [=](To p, Count n) { complementBytes(p, n * size, alpha); };
    addPlain("replace", code, replace, [](const Layout& l, To p) { setAlpha(l, p, 0.3); });
    if (code != kHalf && code != kFloat) addPlain("complement", code, complement, complementAlpha);
  }
  addPlain("complement", kHalf, complementAlphaHalf, complementAlpha);
  addPlain("complement", kFloat, complementAlphaFloat, complementAlpha);
  addPlain("premultiply", kRGBA8, premultiplyRGBA8, premultiply);
  addPlain("premultiply", kARGB8, premultiplyARGB8, premultiply);
  addUnpremultiply(kRGBA8, unpremultiplyRGBA8);
  addUnpremultiply(kARGB8, unpremultiplyARGB8);
  addUnpremultiply(kRGBA16, unpremultiplyRGBA16);
  addUnpremultiply(kHalf, unpremultiplyRGBAHalf);
  addUnpremultiply(kFloat, unpremultiplyRGBAFloat);
  const auto truncate = [](To p, Count n) { unpremultiplyTruncatedInPlace(p, n, 4); };
  addPlain("truncate", kARGB8, truncate, [](const Layout&, To p) { unpremultiplyTruncated(p); });
  all.push_back({"swap", 8, 0, Number::Byte, [](To p, From, Count n, auto&) { swapBytes(p, p + 4 * n, 4 * n); },
                 [](To p, From, Count n, auto&) { std::rotate(p, p + 4 * n, p + 8 * n); }});
  return all;
}

void appendCopies(std::vector<Operation>& all, bool streamed) {
  const auto push = [&](std::string name, std::size_t written, std::size_t read, Form run, Form expected,
                        Domain domain = nullptr, bool hasBackground = false) {
    if (streamed) domain = nullptr;
    all.push_back(
        {name + (streamed ? "Streamed" : ""), written, read, Number::Byte, run, expected, domain, hasBackground});
  };
  const auto plain = [](auto run) { return [=](To to, From from, Count n, auto&) { run(to, from, n); }; };
  const auto eachPlain = [](std::size_t written, std::size_t read, auto unit) {
    return each(written, read, [=](To to, From from, auto&) { unit(to, from); });
  };
  const auto copy = [=](To to, From from, Count n) { copyBytes(to, from, n, streamed); };
  const auto toARGB = [=](To to, From from, Count n) { convertYUVtoARGB(to, from, n, streamed); };
  const auto toYUV = [=](To to, From from, Count n) { convertARGBtoYUV(to, from, n, streamed); };
  push("copy", 1, 1, plain(copy), plain([](To to, From from, Count n) { std::memmove(to, from, n); }));
  push("YUVtoARGB", 8, 4, plain(toARGB), eachPlain(8, 4, pairToARGB), yuvDomain);
  push("ARGBtoYUV", 4, 8, plain(toYUV), eachPlain(4, 8, pairToYUV), argbDomain);
  for (const std::uint32_t code : {kRGBA8, kRGBA16, kFloat}) {
    const Layout layout = layoutOf(code);
    const std::size_t size = layout.pixelBytes();
    BytePattern order;
    for (std::uint8_t i = 0; i < 16; ++i) order.bytes[i] = i;
    for (std::size_t i = 0; i < 16; i += size) rotate(layout, order.bytes + i, true);
    const auto shuffle = [=](To to, From from, Count n) { shuffleBytes(to, from, size * n, order, size, streamed); };
    const auto rotated = [=](To to, From from) {
      std::memmove(to, from, size);
      rotate(layout, to, true);
    };
    push("shuffle" + std::to_string(code), size, size, plain(shuffle), eachPlain(size, size, rotated));
  }
  for (const std::size_t step : {4u, 8u}) {
    for (const std::size_t odd : {0u, 1u}) {  // from an odd column on, whose pair begins in the column before
      const auto run = [=](To to, From from, Count n) {
        convertLaggingYUVtoARGB(to, step, from + 2 * odd, odd == 1, n < odd ? 0 : n - odd, streamed);
      };
      const auto expected = [=](To to, From from, Count n) {
        laggingRow(to, step, from + 2 * odd, odd == 1, n < odd ? 0 : n - odd);
      };
      const std::string name = "lagging" + std::to_string(step) + (odd ? "Odd" : "Even");
      push(name, step, 2, plain(run), plain(expected), yuvDomain);
    }
  }
  for (const std::size_t step : {4u, 6u, 16u}) {
    if (streamed) break;
    const auto run = [=](To to, From from, Count n, auto& b) {
      unpremultiplyTruncated(to, from, n, step, kernelColor(b));
    };
    const auto unit = [](To to, From from, auto& b) { unpremultiplyTruncated(to, from, b); };
    const Domain argb = step == 4 ? domain(kARGB8) : nullptr;
    push("truncateBy" + std::to_string(step), step, step, run, each(step, step, unit), argb, true);
  }
}

constexpr std::pair<DepthLayout, std::uint32_t> kDepths[] = {{DepthLayout::RGBA8, kRGBA8},
                                                             {DepthLayout::RGBAHalf, kHalf},
                                                             {DepthLayout::ARGB8, kARGB8},
                                                             {DepthLayout::RGBA16, kRGBA16},
                                                             {DepthLayout::RGBAFloat, kFloat}};

std::vector<Operation> operations() {
  std::vector<Operation> all = inPlaceOperations();
  for (const bool streamed : {false, true}) {
    appendCopies(all, streamed);
    for (const auto& [toDepth, toCode] : kDepths) {
      if (toCode == kRGBA8 || toCode == kHalf) continue;
      for (const auto& [fromDepth, fromCode] : kDepths) {
        const Layout out = layoutOf(toCode), in = layoutOf(fromCode);
        const auto run = [=, o = toDepth, i = fromDepth](To destination, From source, Count n, auto&) {
          convertDepth(destination, o, source, i, n, streamed);
        };
        all.push_back({"depth" + std::to_string(all.size()), out.pixelBytes(), in.pixelBytes(), out.number, run,
                       each(out.pixelBytes(), in.pixelBytes(), [=](To o, From i, auto&) { convert(out, o, in, i); }),
                       streamed ? nullptr : domain(fromCode)});
      }
    }
  }
  return all;
}

// The bytes between guards, at an offset from the alignment of vectors.
class Guarded {
 public:
  explicit Guarded(const Bytes& bytes, std::size_t offset = 0)
      : all_(bytes.size() + 2 * kGuard + 64 + offset, 0xA5), size_(bytes.size()) {
    begin_ = kGuard + offset + (64 - reinterpret_cast<std::uintptr_t>(all_.data()) % 64) % 64;
    std::copy(bytes.begin(), bytes.end(), data());
  }
  To data() { return all_.data() + begin_; }
  // Where the two differ first, guards included; "" where they are the same.
  std::string difference(Guarded& other, Number number, bool everyBit) {
    const To mine = data() - kGuard, others = other.data() - kGuard;
    if (std::memcmp(mine, others, size_ + 2 * kGuard) == 0) return "";
    for (std::size_t i = 0, step = bytesOf(number); i + step <= size_ + 2 * kGuard; i += step) {
      const bool same = everyBit ? std::memcmp(mine + i, others + i, step) == 0 : areSame(number, mine + i, others + i);
      if (!same) return "byte " + std::to_string(static_cast<std::ptrdiff_t>(i - kGuard));
    }
    return "";
  }

 private:
  static constexpr std::size_t kGuard = 128;
  Bytes all_;
  std::size_t size_, begin_;
};

const std::vector<Color>& backgrounds() {
  static const std::vector<Color> all = [] {
    std::vector<Color> made = {{0.2f, 0.7f, 0.9f},       {0, 0, 0},
                               {-0.5f, 1.5f, -0.0f},     {8192, -8192, 3},
                               {INFINITY, NAN, 0.5f},    {9e5f, -1e6f, 8193},
                               {9000, -1e30f, 1e38f},    {1, 1, 1},
                               {0.1f, 1 / 3.0f, 0.013f}, {9.9995e-21f, 1e-30f, 1e-9f}};
    std::mt19937 generator(7);
    std::uniform_real_distribution<float> anywhere(-0.25f, 1.25f);
    for (float i = 0; i < 20; ++i) {  // every other one has colors that land next to a half when they are seen through
      made.push_back({2 * i / 255, std::nextafter(2 * i / 255, 1.0f), i / 255});
      made.push_back({anywhere(generator), anywhere(generator), anywhere(generator)});
    }
    return made;
  }();
  return all;
}

struct Case {
  Bytes memory;
  std::size_t offset;  // from alignment
  Count count;
  From from;  // null: in the memory itself, `distance` before what is written
  std::ptrdiff_t distance = 0;
  std::size_t first = 0;  // where writing begins
  Color background = backgrounds()[0];
};

class Kernel : public testing::TestWithParam<Operation> {
 protected:
  const Operation& operation = GetParam();

  // In every instruction set: the first one against the oracle, all others against the first.
  void compare(const std::vector<Case>& cases) {
    const auto ran = [](const Form& run, const Case& c) {
      Guarded memory(c.memory, c.offset);
      const To to = memory.data() + c.first;
      run(to, c.from ? c.from : to - c.distance, c.count, c.background);
      return memory;
    };
    std::vector<Guarded> reference;
    for (const Case& c : cases) reference.push_back(ran(operation.expected, c));
    bool everyBit = false;
    onEveryTarget([&] {
      for (std::size_t i = 0; i < cases.size(); ++i) {
        Guarded actual = ran(operation.run, cases[i]);
        ASSERT_EQ(actual.difference(reference[i], operation.number, everyBit), "")
            << cases[i].count << " units at " << cases[i].offset << ", distance " << cases[i].distance;
        if (!everyBit) reference[i] = std::move(actual);
      }
      everyBit = true;
    });
  }
};

TEST_P(Kernel, EveryWidthAndOffset) {
  std::vector<Case> cases;
  std::vector<Guarded> sources;
  sources.reserve(1000);
  for (Count width = 0; width <= 130; ++width) {
    for (const auto& [to, from] : {std::pair{0u, 0u}, {1u, 0u}, {0u, 1u}, {4u, 60u}, {63u, 2u}}) {
      sources.emplace_back(randomBytes(width * operation.taken(), static_cast<unsigned>(width)), from);
      cases.push_back({randomBytes(width * operation.written, 300 + to), to, width, sources.back().data()});
    }
  }
  compare(cases);
}

TEST_P(Kernel, WholeDomains) {
  const std::size_t most = !operation.hasBackground ? 1 : operation.number == Number::Byte ? 49 : 6;
  for (std::size_t i = 0; i < most && operation.domain; ++i) {
    const Count units = operation.domain().size() / operation.taken();
    const Bytes before = operation.isInPlace() ? operation.domain() : Bytes(units * operation.written, 1);
    compare({{before, 0, units, operation.domain().data(), 0, 0, backgrounds()[i]}});
    ASSERT_FALSE(HasFailure()) << "background " << i;
  }
}

// Both ends in the same memory, at every distance that a vector could notice: units are taken in order.
TEST_P(Kernel, OverlappingMemory) {
  if (operation.isInPlace() || operation.name.rfind("depth", 0) == 0) return;
  std::vector<Case> cases;
  for (const int distance : {-200, -65, -64, -33, -8, -4, -1, 0, 1, 2, 4, 8, 16, 31, 64, 100, 200}) {
    const Count count = 400 / std::max(operation.written, operation.read);
    cases.push_back({randomBytes(1500, 3), 0, count, nullptr, distance, static_cast<std::size_t>(500 + distance)});
  }
  compare(cases);
}

INSTANTIATE_TEST_SUITE_P(Every, Kernel, testing::ValuesIn(operations()),
                         [](const auto& row) { return row.param.name; });

}  // namespace
