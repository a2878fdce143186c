// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/BenchmarkTable.h"
#include "TarnCore/TCHistogram.h"
#include "TarnCore/kernels/Histogram.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <vector>

#if VORTO_HAVE_OPENCV
#include <opencv2/imgproc.hpp>
#endif

// The histogram of a frame, beside a loop that only counts and rounds inexactly, and OpenCV's histograms of the four
// channels.

namespace {

enum class Scene { noise, opaqueNoise, photograph, flat };
constexpr Scene kScenes[] = {Scene::noise, Scene::opaqueNoise, Scene::photograph, Scene::flat};
constexpr const char* kSceneNames[] = {"noise", "opaque noise", "photograph", "flat"};

struct Size {
  std::size_t width;
  std::size_t height;
  const char* name;
};
constexpr Size kSizes[] = {{1920, 1080, "1080p"}, {3840, 2160, "4K"}};

// Values from 0 to 1. The photograph is made of soft slopes with a little grain.
double channelValue(Scene scene, std::size_t x, std::size_t y, std::size_t channel, std::mt19937& random) {
  const double grain = static_cast<double>(random()) / 4294967296.0;
  switch (scene) {
    case Scene::noise:
      return grain;
    case Scene::opaqueNoise:
      return channel == 3 ? 1 : grain;
    case Scene::photograph: {
      if (channel == 3) return 1;
      const double u = static_cast<double>(x) / 1920;
      const double v = static_cast<double>(y) / 1080;
      const double slope = 0.45 + 0.3 * std::sin(3 * u + static_cast<double>(channel)) * std::cos(4 * v * v + u);
      return slope + 0.03 * grain;
    }
    case Scene::flat:
      return channel == 3 ? 1 : 0.4 + 0.05 * static_cast<double>(channel);
  }
  return 0;
}

template <class Channel>
Channel stored(double value) {
  if constexpr (sizeof(Channel) == 4) return static_cast<Channel>(value);
  return static_cast<Channel>(value * ((1 << 8 * sizeof(Channel) % 32) - 1));
}

template <class Channel>
const std::vector<Channel>& frame(Scene scene, const Size& size) {
  static std::map<std::pair<Scene, std::size_t>, std::vector<Channel>> frames;
  std::vector<Channel>& pixels = frames[{scene, size.width}];
  if (!pixels.empty()) return pixels;
  std::mt19937 random(5);
  for (std::size_t y = 0; y < size.height; ++y) {
    for (std::size_t x = 0; x < size.width; ++x) {
      for (std::size_t c = 0; c < 4; ++c) pixels.push_back(stored<Channel>(channelValue(scene, x, y, c, random)));
    }
  }
  return pixels;
}

template <class Channel>
void measureVorto(benchmark::State& state, Scene scene, const Size& size) {
  const std::vector<Channel>& pixels = frame<Channel>(scene, size);
  const TCHistogramImage image{pixels.data(), size.width * 4 * sizeof(Channel),   size.width,
                               size.height,   std::uint32_t{8 * sizeof(Channel)}, true};
  TCHistogram histogram;
  for (auto _ : state) {
    TCCountHistogram(image, histogram);
    benchmark::ClobberMemory();
  }
}

template <class Channel>
void measureLoop(benchmark::State& state, Scene scene, const Size& size) {
  const std::vector<Channel>& pixels = frame<Channel>(scene, size);
  std::uint32_t counts[4][257];
  for (auto _ : state) {
    std::memset(counts, 0, sizeof counts);
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
      for (std::size_t c = 0; c < 4; ++c) {
        const Channel v = pixels[i + c];
        if constexpr (sizeof(Channel) == 1) ++counts[c][v];
        if constexpr (sizeof(Channel) == 2) ++counts[c][v >> 8];
        if constexpr (sizeof(Channel) == 4) {
          const float x = v * 255.0f + 0.5f;
          ++counts[c][static_cast<int>(x < 0 ? 0 : x > 254 ? 254 : x)];
        }
      }
    }
    benchmark::DoNotOptimize(counts);
    benchmark::ClobberMemory();
  }
}

#if VORTO_HAVE_OPENCV
template <class Channel>
void measureOpenCV(benchmark::State& state, Scene scene, const Size& size) {
  const std::vector<Channel>& pixels = frame<Channel>(scene, size);
  constexpr int type = sizeof(Channel) == 1 ? CV_8UC4 : sizeof(Channel) == 2 ? CV_16UC4 : CV_32FC4;
  const cv::Mat image(static_cast<int>(size.height), static_cast<int>(size.width), type,
                      const_cast<Channel*>(pixels.data()));
  const int bins = 256;
  const float range[] = {0, sizeof(Channel) == 1 ? 256.0f : sizeof(Channel) == 2 ? 65536.0f : 1.0f};
  const float* ranges[] = {range};
  cv::setNumThreads(1);
  cv::Mat counts[4];
  for (auto _ : state) {
    for (int c = 0; c < 4; ++c) cv::calcHist(&image, 1, &c, cv::Mat(), counts[c], 1, &bins, ranges);
    benchmark::ClobberMemory();
  }
}
#endif

template <class Channel>
void registerDepth(const char* depth) {
  for (const Size& size : kSizes) {
    for (const Scene scene : kScenes) {
      const std::string row = std::string(depth) + " " + size.name + " " + kSceneNames[static_cast<int>(scene)];
      const auto add = [&](const char* column, void (*measure)(benchmark::State&, Scene, const Size&)) {
        benchmark::RegisterBenchmark(benchmarkName("histogram", row, column).c_str(), measure, scene, size)
            ->Unit(benchmark::kMicrosecond);
      };
      add("vorto", measureVorto<Channel>);
      add("plain loop", measureLoop<Channel>);
#if VORTO_HAVE_OPENCV
      add("OpenCV", measureOpenCV<Channel>);
#endif
    }
  }
}

const bool registered = [] {
  registerDepth<std::uint8_t>("8 bit");
  registerDepth<std::uint16_t>("16 bit");
  registerDepth<float>("float");
  return true;
}();

}  // namespace
