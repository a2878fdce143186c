// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/CoreFoundation/CFString.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

using CFUnits = std::vector<UniChar>;

// One encoding: its ICU converter, and the name under which ICU's detector reports it (null when it never does).
struct CFEncodingInfo {
  CFStringEncoding encoding;
  const char* converter;
  const char* detector;
};

std::span<const CFEncodingInfo> CFKnownEncodings();

// Nothing when the bytes are not valid in the encoding, the encoding is unknown, or the text would be too long.
std::optional<CFUnits> CFDecode(std::span<const std::uint8_t> bytes, CFStringEncoding encoding);
// Nothing when the encoding cannot express the text, or is unknown.
std::optional<std::string> CFEncode(std::span<const UniChar> units, CFStringEncoding encoding);
// How many malformed or unassigned sequences the bytes hold; 1 for an unknown encoding.
std::uint32_t CFCountMalformed(std::span<const std::uint8_t> bytes, CFStringEncoding encoding);
// UTF-8 in which a lone surrogate is U+FFFD.
std::string CFReadableUTF8(std::span<const UniChar> units);
