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

// Of 30 numbers in a second the first two are left out at the beginning of each minute that is no multiple of ten.
std::optional<TimeCode> advancedTimeCode(const TimeCode& code, double rate, std::uint64_t frames) {
  if (!(rate >= 0.5 && rate <= 1000)) return std::nullopt;
  const auto perSecond = static_cast<std::uint64_t>(std::llround(rate));
  const bool isDropping = (code.timeAndFlags & kDropFrame) != 0 && perSecond % 30 == 0;
  const std::uint64_t dropped = isDropping ? perSecond / 15 : 0;
  const std::uint64_t perMinute = 60 * perSecond - dropped;
  const std::uint64_t perTenMinutes = 10 * perMinute + dropped;

  Shown shown = shownBy(code, rate);
  const std::uint64_t minutes = 60 * shown.hours + shown.minutes;
  const std::uint64_t numbered = (60 * minutes + shown.seconds) * perSecond + shown.frames;
  const std::uint64_t day = 144 * perTenMinutes;
  std::uint64_t count = (numbered - dropped * (minutes - minutes / 10) + frames % day) % day;

  const std::uint64_t tens = count / perTenMinutes;
  count %= perTenMinutes;
  // The first of ten minutes is whole.
  const std::uint64_t single = count < dropped ? 0 : (count - dropped) / perMinute;
  count += dropped * (9 * tens + single) + tens * perTenMinutes;
  shown.frames = count % perSecond;
  shown.seconds = count / perSecond % 60;
  shown.minutes = count / (60 * perSecond) % 60;
  shown.hours = count / (3600 * perSecond) % 24;
  return packed(shown, rate, code);
}

}  // namespace host
