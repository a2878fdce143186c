// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/Benchmark.h"

#include "Host/Commands/OptionValues.h"
#include "Host/Inspect/PreviewEngine.h"
#include "Host/Inspect/WindowSystem.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Json.h"
#include "Host/Rendering/EffectRendering.h"
#include "Host/Rendering/Parameters.h"
#include "Host/Rendering/PortKinds.h"
#include "Host/Rendering/PortValues.h"
#include "Host/Viewer/Viewer.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "TarnCore/TCBitmap.h"

#include <unistd.h>

#include <QApplication>
#include <QEventLoop>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

namespace host {
namespace {

constexpr PictureSize kView{1200, 800};
constexpr int kMoves = 60;
constexpr std::uint64_t kMostFrames = 200;
constexpr std::size_t kMostShown = 200;
constexpr double kMostSeconds = 120;  // that one picture may take

double now() {
  timespec time{};
  ::clock_gettime(CLOCK_BOOTTIME, &time);
  return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

// When this program was started, on the same clock, to a hundredth of a second.
double startOfProgram() {
  std::ifstream file("/proc/self/stat");
  const std::string text((std::istreambuf_iterator<char>(file)), {});
  std::size_t place = text.rfind(')');
  constexpr int kFieldsBehindName = 20;  // until the start
  for (int i = 0; i < kFieldsBehindName && place != std::string::npos; ++i) place = text.find(' ', place + 1);
  if (place == std::string::npos) return now();
  return std::strtod(text.c_str() + place, nullptr) / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

void handleEventsUntil(const std::function<bool()>& isDone) {
  const double end = now() + kMostSeconds;
  while (!isDone()) {
    if (now() > end) throw Failure(ExitCode::Unexpected, "no picture came for two minutes");
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
}

std::string sizeText(const PictureSize& size) {
  return std::to_string(size.width) + " x " + std::to_string(size.height);
}

// A parameter that can be moved, from 0 to 1.
class MovedParameter {
 public:
  explicit MovedParameter(const std::vector<QCPort*>& ports) {
    for (QCPort* port : ports) {
      if (!port_ && isMovable(*port)) port_ = port;
    }
  }
  bool exists() const { return port_; }
  std::string name() const { return port_->name(); }

  void moveTo(double place) {
    const PortRange range = portRange(*port_);
    const double low = range.minimum.value_or(0);
    const double high = range.maximum.value_or(low + 1);
    switch (portKindOf(*port_)) {
      case PortKind::Gradient:
        return setPortFromText(*port_, "#102040 0%, #ff8800 smooth " + numberText(10 + 80 * place) + "%, white 100%");
      case PortKind::Levels:
        return setPartOfPort(*port_, "gamma", numberText(0.5 + place));
      case PortKind::Color:
        return setPortFromText(*port_, numberText(place) + ",0.5,0.25,1");
      default:
        return setPortFromText(*port_, numberText(low + place * (high - low)));
    }
  }

 private:
  static bool isMovable(const QCPort& port) {
    const PortKind kind = portKindOf(port);
    return kind == PortKind::Gradient || kind == PortKind::Levels || kind == PortKind::Color ||
           kind == PortKind::Number;
  }
  QCPort* port_ = nullptr;
};

class Benchmark {
 public:
  explicit Benchmark(const InspectOptions& options);
  void run();

 private:
  void waitUntilSettled();
  void show(const PreviewPictureRef& picture);
  void first();
  void drag();
  void ahead();
  double framesPerSecond();

  EffectRendering effect_;  // for its ports
  std::vector<QCPort*> ports_;
  std::optional<VortoHash128> pictured_;  // fingerprint of the last picture
  PreviewPictureRef picture_;
  std::vector<PreviewPictureRef> frames_;  // that came ahead
  Viewer viewer_;
  bool isQuick_ = false;
  std::uint64_t aheadCount_ = 0;
  PreviewEngine engine_;
};

Benchmark::Benchmark(const InspectOptions& options)
    : effect_(options.effect, options.inputs.size(), parsedFraming(options.framing), parsedDepth(options.depth)),
      engine_({.pictured =
                   [this](const PreviewPictureRef& picture, const VortoHash128& fingerprint) {
                     pictured_ = fingerprint;
                     picture_ = picture;
                     isQuick_ = !picture->isFull;
                   },
               .aheadReady =
                   [this](std::uint64_t, const VortoHash128&, const PreviewPictureRef& picture) {
                     ++aheadCount_;
                     if (frames_.size() < kMostShown) frames_.push_back(picture);
                   },
               .aheadFailed = [this](std::uint64_t, const VortoHash128&, const PreviewFailure&) { ++aheadCount_; }}) {
  PreviewSetup setup;
  setup.effect = options.effect;
  setup.inputs = options.inputs;
  setup.framing = parsedFraming(options.framing);
  setup.depth = parsedDepth(options.depth);
  setup.colors = parsedColors(options.colors, options.inputs);
  setup.time = options.time;
  if (!options.frames.empty()) setup.frames = parsedFrameRange(options.frames);
  setup.rate = options.rate;
  setParameters(effect_, options.values, options.states);
  for (const auto& port : effect_.patch().inputPorts()) {
    if (portKindOf(*port) != PortKind::Image && port.get() != effect_.roles().time) ports_.push_back(port.get());
  }
  engine_.setParameters(ports_);
  viewer_.resize(static_cast<int>(kView.width), static_cast<int>(kView.height));
  viewer_.show();
  engine_.setViewSize(kView);
  engine_.open(setup);
}

// What it takes until the screen's pixels are there is part of every figure.
void Benchmark::show(const PreviewPictureRef& picture) {
  viewer_.setPicture(picture);
  viewer_.showNow();
  viewer_.repaint();
}

void Benchmark::waitUntilSettled() {
  handleEventsUntil([this] { return engine_.isSettled(); });
  if (const auto& failure = engine_.failure()) throw Failure(failure->code, failure->text);
}

void Benchmark::run() {
  first();
  drag();
  if (engine_.opened()->timing == PreviewOpened::Timing::Frames) ahead();
}

void Benchmark::first() {
  const double start = startOfProgram();
  handleEventsUntil([this] { return pictured_ || engine_.failure(); });
  if (pictured_) show(picture_);
  const double any = now() - start;
  handleEventsUntil([this] { return engine_.fullPicture() || engine_.failure(); });
  if (engine_.fullPicture()) show(engine_.fullPicture());
  const double full = now() - start;
  waitUntilSettled();
  const PreviewPicture& picture = *engine_.fullPicture();
  std::printf("picture: %s, %u bits a channel; view: %s\n", sizeText(picture.size).c_str(),
              picture.result->bitsPerChannel, sizeText(kView).c_str());
  std::printf("first picture: %.0f ms after the start of the program; first full one: %.0f ms\n", 1000 * any,
              1000 * full);
}

void Benchmark::drag() {
  MovedParameter parameter(ports_);
  if (!parameter.exists()) return;
  engine_.setHeld(true);
  std::vector<double> latencies;
  bool areQuick = true;
  for (int i = 0; i < kMoves; ++i) {
    parameter.moveTo((i + 0.5) / kMoves);
    const double moved = now();
    engine_.setParameters(ports_);
    handleEventsUntil([this] { return pictured_ == engine_.fingerprint() || engine_.failure(); });
    show(picture_);
    latencies.push_back(1000 * (now() - moved));
    areQuick = areQuick && isQuick_;
  }
  const double rested = now();
  engine_.setHeld(false);
  handleEventsUntil([this] { return engine_.fullPicture() || engine_.failure(); });
  if (engine_.fullPicture()) show(engine_.fullPicture());
  const double full = 1000 * (now() - rested);
  waitUntilSettled();
  const double firstMove = latencies.front();
  std::ranges::sort(latencies);
  std::printf(
      "drag of %s, %s pictures: first %.1f ms, median %.1f ms, worst of %d %.1f ms; full one at rest: %.1f ms\n",
      parameter.name().c_str(), areQuick ? "quick" : "full", firstMove, latencies[latencies.size() / 2], kMoves,
      latencies.back(), full);
}

// All frames, as fast as they come.
double Benchmark::framesPerSecond() {
  const std::uint64_t count = std::min(engine_.opened()->count, kMostFrames);
  const double start = now();
  std::uint64_t ordered = 0;
  aheadCount_ = 0;
  while (aheadCount_ < count) {
    while (ordered < count && ordered - aheadCount_ < engine_.mostAhead()) engine_.orderAhead(ordered++);
    const std::uint64_t before = aheadCount_;
    handleEventsUntil([&] { return aheadCount_ > before; });
  }
  return static_cast<double>(count) / (now() - start);
}

void Benchmark::ahead() {
  const double atFirst = framesPerSecond();
  MovedParameter parameter(ports_);
  if (parameter.exists()) parameter.moveTo(0.3);
  engine_.setParameters(ports_);
  waitUntilSettled();
  const double again = framesPerSecond();
  frames_.resize(std::min(frames_.size(), kMostShown));
  const double start = now();
  for (const PreviewPictureRef& frame : frames_) show(frame);
  const double shown = static_cast<double>(frames_.size()) / (now() - start);
  std::printf("frames: %.1f a second at first, %.1f with other parameters; from the cache onto the screen %.1f\n",
              atFirst, again, shown);
}

}  // namespace

void runBenchmark(const InspectOptions& options, int argc, char** argv) {
  if (options.effect.empty()) throw Failure(ExitCode::Usage, "--benchmark: give an effect");
  qputenv("QT_QPA_PLATFORM", "offscreen");
  prepareWindowSystem(options);
  const QApplication application(argc, argv);
  Benchmark(options).run();
}

}  // namespace host
