// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/TimelineGeometry.h"

#include "Host/Clips/TimeCodes.h"

#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr double kSide = 16;
constexpr double kRulerHeight = 20;
constexpr double kBottom = 6;
constexpr double kReach = 6;       // of the points of a range
constexpr double kLeastMinor = 5;  // points between short marks
constexpr std::size_t kMostTicks = 4096;

// The smallest of 1, 2, 5, 10, ... that is at least that much.
std::uint64_t roundStep(double least) {
  std::uint64_t decade = 1;
  while (decade < 1'000'000'000'000) {
    for (const std::uint64_t step : {decade, 2 * decade, 5 * decade}) {
      if (static_cast<double>(step) >= least) return step;
    }
    decade *= 10;
  }
  return decade;
}

// Seconds between marks of clocks.
std::uint64_t clockStep(double least) {
  for (const std::uint64_t step : {1, 2, 5, 10, 15, 30, 60, 120, 300, 600, 900, 1800, 3600, 7200, 14400, 28800}) {
    if (static_cast<double>(step) >= least) return step;
  }
  return 86400;
}

// Into how many parts short marks cut so wide a step of so many units.
std::uint64_t partsOf(std::uint64_t step, double width) {
  for (const std::uint64_t parts : {10, 5, 4, 3, 2}) {
    if (step % parts == 0 && width / static_cast<double>(parts) >= kLeastMinor) return parts;
  }
  return 1;
}

class TickMaker {
 public:
  TickMaker(const PlaybackTimes& times, PositionUnit unit, double width, double apart)
      : times_(times), unit_(unit), pointsPerFrame_(width / static_cast<double>(times.count())), apart_(apart) {}

  std::vector<TimelineTick> made() {
    if (unit_ == PositionUnit::TimeCode && times_.firstTimeCode()) {
      addTimeCodes();
    } else if (unit_ == PositionUnit::Seconds) {
      addSeconds();
    } else if (unit_ == PositionUnit::Progress) {
      addProgress();
    } else {
      addNumbers();
    }
    return std::move(ticks_);
  }

 private:
  void add(double frame, const QString& label) {
    if (frame > -1e-6 && frame < static_cast<double>(times_.count()) && ticks_.size() < kMostTicks)
      ticks_.push_back({frame, label});
  }

  // A long mark and the short ones up to the next.
  void addWithParts(double frame, double next, std::uint64_t parts, const QString& label) {
    add(frame, label);
    for (std::uint64_t i = 1; i < parts; ++i) {
      add(frame + (next - frame) * static_cast<double>(i) / static_cast<double>(parts), {});
    }
  }

  void addNumbers() {
    const std::uint64_t step = roundStep(apart_ / pointsPerFrame_);
    const std::uint64_t parts = partsOf(step, static_cast<double>(step) * pointsPerFrame_);
    const std::uint64_t first = times_.firstNumber();
    for (std::uint64_t number = first - first % step; number <= first + times_.last(); number += step) {
      const double frame = static_cast<double>(number) - static_cast<double>(first);
      addWithParts(frame, frame + static_cast<double>(step), parts, QString::number(number));
    }
  }

  void addProgress() {
    constexpr std::uint64_t steps[] = {10, 20, 50, 100, 250, 500};
    const double whole = static_cast<double>(times_.last());
    for (const std::uint64_t step : steps) {
      const double width = static_cast<double>(step) / 1000 * whole * pointsPerFrame_;
      if (width < apart_ && step != 500) continue;
      for (std::uint64_t at = 0; at <= 1000; at += step) {
        const double frame = static_cast<double>(at) / 1000 * whole;
        const double next = frame + static_cast<double>(step) / 1000 * whole;
        addWithParts(frame, next, partsOf(step, width), QString::number(static_cast<double>(at) / 1000));
      }
      return;
    }
  }

  void addSeconds() {
    const double duration = std::max(times_.seconds(times_.count()), 1e-6);
    const double least = apart_ / (pointsPerFrame_ * static_cast<double>(times_.count())) * duration;
    // In milliseconds, so that steps are whole.
    const std::uint64_t step = least > 1 ? 1000 * clockStep(least) : roundStep(least * 1000);
    const double width = static_cast<double>(step) / 1000 / least * apart_;
    for (std::uint64_t at = 0; static_cast<double>(at) < duration * 1000; at += step) {
      const auto frameOf = [&](std::uint64_t time) {
        return static_cast<double>(times_.frameAt(static_cast<double>(time) / 1000));
      };
      addWithParts(frameOf(at), frameOf(at + step), partsOf(step, width), secondsLabel(at, duration));
    }
  }

  static QString secondsLabel(std::uint64_t milliseconds, double duration) {
    if (duration <= 60 || milliseconds % 1000 != 0) return QString::number(static_cast<double>(milliseconds) / 1000);
    const std::uint64_t seconds = milliseconds / 1000;
    return QStringLiteral("%1:%2").arg(seconds / 60).arg(seconds % 60, 2, 10, QChar('0'));
  }

  void addTimeCodes() {
    const double rate = times_.framesPerSecond();
    const double pointsPerSecond = pointsPerFrame_ * std::round(rate);
    if (pointsPerSecond / 2 >= apart_) return addFramesOfSeconds();
    const std::uint64_t step = clockStep(apart_ / pointsPerSecond);
    const std::uint64_t parts = partsOf(step, static_cast<double>(step) * pointsPerSecond);
    forSeconds(step, [&](double frame, double next, const QString& label) { addWithParts(frame, next, parts, label); });
  }

  // Marks at frames by which a second can be divided.
  void addFramesOfSeconds() {
    const auto perSecond = static_cast<std::uint64_t>(std::lround(times_.framesPerSecond()));
    std::uint64_t step = 1;
    while (perSecond % step != 0 || static_cast<double>(step) * pointsPerFrame_ < apart_) ++step;
    const std::uint64_t parts = partsOf(step, static_cast<double>(step) * pointsPerFrame_);
    forSeconds(1, [&](double frame, double next, const QString&) {
      for (std::uint64_t i = 0; frame + static_cast<double>(i) < next - 0.5; i += step) {
        const double at = frame + static_cast<double>(i);
        if (at < 0) continue;
        const QString label = positionText(times_, static_cast<std::uint64_t>(at), unit_);
        addWithParts(at, at + static_cast<double>(step), parts, label);
      }
    });
  }

  // Does something for every so many seconds of the time code: with the frame there, that of the next, and the code.
  template <class Work>
  void forSeconds(std::uint64_t step, const Work& work) {
    constexpr std::uint64_t secondsOfDay = 86400;
    const double rate = times_.framesPerSecond();
    const auto perSecond = static_cast<std::uint64_t>(std::lround(rate));
    const std::uint64_t start = framesSinceMidnight(*times_.firstTimeCode(), rate).value_or(0);
    const std::uint64_t framesOfDay = framesUntilClock(times_, secondsOfDay - 1) + perSecond;
    const auto frameOf = [&](std::uint64_t clock) {
      const std::uint64_t count = framesUntilClock(times_, clock % secondsOfDay) + clock / secondsOfDay * framesOfDay;
      return static_cast<double>(count) - static_cast<double>(start);
    };
    // Where frames are dropped the clock is ahead of that, and marks before the first frame are left out.
    std::uint64_t clock = start / perSecond;
    clock -= clock % step;
    double frame = frameOf(clock);
    while (frame < static_cast<double>(times_.count())) {
      const double next = frameOf(clock + step);
      work(frame, next, frame < 0 ? QString() : positionText(times_, static_cast<std::uint64_t>(frame), unit_));
      clock += step;
      frame = next;
    }
  }

  const PlaybackTimes& times_;
  const PositionUnit unit_;
  const double pointsPerFrame_;
  const double apart_;
  std::vector<TimelineTick> ticks_;
};

}  // namespace

TimelineGeometry::TimelineGeometry(const QSizeF& size, std::uint64_t count)
    : track_(kSide, kRulerHeight, std::max(size.width() - 2 * kSide, 1.0),
             std::max(size.height() - kRulerHeight - kBottom, 1.0)),
      count_(std::max<std::uint64_t>(count, 1)) {}

double TimelineGeometry::left(std::uint64_t frame) const {
  return track_.left() + track_.width() * static_cast<double>(frame) / static_cast<double>(count_);
}

std::uint64_t TimelineGeometry::frameAt(double x) const {
  const double frame = std::floor((x - track_.left()) / cellWidth());
  if (!(frame > 0)) return 0;
  return frame < static_cast<double>(count_) ? static_cast<std::uint64_t>(frame) : count_ - 1;
}

TimelineGeometry::Part TimelineGeometry::partAt(const QPointF& at, std::uint64_t in, std::uint64_t out) const {
  if (at.y() < track_.top()) return Part::Playhead;
  const double toIn = std::abs(at.x() - left(in));
  const double toOut = std::abs(at.x() - left(out + 1));
  if (std::min(toIn, toOut) > kReach) return Part::Playhead;
  return toIn < toOut ? Part::In : Part::Out;
}

std::vector<TimelineTick> timelineTicks(const PlaybackTimes& times, PositionUnit unit, double width, double apart) {
  if (!(width > 0) || times.count() < 2) return {};
  return TickMaker(times, unit, width, apart).made();
}

}  // namespace host
