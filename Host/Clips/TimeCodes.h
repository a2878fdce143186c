// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"

#include <cstdint>
#include <optional>
#include <string>

// Time codes of clips, by SMPTE 12M; `rate` is in frames per second. Beyond 30 frames in a second two frames share a
// number, and the second of them has the field's bit.
namespace host {

// "01:02:03:04", with a semicolon or a point before frames that are counted with drops, packed. Nothing for another
// text.
std::optional<TimeCode> packedTimeCode(const std::string& text, double rate);

// The same of a packed one, with a semicolon where frames are dropped.
std::string timeCodeText(const TimeCode& code, double rate);

// The time code so many frames later, beginning again after a day; its other flags and user bits stay. Nothing where it
// cannot be counted at the rate.
std::optional<TimeCode> advancedTimeCode(const TimeCode& code, double rate, std::uint64_t frames);

// How many frames lie before it since 00:00:00:00. Nothing for a number that is not counted at the rate, left out where
// frames are dropped included.
std::optional<std::uint64_t> framesSinceMidnight(const TimeCode& code, double rate);

}  // namespace host
