// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace host {

// The frames of a run, counted from 0: when each is shown, and what people call it.
class PlaybackTimes {
 public:
  PlaybackTimes() = default;  // one still

  // Frames that come at one rate (frames per second; 25 where it is none). `count` is 1 or more.
  static PlaybackTimes even(std::uint64_t count, const Rational& rate);
  // `starts` in seconds, ascending, the first 0, not empty; `end` is that of the last frame; `rate` is what the run is
  // meant to have.
  static PlaybackTimes uneven(std::vector<double> starts, double end, const Rational& rate);
  // A transition between stills: 1001 fine steps of its time, of which as many are left out as to run in two seconds.
  static PlaybackTimes transition(const Rational& rate);

  void setFirstNumber(std::uint64_t number) { firstNumber_ = number; }  // of frame 0, as files are numbered
  void setFirstTimeCode(const TimeCode& code) { firstTimeCode_ = code; }

  std::uint64_t count() const { return count_; }
  std::uint64_t last() const { return count_ - 1; }
  bool isTransition() const { return isTransition_; }
  // Playing goes so many frames further with every step.
  std::uint64_t stride() const { return stride_; }
  const Rational& rate() const { return rate_; }
  double framesPerSecond() const;

  double seconds(std::uint64_t frame) const;      // from the first frame on; of count() the end
  std::uint64_t frameAt(double seconds) const;    // that is shown then, the first or last one beyond the ends
  double stepSeconds(std::uint64_t frame) const;  // how long a frame is shown when all are played; above 0

  std::uint64_t firstNumber() const { return firstNumber_; }
  // Of frame 0: what the clip says, else 0 with drops at the rates that use them; nothing where time codes cannot count
  // the frames.
  std::optional<TimeCode> firstTimeCode() const;

 private:
  std::uint64_t count_ = 1;
  std::uint64_t stride_ = 1;
  Rational rate_{25, 1};
  bool isTransition_ = false;
  std::vector<double> starts_;  // with the end; empty where frames come evenly
  std::uint64_t firstNumber_ = 0;
  std::optional<TimeCode> firstTimeCode_;
};

}  // namespace host
