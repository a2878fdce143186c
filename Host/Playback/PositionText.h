// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Playback/PlaybackTimes.h"

#include <QString>
#include <cstdint>
#include <optional>
#include <vector>

namespace host {

// What a position is counted in. A transition between stills is counted from 0 to 1, everything else in one of the
// others.
enum class PositionUnit { Frames, TimeCode, Seconds, Progress };

std::vector<PositionUnit> unitsOf(
    const PlaybackTimes& times);  // that a run can be counted in; the first is the usual one

// "101", "01:00:04:05", "4.20", "0.42".
QString positionText(const PlaybackTimes& times, std::uint64_t frame, PositionUnit unit);

// The frame that somebody means who types a text beside a present position; the first or last one for what lies beyond.
// Understood are frame numbers ("101"), time codes ("01:00:04:05", also their last parts: "4:05"), seconds ("12.5s",
// without the letter where `unit` is seconds), of transitions 0 to 1 and percentages, and each with + or - as so much
// after or before the present. A decimal comma is as good as a point. Nothing for another text.
std::optional<std::uint64_t> parsedPosition(const QString& text, const PlaybackTimes& times, std::uint64_t present,
                                            PositionUnit unit);

// How many frames lie between midnight and the first one of a second of the day, as the time codes of the run count
// them; 0 where it has none.
std::uint64_t framesUntilClock(const PlaybackTimes& times, std::uint64_t second);

}  // namespace host
