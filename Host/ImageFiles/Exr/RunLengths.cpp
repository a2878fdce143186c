// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/RunLengths.h"

#include <cstring>

namespace host::exr {
namespace {

constexpr std::size_t kLongestRun = 128;
constexpr std::size_t kLongestStretch = 127;
constexpr std::size_t kShortestRun = 3;  // shorter ones take no more room among others

std::size_t runAt(std::span<const std::uint8_t> bytes, std::size_t at) {
  std::size_t end = at + 1;
  while (end < bytes.size() && bytes[end] == bytes[at] && end - at < kLongestRun) ++end;
  return end - at;
}

}  // namespace

bool unpackRunLengths(std::span<const std::uint8_t> stored, std::span<std::uint8_t> bytes) {
  std::size_t to = 0;
  for (std::size_t at = 0; at < stored.size();) {
    const std::size_t code = stored[at++];
    const bool isRun = code < 128;
    const std::size_t count = isRun ? code + 1 : 256 - code;
    if (count > bytes.size() - to || (isRun ? 1 : count) > stored.size() - at) return false;
    if (isRun) {
      std::memset(bytes.data() + to, stored[at], count);
    } else {
      std::memcpy(bytes.data() + to, stored.data() + at, count);
    }
    at += isRun ? 1 : count;
    to += count;
  }
  return to == bytes.size();
}

std::size_t packRunLengths(std::span<const std::uint8_t> bytes, std::span<std::uint8_t> stored) {
  std::size_t to = 0;
  for (std::size_t at = 0; at < bytes.size();) {
    const std::size_t run = runAt(bytes, at);
    if (run >= kShortestRun) {
      if (stored.size() - to < 2) return 0;
      stored[to++] = static_cast<std::uint8_t>(run - 1);
      stored[to++] = bytes[at];
      at += run;
      continue;
    }
    std::size_t end = at + run;
    while (end < bytes.size() && end - at < kLongestStretch && runAt(bytes, end) < kShortestRun) ++end;
    end = end - at > kLongestStretch ? at + kLongestStretch : end;
    if (stored.size() - to < end - at + 1) return 0;
    stored[to++] = static_cast<std::uint8_t>(256 - (end - at));
    std::memcpy(stored.data() + to, bytes.data() + at, end - at);
    to += end - at;
    at = end;
  }
  return to;
}

}  // namespace host::exr
