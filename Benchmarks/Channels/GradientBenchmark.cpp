// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/BenchmarkTable.h"
#include "Benchmarks/Channels/InexactLinear.h"
#include "Channels/VRTChannelGradient.h"
#include "TarnCore/kernels/Dispatch.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#if VORTO_HAVE_PIXMAN
#include <pixman.h>
#endif

// Gradient tables, beside a straight evaluation of their definition, an inexact loop and pixman's linear gradient.

namespace {

using vorto::kernels::SimdTarget;

struct Scene {
  std::int32_t interpolation;
  std::uint32_t stops;
  std::uint32_t count;

  std::vector<InexactStop> stopList() const {
    std::mt19937 random(stops);
    std::uniform_real_distribution<float> unit(0.0F, 1.0F);
    std::vector<InexactStop> list;
    for (std::uint32_t i = 0; i < stops; ++i) {
      const float position = static_cast<float>(i) / static_cast<float>(stops - 1);
      list.push_back({position, {1.0F, unit(random), unit(random), unit(random)}});
    }
    return list;
  }

  void fill(VRTChannelGradient& gradient) const {
    for (VRTChannelBase* sample : gradient.rgbFolder.getDescendants()) delete sample;
    gradient.rgbFolder.getDescendants().clear();
    double middle = 0.3;
    for (const InexactStop& stop : stopList()) {
      gradient.rgbFolder.addSample(static_cast<double>(stop.argb[1]), static_cast<double>(stop.argb[2]),
                                   static_cast<double>(stop.argb[3]), static_cast<double>(stop.position), middle,
                                   interpolation);
      middle = middle < 0.7 ? middle + 0.05 : 0.3;
    }
  }

  std::string row() const {
    return std::string(interpolation == VRTGradientLinear ? "linear" : "smooth") + " " + std::to_string(stops) +
           " stops " + std::to_string(count);
  }
};

constexpr std::size_t kSlack = 64;

template <class Stored>
void measureTable(benchmark::State& state, const Scene& scene, const SimdTarget* target) {
  if (target) vorto::kernels::forceSimdTarget(*target);
  VRTChannelGradient gradient;
  scene.fill(gradient);
  std::vector<Stored> table(scene.count * 4);
  for (auto _ : state) {
    gradient.getGradient(0.0, table.data(), scene.count);
    benchmark::ClobberMemory();
  }
  if (target) vorto::kernels::restoreSimdTarget();
}

template <class Stored>
void measureInexact(benchmark::State& state, const Scene& scene) {
  const std::vector<InexactStop> stops = scene.stopList();
  std::vector<Stored> table(scene.count * 4 + kSlack);
  for (auto _ : state) {
    inexactLinear(stops, table.data(), scene.count);
    benchmark::ClobberMemory();
  }
}

#if VORTO_HAVE_PIXMAN
constexpr pixman_format_code_t kByteFormat = PIXMAN_a8r8g8b8;
constexpr pixman_format_code_t kFloatFormat = PIXMAN_rgba_float;

std::uint16_t fixed16(float value) {
  return static_cast<std::uint16_t>(value * 65535.0F);
}

void measurePixman(benchmark::State& state, const Scene& scene, pixman_format_code_t format) {
  std::vector<pixman_gradient_stop_t> stops;
  for (const auto& [position, argb] : scene.stopList()) {
    stops.push_back({pixman_double_to_fixed(static_cast<double>(position)),
                     {fixed16(argb[1]), fixed16(argb[2]), fixed16(argb[3]), fixed16(argb[0])}});
  }
  const pixman_point_fixed_t from{0, 0};
  const pixman_point_fixed_t to{pixman_int_to_fixed(static_cast<int>(scene.count)), 0};
  pixman_image_t* source =
      pixman_image_create_linear_gradient(&from, &to, stops.data(), static_cast<int>(stops.size()));
  pixman_image_set_repeat(source, PIXMAN_REPEAT_PAD);
  const int width = static_cast<int>(scene.count);
  const int entryBytes = format == kByteFormat ? 4 : 16;
  std::vector<std::uint32_t> table(scene.count * 4);
  pixman_image_t* strip = pixman_image_create_bits(format, width, 1, table.data(), width * entryBytes);
  for (auto _ : state) {
    pixman_image_composite32(PIXMAN_OP_SRC, source, nullptr, strip, 0, 0, 0, 0, 0, 0, width, 1);
    benchmark::ClobberMemory();
  }
  pixman_image_unref(strip);
  pixman_image_unref(source);
}
#endif

using Measure = std::function<void(benchmark::State&, const Scene&)>;

struct Column {
  const char* name;
  bool linearOnly;
  Measure measure;
};

template <class Stored>
std::vector<Column> columns(const std::vector<SimdTarget>& targets) {
  std::vector<Column> list;
  list.push_back({"vorto", false, [](auto& state, auto& scene) { measureTable<Stored>(state, scene, nullptr); }});
  for (const SimdTarget& target : targets) {
    const auto measure = [&target](auto& state, auto& scene) { measureTable<Stored>(state, scene, &target); };
    if (target.mask == 0) list.push_back({"definition", false, measure});
    if (std::strcmp(target.name, "AVX2") == 0) list.push_back({"vorto with AVX2", false, measure});
  }
  list.push_back({"inexact loop", true, [](auto& state, auto& scene) { measureInexact<Stored>(state, scene); }});
#if VORTO_HAVE_PIXMAN
  const auto format = std::is_same_v<Stored, float> ? kFloatFormat : kByteFormat;
  list.push_back({"pixman", true, [format](auto& state, auto& scene) { measurePixman(state, scene, format); }});
#endif
  return list;
}

template <class Stored>
void registerTable(const std::string& table, const std::vector<SimdTarget>& targets) {
  for (const std::int32_t interpolation : {VRTGradientLinear, VRTGradientSmooth}) {
    for (const std::uint32_t stops : {2U, 8U, 32U}) {
      for (const std::uint32_t count : {256U, 1024U, 4096U}) {
        const Scene scene{interpolation, stops, count};
        for (const Column& column : columns<Stored>(targets)) {
          if (column.linearOnly && interpolation != VRTGradientLinear) continue;
          benchmark::RegisterBenchmark(
              benchmarkName(table, scene.row(), column.name).c_str(),
              [scene, measure = column.measure](benchmark::State& state) { measure(state, scene); })
              ->Unit(benchmark::kMicrosecond);
        }
      }
    }
  }
}

const bool registered = [] {
  static const std::vector<SimdTarget> targets = vorto::kernels::simdTargets();
  registerTable<std::uint8_t>("Gradient tables of bytes", targets);
  registerTable<float>("Gradient tables of floats", targets);
  return true;
}();

}  // namespace
