// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/OpenClips.h"
#include "Host/Jobs/JobOutput.h"
#include "Host/Rendering/FrameList.h"
#include "Host/Rendering/RenderPlan.h"

#include <cstdint>
#include <string>
#include <vector>

namespace host {

// A run whose frames are rendered by other processes.
struct JobRun {
  const RenderPlan* plan = nullptr;
  FrameList frames;                    // which ones of the plan; not empty
  unsigned workers = 1;                // at least 1
  bool keepsState = false;             // the effect: one worker renders all frames, one after another
  std::vector<std::string> arguments;  // of this program, to become a worker for the same run
  OpenClips* clips = nullptr;          // with as many slots as slotsOfClip() says
  JobOutput output;
  std::int64_t end = 0;  // of a clip: when the last frame is over
};

// How many frames of a clip are decoded ahead.
std::size_t slotsOfClip(unsigned workers);

// Of that many workers those whose slots find descriptors, at least one; `clips`: how many clips are read.
unsigned workersThatFit(unsigned workers, std::size_t clips, bool usesSlots);

// Renders the frames: what is printed, written into a clip and remarked comes in their order, as from one process. The
// first frame in order that fails ends it: the ones before have been written, others may have been, none in part.
// Throws Failure.
void renderInJobs(const JobRun& run);

// As many processes as this one may use cores.
unsigned usualJobs();

}  // namespace host
