// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Playback/PlaybackTimes.h"
#include "Host/Preview/PreviewReport.h"

namespace host {

// The frames of opened inputs, as they are played.
PlaybackTimes playbackTimesOf(const PreviewOpened& opened);

}  // namespace host
