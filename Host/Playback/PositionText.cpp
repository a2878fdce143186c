// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/PositionText.h"

#include "Host/Clips/TimeCodes.h"

#include <QStringList>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace host {
namespace {

enum class Direction { Back = -1, To = 0, Forward = 1 };

// The frame so far (below 0 too) from the first one, if there is one; else the end that lies there.
std::uint64_t limited(double frame, const PlaybackTimes& times) {
  if (!(frame > 0)) return 0;
  return frame < static_cast<double>(times.last()) ? static_cast<std::uint64_t>(std::llround(frame)) : times.last();
}

std::optional<double> parsedNumber(const QString& text) {
  for (const QChar character : text) {
    if (!(character >= '0' && character <= '9') && character != '.') return std::nullopt;
  }
  bool isNumber = false;
  const double value = text.toDouble(&isNumber);
  return isNumber ? std::optional(value) : std::nullopt;
}

std::optional<std::uint64_t> inSeconds(double seconds, const PlaybackTimes& times, std::uint64_t present,
                                       Direction direction) {
  if (direction == Direction::To) return times.frameAt(seconds);
  return times.frameAt(times.seconds(present) + static_cast<double>(static_cast<int>(direction)) * seconds);
}

using CodeNumbers = std::array<int, 4>;  // hours, minutes, seconds, frames

bool isDropping(const TimeCode& code) {
  constexpr std::uint32_t dropFrame = 1u << 6;
  return (code.timeAndFlags & dropFrame) != 0;
}

// Frames since midnight. What is left out where frames are dropped is the next one that is not.
std::optional<std::uint64_t> countOf(const CodeNumbers& numbers, double rate, bool dropping) {
  constexpr int mostLeftOut = 8;
  for (int i = 0; i <= (dropping ? mostLeftOut : 0); ++i) {
    std::array<char, 64> code{};
    std::snprintf(code.data(), code.size(), "%02d:%02d:%02d%c%02d", numbers[0], numbers[1], numbers[2],
                  dropping ? ';' : ':', numbers[3] + i);
    const auto packed = packedTimeCode(code.data(), rate);
    if (!packed) return std::nullopt;
    if (const auto count = framesSinceMidnight(*packed, rate)) return count;
  }
  return std::nullopt;
}

// The first of four may be missing.
std::optional<CodeNumbers> parsedCode(const QString& text) {
  const QStringList parts = QString(text).replace(';', ':').replace('.', ':').split(':');
  if (parts.size() < 2 || parts.size() > 4) return std::nullopt;
  CodeNumbers numbers{};
  for (int i = 1; i <= parts.size(); ++i) {
    const QString& part = parts[parts.size() - i];
    bool isNumber = false;
    numbers[static_cast<std::size_t>(4 - i)] = static_cast<int>(part.toUInt(&isNumber));
    if (!isNumber || part.size() > 2) return std::nullopt;
  }
  return numbers;
}

std::optional<std::uint64_t> inTimeCode(const QString& text, const PlaybackTimes& times, std::uint64_t present,
                                        Direction direction) {
  const auto first = times.firstTimeCode();
  if (!first) return std::nullopt;
  const auto numbers = parsedCode(text);
  if (!numbers) return std::nullopt;
  const bool isWay = direction != Direction::To;
  const auto count = countOf(*numbers, times.framesPerSecond(), !isWay && isDropping(*first));
  const auto start = framesSinceMidnight(*first, times.framesPerSecond());
  if (!count || !start) return std::nullopt;
  const auto wanted = static_cast<double>(*count);
  if (isWay) return limited(static_cast<double>(present) + static_cast<int>(direction) * wanted, times);
  if (*count >= *start) return limited(wanted - static_cast<double>(*start), times);
  // After midnight, where the run goes so far.
  const auto last = advancedTimeCode(*first, times.framesPerSecond(), times.last());
  const auto end = last ? framesSinceMidnight(*last, times.framesPerSecond()) : std::nullopt;
  if (!end || *end >= *start || *count > *end) return 0;
  return times.last() - (*end - *count);
}

}  // namespace

std::uint64_t framesUntilClock(const PlaybackTimes& times, std::uint64_t second) {
  const auto first = times.firstTimeCode();
  if (!first) return 0;
  const int clock = static_cast<int>(second % 86400);
  const CodeNumbers numbers{clock / 3600, clock / 60 % 60, clock % 60, 0};
  return countOf(numbers, times.framesPerSecond(), isDropping(*first)).value_or(0);
}

std::vector<PositionUnit> unitsOf(const PlaybackTimes& times) {
  if (times.isTransition()) return {PositionUnit::Progress};
  if (!times.firstTimeCode()) return {PositionUnit::Frames, PositionUnit::Seconds};
  return {PositionUnit::Frames, PositionUnit::TimeCode, PositionUnit::Seconds};
}

QString positionText(const PlaybackTimes& times, std::uint64_t frame, PositionUnit unit) {
  if (unit == PositionUnit::Progress) {
    return QString::number(std::floor(static_cast<double>(frame * 100) / static_cast<double>(times.last())) / 100, 'f',
                           2);
  }
  if (unit == PositionUnit::Seconds) return QString::number(times.seconds(frame), 'f', 2);
  if (unit == PositionUnit::TimeCode && times.firstTimeCode()) {
    if (const auto code = advancedTimeCode(*times.firstTimeCode(), times.framesPerSecond(), frame)) {
      return QString::fromStdString(timeCodeText(*code, times.framesPerSecond()));
    }
  }
  return QString::number(times.firstNumber() + frame);
}

std::optional<std::uint64_t> parsedPosition(const QString& text, const PlaybackTimes& times, std::uint64_t present,
                                            PositionUnit unit) {
  QString rest = text.simplified().remove(' ').replace(',', '.').replace(QChar(0x2212), '-');
  Direction direction = Direction::To;
  if (rest.startsWith('+') || rest.startsWith('-')) {
    direction = rest.startsWith('+') ? Direction::Forward : Direction::Back;
    rest.remove(0, 1);
  }
  const double sign = static_cast<int>(direction);
  const bool hasSecond = rest.endsWith('s', Qt::CaseInsensitive);
  const bool hasPercent = rest.endsWith('%');
  if (hasSecond || hasPercent) rest.chop(1);

  if (rest.contains(':') || rest.contains(';')) {
    return hasSecond || hasPercent ? std::nullopt : inTimeCode(rest, times, present, direction);
  }
  const auto number = parsedNumber(rest);
  if (!number) return std::nullopt;
  if (hasSecond || (unit == PositionUnit::Seconds && !hasPercent)) return inSeconds(*number, times, present, direction);
  if (hasPercent || times.isTransition()) {
    const double way = *number * (hasPercent ? 0.01 : 1) * static_cast<double>(times.last());
    return limited(direction == Direction::To ? way : static_cast<double>(present) + sign * way, times);
  }
  if (*number != std::floor(*number)) return std::nullopt;
  if (direction != Direction::To) return limited(static_cast<double>(present) + sign * *number, times);
  return limited(*number - static_cast<double>(times.firstNumber()), times);
}

}  // namespace host
