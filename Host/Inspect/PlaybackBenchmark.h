// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Playback/Player.h"

#include <QObject>
#include <cstdint>
#include <optional>
#include <string>

namespace host {

// Measures how fast frames can be played: the first time, when each has to come from the source, and again, when they
// are in the cache. Both go through a player that keeps no rate and hands every frame on, as a window has them.
class PlaybackBenchmark : public QObject {
 public:
  struct Pass {
    std::uint64_t frames = 0;
    double seconds = 0;
    double rate() const { return seconds > 0 ? static_cast<double>(frames) / seconds : 0; }
  };
  struct Result {
    Pass first;
    std::optional<Pass> cached;  // nothing where not two frames stayed in the cache
    std::uint64_t bytes = 0;     // that the cache held then
    std::string failure;         // why a pass ended early; empty when all is well
  };

  // `source` outlives it. What the source delivers goes to player().
  PlaybackBenchmark(FrameSource& source, const PlaybackTimes& times);
  Player& player() { return player_; }

  // Plays the first frames, handling events meanwhile; a pass ends early after so many seconds.
  Result run(std::uint64_t mostFrames, double mostSeconds);

 private:
  Pass play(double mostSeconds);

  Player player_;
  std::string failure_;
};

// "first time: 41.2 frames/s (240 frames); cached: 512 frames/s (1.9 GB)".
std::string textOf(const PlaybackBenchmark::Result& result);

}  // namespace host
