// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipInfo.h"
#include "Host/Clips/Program/DecodeFrames.h"

namespace host {

// What is known of a clip, of which the first frame has been decoded. Throws Failure, whose message is only the reason,
// when frames are larger than bitmaps can be.
ClipInfo describedClip(const FrameDecoder& decoder, const AVFrame& first);

}  // namespace host
