// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Jobs/JobOutput.h"
#include "Host/Jobs/Task.h"
#include "Host/Processes/FrameSlots.h"

#include <cstdint>

namespace host {

// Leaves a rendered frame where the coordinator wants it: in the file of its number, as the bytes that are printed, or
// as rows for a clip. Returns of how many pixels integers could not hold the colors. Throws Failure.
std::uint64_t leaveFrame(const OutputPicture& picture, const FrameTask& task, const JobOutput& output,
                         FrameSlots& slots, StoredFrame* stored);

// How a picture lies in a clip whose codec holds alpha or not: RGB, or RGBA with straight alpha, of 8 or 16 bits.
FrameKind clipKindOf(const OutputPicture& picture, bool holdsAlpha);

}  // namespace host
