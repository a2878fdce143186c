// SPDX-License-Identifier: BSD-3-Clause
#include "Benchmarks/Effects/EffectBench.h"
#include "Benchmarks/Turns.h"
#include "Platform/QuartzComposer/GFNodeManager.h"
#include "Ports/VRTImage.h"
#include "Ports/VRTStateKeys.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <stdexcept>

namespace {

using Format = VortoPixelFormat;

enum class Alpha { Opaque, Varied };

struct Size {
  const char* name;
  std::uint32_t width, height;
};

GFNodeManager& effects() {
  static const std::shared_ptr<GFNodeManager> manager = [] {
    auto made = std::make_shared<GFNodeManager>();
    made->initWithNamespace("effects under measurement");
    made->loadPlugInsInFolder(VORTO_BENCH_PLUGINS, {"plugin", "qtz"});
    return made;
  }();
  return *manager;
}

// Noise: any color under any alpha (or under none but 1), premultiplied.
std::shared_ptr<VortoBitmap> noise(Size size, Format::Code code, Alpha alpha) {
  std::shared_ptr<VortoBitmap> bitmap(TCCreateBitmap(size.width, size.height, code));
  std::uint64_t state = 88172645463325252u;
  const auto next = [&state] {
    state ^= state << 13;
    state ^= state >> 7;
    return state ^= state << 17;
  };
  const auto fill = [&](auto* channels, double full) {
    for (std::size_t i = 0; i < std::size_t{size.width} * size.height * 4; i += 4) {
      const double coverage = alpha == Alpha::Opaque ? 1 : static_cast<double>(next() >> 40) * 0x1p-24;
      for (std::size_t c = 0; c < 4; ++c) {
        const double value = c == 3 ? coverage : coverage * static_cast<double>(next() >> 40) * 0x1p-24;
        channels[i + c] = static_cast<std::remove_reference_t<decltype(*channels)>>(value * full);
      }
    }
  };
  if (code == Format::RGBA8) fill(static_cast<std::uint8_t*>(bitmap->data), 255.5);
  if (code == Format::RGBA16) fill(reinterpret_cast<std::uint16_t*>(bitmap->data), 65535.5);
  if (code == Format::RGBAFloat) fill(reinterpret_cast<float*>(bitmap->data), 1);
  return bitmap;
}

// A change of every color channel, with a gamma in one of them and in all of them.
void setLevels(QCPatch& patch) {
  PropertyList state = patch.portForKey("inputLevels")->stateValue().value();
  state.set("blackInRGB", PropertyList::real(0.05));
  state.set("gammaRGB", PropertyList::real(1.2));
  state.set("gammaRed", PropertyList::real(0.9));
  patch.portForKey("inputLevels")->setStateValue(state, nullptr);
}

void setImage(QCPatch& patch, const char* key, const Frame& frame) {
  VRTImage::setBitmapOfPort(dynamic_cast<QCImagePort&>(*patch.portForKey(key)), frame);
}

const MeasuredEffect kEffects[] = {
    {"Over", "inputBackgroundImage", "inputForegroundImage", nullptr},
    {"Multiply", "inputBackgroundImage", "inputForegroundImage", nullptr},
    {"Dissolve", "inputImageA", "inputImageB", [](QCPatch& patch) { setNumber(patch, "inputTime", 0.37); }},
    {"Gradient Wipe", "inputImageA", "inputImageB",
     [](QCPatch& patch) {
       setNumber(patch, "inputTime", 0.37);
       setNumber(patch, "inputAngle", 30);
     }},
    {"Gradient Wipe", "inputImageA", "inputImageB",
     [](QCPatch& patch) {
       setNumber(patch, "inputTime", 0.37);
       patch.portForKey("inputShapeImage")->setValue(patch.portForKey("inputImageA")->value());
     },
     "Gradient Wipe by a picture"},
    {"Gradient Wipe", "inputImageA", "inputImageB",
     [](QCPatch& patch) {
       setNumber(patch, "inputTime", 0.5);
       setNumber(patch, "inputAngle", 30);
       setNumber(patch, "inputSoftness", 1);
     },
     "Gradient Wipe, all soft"},
    {"Levels", "inputImage", nullptr, setLevels},
    {"Gradient Map", "inputImage", nullptr, nullptr},
    {"Duotone", "inputImage", nullptr, nullptr},
};

// A generator makes what the others are given.
void connect(QCPatch& patch, const MeasuredEffect& effect, const Frames& frames) {
  if (effect.first) {
    setImage(patch, effect.first, frames.first);
    if (effect.second) setImage(patch, effect.second, frames.second);
  } else {
    const Frame& like = frames.first;
    setNumber(patch, "inputWidth", like->width);
    setNumber(patch, "inputHeight", like->height);
    setNumber(patch, "inputDepth", like->formatCode == Format::RGBA8 ? 0 : like->formatCode == Format::RGBA16 ? 1 : 2);
  }
}

void measure(benchmark::State& state, const MeasuredEffect& effect, Size size, Format::Code code, Alpha alpha) {
  const Frames frames{noise(size, code, alpha), effect.second ? noise(size, code, alpha) : nullptr,
                      noise(size, code, alpha)};
  const auto patch = effects().nodeInstanceWithName(effect.name);
  if (!patch) return state.SkipWithError("there is no such effect");
  connect(*patch, effect, frames);
  if (effect.prepare) effect.prepare(*patch);
  const auto run = [&patch] {
    std::string reason;
    if (!patch->executeAtTime(0, &reason)) throw std::runtime_error(reason);
  };
  const std::size_t bytes = frames.first->getSize();
  std::vector<Contestant> contestants;
  contestants.push_back({"vorto", run});
  contestants.push_back({"memcpy", [&] { std::memcpy(frames.out->data, frames.first->data, bytes); }});
  for (const auto& peers : {peersOf(effect.row, code), filterPeersOf(effect.row, code)}) {
    for (const Peer& peer : peers) contestants.push_back({peer.name, [work = peer.work, &frames] { work(frames); }});
  }
  measureInTurns(state, std::move(contestants), size.width > 1920 ? 7 : 13,
                 static_cast<double>(bytes) * (effect.second  ? 3
                                               : effect.first ? 2
                                                              : 1));
}

const bool registered = registerRows(kEffects);

}  // namespace

void setNumber(QCPatch& patch, const char* key, double value) {
  patch.portForKey(key)->setValue(NSNumber::numberWithDouble(value));
}

bool registerRows(std::span<const MeasuredEffect> rows) {
  for (const Size size : {Size{"1280 x 720", 1280, 720}, {"1920 x 1080", 1920, 1080}, {"3840 x 2160", 3840, 2160}}) {
    for (const MeasuredEffect& effect : rows) {
      for (const auto& [depth, code] :
           {std::pair{"8", Format::RGBA8}, {"16", Format::RGBA16}, {"float", Format::RGBAFloat}}) {
        for (const Alpha alpha : {Alpha::Opaque, Alpha::Varied}) {
          if (!effect.first && alpha == Alpha::Varied) continue;
          const std::string row = std::string("Effects at ") + size.name + "/" + effect.row + " " + depth +
                                  (alpha == Alpha::Opaque ? " opaque" : " alpha");
          benchmark::RegisterBenchmark(row.c_str(),
                                       [&effect, size, code = code, alpha](benchmark::State& state) {
                                         measure(state, effect, size, code, alpha);
                                       })
              ->Iterations(1)
              ->Repetitions(1)
              ->UseManualTime()
              ->Unit(benchmark::kMillisecond);
        }
      }
    }
  }
  return true;
}
