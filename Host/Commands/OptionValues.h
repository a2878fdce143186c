// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Rendering/EffectRendering.h"

#include <optional>
#include <string>

namespace host {

// The values of options that several commands have. An empty text gives nothing; they throw Failure for what does not
// fit.
std::optional<PictureSize> parsedSize(const std::string& text);  // "1920x1080"
std::optional<Depth> parsedDepth(const std::string& text);       // "8", "16", "half", "float"
OutputAlpha parsedOutputAlpha(const std::string& text);          // "keep", "opaque", "gray"; keep when empty
void checkTime(std::optional<double> time);                      // finite
void checkRate(double rate);                                     // finite, above 0

// When a frame of a sequence is rendered: transitions run from 0 at the first frame to 1 at the last, other effects in
// seconds from the first frame on.
double timeOfFrame(EffectKind kind, const FrameRange& frames, std::uint64_t frame, double rate);

}  // namespace host
