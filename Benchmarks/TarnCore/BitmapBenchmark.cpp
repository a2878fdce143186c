#include "Benchmarks/BenchmarkTable.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCColor.h"
#include "TarnCore/TCPixelFormat.h"
#include "TarnCore/kernels/Dispatch.h"

#include <benchmark/benchmark.h>
#if VORTO_HAVE_LIBYUV
#include <libyuv.h>
#endif

#include <cstring>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

// Whole-image operations, beside their scalar definitions, memcpy of an RGBA8 frame of the same size, and libyuv where
// it has the same work (its results are not exact).

namespace {

using Format = VortoPixelFormat;
using Bitmap = std::unique_ptr<VortoBitmap>;

struct FrameSize {
  std::uint32_t width, height;
};

Bitmap randomBitmap(FrameSize size, Format::Code code) {
  Bitmap bitmap(TCCreateBitmap(size.width, size.height, code));
  std::mt19937_64 random(1);
  for (std::size_t i = 0; i + 8 <= bitmap->accessibleBytes(); i += 8) {
    const std::uint64_t value = random();
    std::memcpy(bitmap->data + i, &value, 8);
  }
  return bitmap;
}

// The picture that effects mostly see: 80 of 100 pixels opaque, 15 clear, and an edge between them.
void makeMostlyOpaque(VortoBitmap& bitmap) {
  for (std::uint32_t y = 0; y < bitmap.height; ++y) {
    for (std::uint32_t x = 0; x < bitmap.width; ++x) {
      const std::uint32_t position = x * 100 / bitmap.width;
      std::uint8_t* const alpha = bitmap.data + 4 * (std::size_t{y} * bitmap.width + x) + 3;
      *alpha = position < 80 ? 255 : position < 85 ? static_cast<std::uint8_t>(255 - 50 * (position - 80)) : 0;
    }
  }
}

using Work = std::function<void(VortoBitmap& destination, VortoBitmap& source)>;

struct Row {
  const char* name;
  Format::Code destination, source;
  Work work;
  Work libyuv;        // null where it has nothing alike
  bool mostlyOpaque;  // else alpha is random
};

const VortoColor kBackground(0.2f, 0.5f, 0.8f, 1);

#if VORTO_HAVE_LIBYUV
int stride(const VortoBitmap& b) {
  return static_cast<int>(b.width * b.channels * b.bitsPerChannel / 8);
}
using Function = int (*)(const std::uint8_t*, int, std::uint8_t*, int, int, int);
Work peer(Function function, bool flip = false, bool inPlace = false) {
  return [=](VortoBitmap& to, VortoBitmap& source) {
    const VortoBitmap& from = inPlace ? to : source;
    const int rows = static_cast<int>(to.height);
    function(from.data, stride(from), to.data, stride(to), static_cast<int>(to.width), flip ? -rows : rows);
  };
}
const Work kPeerReorder = peer(libyuv::ARGBToBGRA);
const Work kPeerFlip = peer(libyuv::ARGBCopy, true);
const Work kPeerPremultiply = peer(libyuv::ARGBAttenuate, false, true);
const Work kPeerUnpremultiply = peer(libyuv::ARGBUnattenuate, false, true);
const Work kPeerFromYUV = peer(libyuv::UYVYToARGB);
const Work kPeerToYUV = peer(libyuv::ARGBToUYVY);
#else
const Work kPeerReorder, kPeerFlip, kPeerPremultiply, kPeerUnpremultiply, kPeerFromYUV, kPeerToYUV;
#endif

void addInPlace(std::vector<Row>& rows, const char* name, Format::Code code, void (VortoBitmap::*method)(),
                const Work& libyuv = nullptr) {
  rows.push_back({name, code, code,
                  [=](VortoBitmap& b, VortoBitmap&) {
                    (b.*method)();
                    b.formatCode = code;
                  },
                  libyuv, false});
}

void addCopy(std::vector<Row>& rows, const char* name, Format::Code to, Format::Code from,
             void (VortoBitmap::*method)(const VortoBitmap&), const Work& libyuv = nullptr) {
  rows.push_back({name, to, from, [=](VortoBitmap& d, VortoBitmap& s) { (d.*method)(s); }, libyuv, false});
}

void addUnpremultiply(std::vector<Row>& rows, const char* name, Format::Code code, bool mostlyOpaque) {
  rows.push_back({name, code, code, [](VortoBitmap& b, VortoBitmap&) { b.unpremultiply(kBackground); },
                  code == Format::RGBA8 ? kPeerUnpremultiply : nullptr, mostlyOpaque});
}

std::vector<Row> operations() {
  std::vector<Row> rows;
  const Work constant = [](VortoBitmap& b, VortoBitmap&) { b.setConstantAlpha(0.5); };
  for (const auto& [code, layout] : {std::pair{Format::RGBA8, "RGBA8"},
                                     {Format::RGBA16, "RGBA16"},
                                     {Format::RGBAHalfFloat, "half"},
                                     {Format::RGBAFloat, "float"}}) {
    static std::vector<std::unique_ptr<std::string>> names;
    const auto named = [&, suffix = layout](const char* text) {
      names.push_back(std::make_unique<std::string>(std::string(text) + " " + suffix));
      return names.back()->c_str();
    };
    addInPlace(rows, named("invert alpha"), code, &VortoBitmap::invertAlpha);
    rows.push_back({named("constant alpha"), code, code, constant, nullptr, false});
    addInPlace(rows, named("duplicate alpha"), code, &VortoBitmap::duplicateAlphaToRGB);
    addUnpremultiply(rows, named("unpremultiply"), code, false);
    if (code != Format::RGBAHalfFloat) addInPlace(rows, named("reorder"), code, &VortoBitmap::convertToARGB);
    addInPlace(rows, named("flip"), code, &VortoBitmap::flip);
  }
  addUnpremultiply(rows, "unpremultiply mostly opaque", Format::RGBA8, true);
  addInPlace(rows, "premultiply RGBA8", Format::RGBA8, &VortoBitmap::preMult, kPeerPremultiply);
  addInPlace(rows, "premultiply ARGB8", Format::ARGB8, &VortoBitmap::preMult, kPeerPremultiply);
  addInPlace(rows, "unPreMult", Format::ARGB8, &VortoBitmap::unPreMult);
  addCopy(rows, "copy reordered", Format::RGBA8, Format::ARGB8, &VortoBitmap::copyWithSwizzleARGBToRGBA, kPeerReorder);
  addCopy(rows, "copy flipped", Format::RGBA8, Format::RGBA8, &VortoBitmap::copyWithFlip, kPeerFlip);
  addCopy(rows, "copy flipped, reordered", Format::RGBA8, Format::ARGB8,
          &VortoBitmap::copyWithFlipAndSwizzleARGBtoRGBA);
  rows.push_back({"copyWithUnPreMult", Format::ARGB8, Format::ARGB8,
                  [](VortoBitmap& d, VortoBitmap& s) { d.copyWithUnPreMult(s, kBackground); }, nullptr, false});
  addCopy(rows, "YUV8 to ARGB8", Format::ARGB8, Format::YUV8, &VortoBitmap::copy, kPeerFromYUV);
  addCopy(rows, "YUV8 to ARGB8 flipped", Format::ARGB8, Format::YUV8, &VortoBitmap::copyWithFlip);
  rows.push_back({"YUV8 to ARGB8 cropped", Format::ARGB8, Format::YUV8,
                  [](VortoBitmap& d, VortoBitmap& s) { d.copyWithCropping(s, 0, 0, false); }, nullptr, false});
  addCopy(rows, "ARGB8 to YUV8", Format::YUV8, Format::ARGB8, &VortoBitmap::copy, kPeerToYUV);
  return rows;
}

void measure(benchmark::State& state, const Row& row, FrameSize size, const Work& work, bool scalar) {
  const Bitmap destination = randomBitmap(size, row.destination);
  const Bitmap source = randomBitmap(size, row.source);
  if (row.mostlyOpaque) makeMostlyOpaque(*destination);
  if (scalar) vorto::kernels::forceSimdTarget({"scalar", 0});
  for (auto _ : state) {
    work(*destination, *source);
    benchmark::ClobberMemory();
  }
  vorto::kernels::restoreSimdTarget();
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          (std::int64_t{destination->getSize()} + source->getSize()));
}

void registerSize(const std::string& table, FrameSize size) {
  static const std::vector<Row> rows = operations();
  static const Work copyFrame = [](VortoBitmap& d, VortoBitmap& s) { std::memcpy(d.data, s.data, d.getSize()); };
  static const Row frame = {"frame", Format::RGBA8, Format::RGBA8, copyFrame, nullptr, false};
  for (const Row& row : rows) {
    const auto add = [&](const char* column, const Row& measured, const Work& work, bool scalar) {
      benchmark::RegisterBenchmark(benchmarkName(table, row.name, column).c_str(), [&measured, size, work,
                                                                                    scalar](benchmark::State& state) {
        measure(state, measured, size, work, scalar);
      })->Unit(benchmark::kMicrosecond);
    };
    add("vorto", row, row.work, false);
    add("memcpy of RGBA8", frame, copyFrame, false);
    add("definition", row, row.work, true);
    if (row.libyuv) add("libyuv", row, row.libyuv, false);
  }
}

const bool registered = [] {
  registerSize("Images of 1920 x 1080", {1920, 1080});
  registerSize("Images of 3840 x 2160", {3840, 2160});
  return true;
}();

}  // namespace
