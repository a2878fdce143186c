// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/Program/AvObjects.h"
#include "Host/ImageFiles/FileMetadata.h"

#include <optional>

namespace host {

// The time code of the first frame, as the clip or its time code track says it.
std::optional<TimeCode> timeCodeOf(const AVFormatContext& input, const AVStream& stream, AVRational rate);

}  // namespace host
