// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/BenchmarkTable.h"
#include "Platform/Mach/mach.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelFormat.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>
#include <string>

// What a host pays that makes two bitmaps for every frame, writes all their pixels and releases them, in the long run.
// "vorto" is that; "not kept" the same when the memory goes back to the system each time; "cleared" is clearing the
// pixels of two bitmaps that stay.

namespace {

constexpr vm_size_t keptBytes = vm_size_t{256} << 20;  // as usual

using Bitmap = std::unique_ptr<VortoBitmap>;

struct Frame {
  const char* name;
  std::uint32_t width;
  std::uint32_t height;
  std::uint32_t formatCode;
};

constexpr Frame frames[] = {
    {"320x240 RGBA8", 320, 240, VortoPixelFormat::RGBA8},
    {"720x486 YUV8", 720, 486, VortoPixelFormat::YUV8},
    {"1080p RGBA8", 1920, 1080, VortoPixelFormat::RGBA8},
    {"1080p RGBA16", 1920, 1080, VortoPixelFormat::RGBA16},
    {"1080p RGBAFloat", 1920, 1080, VortoPixelFormat::RGBAFloat},
    {"4K RGBA8", 3840, 2160, VortoPixelFormat::RGBA8},
    {"4K RGBAFloat", 3840, 2160, VortoPixelFormat::RGBAFloat},
};

Bitmap made(const Frame& frame) {
  return Bitmap(TCCreateBitmap(frame.width, frame.height, frame.formatCode));
}

void write(VortoBitmap& bitmap) {
  std::memset(bitmap.data, 0x5A, bitmap.getSize());
  benchmark::ClobberMemory();
}

void makeTouchAndRelease(benchmark::State& state, const Frame& frame, bool isKept) {
  const auto oneFrame = [&frame] {
    const Bitmap first = made(frame);
    const Bitmap second = made(frame);
    if (!first->data || !second->data) return false;
    write(*first);
    write(*second);
    return true;
  };
  mach_limit_kept_memory(isKept ? keptBytes : 0);
  oneFrame();  // the first one always pays for fresh memory
  for (auto _ : state) {
    if (!oneFrame()) return state.SkipWithError("no memory");
  }
  mach_limit_kept_memory(keptBytes);
  mach_release_kept_memory();
}

void clearTwo(benchmark::State& state, const Frame& frame) {
  const Bitmap bitmaps[] = {made(frame), made(frame)};
  for (const Bitmap& bitmap : bitmaps) {
    if (!bitmap->data) return state.SkipWithError("no memory");
    write(*bitmap);
  }
  for (auto _ : state) {
    for (const Bitmap& bitmap : bitmaps) {
      std::memset(bitmap->data, 0, bitmap->getSize());
      benchmark::ClobberMemory();
    }
  }
}

[[maybe_unused]] const bool isRegistered = [] {
  for (const Frame& frame : frames) {
    const auto add = [&frame](const std::string& column, auto function) {
      benchmark::RegisterBenchmark(benchmarkName("Two bitmaps a frame", frame.name, column).c_str(), function)
          ->Unit(benchmark::kMicrosecond);
    };
    add("vorto", [&frame](benchmark::State& state) { makeTouchAndRelease(state, frame, true); });
    add("not kept", [&frame](benchmark::State& state) { makeTouchAndRelease(state, frame, false); });
    add("cleared", [&frame](benchmark::State& state) { clearTwo(state, frame); });
  }
  return true;
}();

}  // namespace
