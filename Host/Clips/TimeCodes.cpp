// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/TimeCodes.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace host {
namespace {

constexpr std::uint32_t kDropFrame = 1u << 6;
constexpr std::uint32_t kSecondField = 1u << 15;
constexpr std::uint32_t kDigits = 0x3f7f7f3f;

bool isPaired(double rate) {
  return rate > 30.5;
}

std::uint32_t decimals(std::uint64_t number) {
  return static_cast<std::uint32_t>(number / 10 << 4 | number % 10);
}

std::uint64_t number(std::uint32_t packed, int shift, std::uint32_t tensMask) {
  return (packed >> shift & 0xf) + std::uint64_t{10} * (packed >> (shift + 4) & tensMask);
}

// What a time code shows.
struct Shown {
  std::uint64_t hours = 0;
  std::uint64_t minutes = 0;
  std::uint64_t seconds = 0;
  std::uint64_t frames = 0;
};

Shown shownBy(const TimeCode& code, double rate) {
  const std::uint32_t packed = code.timeAndFlags;
  Shown shown{number(packed, 24, 3), number(packed, 16, 7), number(packed, 8, 7), number(packed, 0, 3)};
  if (isPaired(rate)) shown.frames = 2 * shown.frames + ((packed & kSecondField) != 0 ? 1 : 0);
  return shown;
}

// Flags are those of `flags`.
std::optional<TimeCode> packed(const Shown& shown, double rate, TimeCode flags) {
  const bool isHalved = isPaired(rate);
  const std::uint64_t frame = isHalved ? shown.frames / 2 : shown.frames;
  if (shown.hours > 23 || shown.minutes > 59 || shown.seconds > 59 || frame > 29) return std::nullopt;
  std::uint32_t& bits = flags.timeAndFlags;
  bits &= ~kDigits;
  bits |= decimals(frame) | decimals(shown.seconds) << 8 | decimals(shown.minutes) << 16 | decimals(shown.hours) << 24;
  if (isHalved) bits = shown.frames % 2 == 1 ? bits | kSecondField : bits & ~kSecondField;
  return flags;
}

// How time codes count at a rate. Of 30 numbers in a second the first two are left out at the beginning of each minute
// that is no multiple of ten, where frames are dropped.
struct Counting {
  std::uint64_t perSecond = 0;
  std::uint64_t dropped = 0;  // in a minute
  std::uint64_t perMinute() const { return 60 * perSecond - dropped; }
  std::uint64_t perTenMinutes() const { return 10 * perMinute() + dropped; }
};

std::optional<Counting> countingOf(const TimeCode& code, double rate) {
  if (!(rate >= 0.5 && rate <= 1000)) return std::nullopt;
  const auto perSecond = static_cast<std::uint64_t>(std::llround(rate));
  const bool isDropping = (code.timeAndFlags & kDropFrame) != 0 && perSecond % 30 == 0;
  return Counting{perSecond, isDropping ? perSecond / 15 : 0};
}

std::uint64_t countOf(const Shown& shown, const Counting& counting) {
  const std::uint64_t minutes = 60 * shown.hours + shown.minutes;
  const std::uint64_t numbered = (60 * minutes + shown.seconds) * counting.perSecond + shown.frames;
  return numbered - counting.dropped * (minutes - minutes / 10);
}

}  // namespace

std::optional<TimeCode> packedTimeCode(const std::string& text, double rate) {
  std::array<unsigned, 4> parts{};
  char separator = 0;
  int size = 0;
  const int found =
      std::sscanf(text.c_str(), "%2u:%2u:%2u%c%2u%n", &parts[0], &parts[1], &parts[2], &separator, &parts[3], &size);
  if (found != 5 || static_cast<std::size_t>(size) != text.size()) return std::nullopt;
  if (separator != ':' && separator != ';' && separator != '.') return std::nullopt;
  return packed({parts[0], parts[1], parts[2], parts[3]}, rate, {separator == ':' ? 0 : kDropFrame, 0});
}

std::string timeCodeText(const TimeCode& code, double rate) {
  const Shown shown = shownBy(code, rate);
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%02u:%02u:%02u%c%02u", static_cast<unsigned>(shown.hours),
                static_cast<unsigned>(shown.minutes), static_cast<unsigned>(shown.seconds),
                (code.timeAndFlags & kDropFrame) != 0 ? ';' : ':', static_cast<unsigned>(shown.frames));
  return text.data();
}

std::optional<std::uint64_t> framesSinceMidnight(const TimeCode& code, double rate) {
  const auto counting = countingOf(code, rate);
  const Shown shown = shownBy(code, rate);
  if (!counting || shown.frames >= counting->perSecond) return std::nullopt;
  const bool isLeftOut = shown.seconds == 0 && shown.minutes % 10 != 0 && shown.frames < counting->dropped;
  if (isLeftOut) return std::nullopt;
  return countOf(shown, *counting);
}

std::optional<TimeCode> advancedTimeCode(const TimeCode& code, double rate, std::uint64_t frames) {
  const auto counting = countingOf(code, rate);
  if (!counting) return std::nullopt;
  const auto [perSecond, dropped] = *counting;
  const std::uint64_t day = 144 * counting->perTenMinutes();
  Shown shown = shownBy(code, rate);
  std::uint64_t count = (countOf(shown, *counting) + frames % day) % day;

  const std::uint64_t tens = count / counting->perTenMinutes();
  count %= counting->perTenMinutes();
  // The first of ten minutes is whole.
  const std::uint64_t single = count < dropped ? 0 : (count - dropped) / counting->perMinute();
  count += dropped * (9 * tens + single) + tens * counting->perTenMinutes();
  shown.frames = count % perSecond;
  shown.seconds = count / perSecond % 60;
  shown.minutes = count / (60 * perSecond) % 60;
  shown.hours = count / (3600 * perSecond) % 24;
  return packed(shown, rate, code);
}

}  // namespace host
