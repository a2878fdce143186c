// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Playback/PositionText.h"

#include <QRectF>
#include <QSizeF>
#include <QString>
#include <cstdint>
#include <vector>

namespace host {

// Where things lie on a timeline, in points. Every frame has a part of the width, one like another: its cell.
class TimelineGeometry {
 public:
  TimelineGeometry(const QSizeF& size, std::uint64_t count);

  double left(std::uint64_t frame) const;  // of its cell; of count the right end
  double center(std::uint64_t frame) const { return (left(frame) + left(frame + 1)) / 2; }
  double cellWidth() const { return track_.width() / static_cast<double>(count_); }
  std::uint64_t frameAt(double x) const;  // the first or last one beyond the ends

  const QRectF& track() const { return track_; }  // below the ruler
  double rulerBottom() const { return track_.top(); }

  enum class Part { Playhead, In, Out };
  // What a press takes: beside the points of a range these, everywhere else the playhead comes there.
  Part partAt(const QPointF& at, std::uint64_t in, std::uint64_t out) const;

 private:
  QRectF track_;
  std::uint64_t count_;
};

struct TimelineTick {
  double frame = 0;
  QString label;  // empty: a short one without
};

// Marks for a ruler of so many points on which labels are so far apart at least; ascending, at round numbers of the
// unit.
std::vector<TimelineTick> timelineTicks(const PlaybackTimes& times, PositionUnit unit, double width, double apart);

}  // namespace host
