// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PlaybackBenchmark.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>
#include <algorithm>
#include <array>
#include <cstdio>

namespace host {

PlaybackBenchmark::PlaybackBenchmark(FrameSource& source, const PlaybackTimes& times) : player_(source) {
  player_.listen(*this, {.remark = [this](const QString& text) { failure_ = text.toStdString(); }});
  player_.setMode(PlayMode::EveryFrame);
  player_.setLooping(Looping::Off);
  player_.setReadsAhead(false);
  player_.setUnpaced(true);
  player_.setTimes(times);
}

PlaybackBenchmark::Pass PlaybackBenchmark::play(double mostSeconds) {
  const auto clock = Player::monotonicClock();
  QTimer limit;
  limit.setSingleShot(true);
  limit.callOnTimeout([this] {
    if (failure_.empty()) failure_ = "frames did not come in time";
    player_.pause();
  });
  limit.start(static_cast<int>(std::clamp(mostSeconds, 0.0, 1e6) * 1000));
  const double start = clock();
  player_.play();
  while (player_.isPlaying()) QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  return {player_.shownCount(), clock() - start};
}

PlaybackBenchmark::Result PlaybackBenchmark::run(std::uint64_t mostFrames, double mostSeconds) {
  failure_.clear();
  Result result;
  player_.goTo(0);
  player_.setOutPoint(std::max<std::uint64_t>(mostFrames, 2) - 1);
  player_.emptyCache();
  result.first = play(mostSeconds);
  const auto there = player_.cache().spanAround(0);
  if (failure_.empty() && there && there->last > 0) {
    player_.setOutPoint(std::min(there->last, player_.outPoint()));
    player_.goTo(0);
    result.cached = play(mostSeconds);
  }
  result.bytes = player_.cache().bytes();
  result.failure = failure_;
  return result;
}

std::string textOf(const PlaybackBenchmark::Result& result) {
  std::array<char, 160> text{};
  std::snprintf(text.data(), text.size(), "first time: %.1f frames/s (%llu frames)", result.first.rate(),
                static_cast<unsigned long long>(result.first.frames));
  std::string whole = text.data();
  if (result.cached) {
    std::snprintf(text.data(), text.size(), "; cached: %.0f frames/s (%llu frames, %.2f GB)", result.cached->rate(),
                  static_cast<unsigned long long>(result.cached->frames),
                  static_cast<double>(result.bytes) / (1u << 30));
    whole += text.data();
  }
  if (!result.failure.empty()) whole += "; " + result.failure;
  return whole;
}

}  // namespace host
