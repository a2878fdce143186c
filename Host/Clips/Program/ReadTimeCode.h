// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/Program/AvObjects.h"
#include "Host/ImageFiles/FileMetadata.h"

#include <optional>
#include <string>

namespace host {

// The time code of the first frame, as the clip or its time code track says it.
std::optional<TimeCode> timeCodeOf(const AVFormatContext& input, const AVStream& stream, AVRational rate);

// "01:02:03:04", with a semicolon or a point before frames that are counted with drops, packed. Beyond 30 frames in a
// second two frames share a number, and the second of them has the field's bit. Nothing for another text.
std::optional<TimeCode> packedTimeCode(const std::string& text, double rate);

}  // namespace host
