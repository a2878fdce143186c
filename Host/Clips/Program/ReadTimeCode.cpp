// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/ReadTimeCode.h"

#include <array>
#include <cstdint>
#include <cstdio>

namespace host {
namespace {

constexpr std::uint32_t kDropFrame = 1u << 6;
constexpr std::uint32_t kSecondField = 1u << 15;

std::uint32_t decimals(unsigned number) {
  return number / 10 << 4 | number % 10;
}

const char* statedIn(const AVDictionary* metadata) {
  const AVDictionaryEntry* entry = av_dict_get(metadata, "timecode", nullptr, 0);
  return entry ? entry->value : nullptr;
}

}  // namespace

std::optional<TimeCode> packedTimeCode(const std::string& text, double rate) {
  std::array<unsigned, 4> parts{};
  char separator = 0;
  int size = 0;
  const int found =
      std::sscanf(text.c_str(), "%2u:%2u:%2u%c%2u%n", &parts[0], &parts[1], &parts[2], &separator, &parts[3], &size);
  if (found != 5 || static_cast<std::size_t>(size) != text.size()) return std::nullopt;
  if (parts[0] > 23 || parts[1] > 59 || parts[2] > 59 || (separator != ':' && separator != ';' && separator != '.')) {
    return std::nullopt;
  }
  const bool isPaired = rate > 30.5;
  const unsigned frame = isPaired ? parts[3] / 2 : parts[3];
  if (frame > 29) return std::nullopt;
  TimeCode code;
  code.timeAndFlags = decimals(frame) | decimals(parts[2]) << 8 | decimals(parts[1]) << 16 | decimals(parts[0]) << 24;
  if (separator != ':') code.timeAndFlags |= kDropFrame;
  if (isPaired && parts[3] % 2 == 1) code.timeAndFlags |= kSecondField;
  return code;
}

std::optional<TimeCode> timeCodeOf(const AVFormatContext& input, const AVStream& stream, AVRational rate) {
  const char* text = statedIn(stream.metadata);
  if (!text) text = statedIn(input.metadata);
  for (unsigned i = 0; !text && i < input.nb_streams; ++i) text = statedIn(input.streams[i]->metadata);
  return text ? packedTimeCode(text, av_q2d(rate)) : std::nullopt;
}

}  // namespace host
