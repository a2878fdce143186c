// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"
#include "Host/ImageFiles/PictureTypes.h"

#include <cstddef>
#include <cstring>

namespace host {

inline constexpr std::size_t kIccHeaderSize = 128;

// Whether a profile is for pictures with such channels: gray, or RGB.
inline bool isProfileFor(const Bytes& profile, Channels channels) {
  constexpr std::size_t kColorSpace = 16;
  return profile.size() >= kIccHeaderSize &&
         std::memcmp(&profile[kColorSpace], isGray(channels) ? "GRAY" : "RGB ", 4) == 0;
}

}  // namespace host
