// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipFormats.h"
#include "Host/ImageFiles/FileMetadata.h"
#include "Host/Processes/ChildProcess.h"
#include "Host/Processes/FrameSlots.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace host {

// Whose audio goes into a clip as it is: packets from `start` on, for `duration`, in seconds from where that
// file says that its video begins.
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

// A clip that a process of its own encodes (vorto-clips), so that a fault in a codec ends that one and not the host.
// The old file stays as it is until finish() has succeeded; a writer that is destroyed before leaves nothing.
class ClipWriter {
 public:
  // Throws Failure naming the file when such a clip cannot be written. Frames come from `slots`, which outlive it.
  // `patience`: how long the process may go on without a frame encoded, or a part of the file written; all of it throws
  // Failure after that.
  ClipWriter(const ClipTarget& target, FrameSlots& slots, std::chrono::seconds patience);
  ClipWriter(ClipWriter&& other) noexcept = default;
  ClipWriter& operator=(ClipWriter&& other) = delete;
  ~ClipWriter();

  // Throws Failure before any work is done when the audio cannot go into such a file, or cannot be read. Of the target
  // only path, container, settings' codec and audio count.
  static void checkAudio(const ClipTarget& target, std::chrono::seconds patience);

  // The frame in a slot, of the target's kind, shown from `time` on, which ascends; the slot must stay as it is until
  // written() has returned it. Does not wait for the frame to be taken. Throws Failure naming the file.
  void write(std::size_t slot, std::int64_t time);

  int descriptor() const { return process_.socket().descriptor(); }  // readable when written() has something to say
  // The next slot whose frame has been taken: waits for it, so there must be one. Throws Failure naming the file.
  std::size_t written();

  // After all frames were written, at least one: `end` is the time at which the last one is over. Slots that written()
  // has not returned are free afterwards. Remarks on audio that is not all there. Throws Failure.
  void finish(std::int64_t end);

 private:
  std::string path_;
  std::chrono::seconds patience_;
  mutable ChildProcess process_;
};

}  // namespace host
