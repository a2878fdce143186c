// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipWriter.h"
#include "Host/Jobs/JobOutput.h"
#include "Host/Jobs/Task.h"
#include "Host/Processes/FrameSlots.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace host {

// Where rendered frames go from the coordinator, in their order: to the standard output, or into a clip. Those that
// workers wrote into files have arrived. Keeps account of the slots that they come in.
class ResultOutput {
 public:
  // `slots`: those of results. Both outlive it.
  ResultOutput(const JobOutput& output, FrameSlots& slots);

  bool usesSlots() const { return output_.usesSlots(); }
  // The first frame of a clip is rendered before others are: it says what they all have.
  bool decidesWithFirst() const { return output_.isClip(); }
  std::optional<Channels> channels() const;  // of all frames, once the first has said it

  // A slot for a frame; nothing while all are in use.
  std::optional<std::size_t> freeSlot();
  void giveBack(std::size_t slot);

  // The next frame, in its slot, which is free again as soon as it has been written. Throws Failure.
  void use(const PlannedFrame& frame, const StoredFrame& stored, std::size_t slot);

  // Of a writer that has slots to give back; -1: none.
  int descriptor() const { return inClip_ > 0 ? writer_->descriptor() : -1; }
  void takeBack();  // waits for one

  void finish(std::int64_t end);  // after the last frame: throws Failure

 private:
  void beginClip(const StoredFrame& stored, const FrameKind& kind);
  void checkKind(const PlannedFrame& frame, const FrameKind& kind) const;

  const JobOutput& output_;
  FrameSlots& slots_;
  std::vector<std::size_t> free_;
  std::optional<ClipWriter> writer_;
  FrameKind kind_;
  std::size_t inClip_ = 0;  // slots that the writer has
};

}  // namespace host
