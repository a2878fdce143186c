// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"
#include "Host/Processes/ChildProcess.h"
#include "Host/Processes/FrameSlots.h"

#include <cstdint>
#include <optional>
#include <string>

namespace host {

// How a clip is written, as the user says it.
struct ClipSettings {
  std::string codec;     // as ClipFormats.h names it; empty: the container's usual
  std::string speed;     // of encoders that know presets: as theirs, "fast", "medium"; empty: the encoder's own
  std::string sampling;  // "420", "422", "444", "rgb"; empty: the codec's usual
  int quality = -1;      // 1 to 100 of codecs that lose; -1: the usual
};

// Whose audio goes into a clip as it is: packets from `start` on, for `duration`, in seconds of that file's frames.
struct ClipAudio {
  std::string path;
  double start = 0;
  std::optional<double> duration;
};

// What is written where.
struct ClipTarget {
  std::string path;
  std::string container;  // an extension
  ClipSettings settings;
  Rational rate;      // frames per second that the clip is to say
  Rational timeBase;  // seconds in a unit of the frames' times
  FrameKind kind;     // of all frames: RGB or RGBA (straight) of 8 or 16 bits
  int bits = 8;       // that are worth keeping: 8, 10, 12 or 16; codecs take what is nearest and holds them
  FileMetadata metadata;
  std::optional<ClipAudio> audio;
};

// A clip that a process of its own encodes. The old file stays as it is until finish() has succeeded; a writer that is
// destroyed before leaves nothing.
class ClipWriter {
 public:
  // Throws Failure naming the file when such a clip cannot be written. Frames come from `slots`, which outlive it.
  ClipWriter(const ClipTarget& target, FrameSlots& slots);

  // Throws Failure before any work is done when the audio cannot go into such a file, or cannot be read.
  static void checkAudio(const ClipTarget& target);

  // The frame in a slot, shown from `time` on, which ascends; the slot must stay as it is until written() has returned
  // it.
  void write(std::size_t slot, std::int64_t time);

  int descriptor() const { return process_.socket().descriptor(); }  // readable when written() has something to say
  // The next slot whose frame has been taken: waits for it. Throws Failure naming the file.
  std::size_t written();

  // After all frames were written: `end` is the time at which the last one is over. Throws Failure.
  void finish(std::int64_t end);

 private:
  std::string path_;
  mutable ChildProcess process_;
};

}  // namespace host
