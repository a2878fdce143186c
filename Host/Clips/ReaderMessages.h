// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

namespace host {

// What a clip's reader and its process say to each other. The process is first told a path (text) and the count of
// slots (32 bits), then wanted frames and their slots (32 bits each). Its messages start with one of these.
enum class ReaderMessage : std::uint8_t {
  Working,  // it is still looking through the file
  Info,     // then a ClipInfo
  Refused,  // it is no clip that can be read; then the reason as text
  Frame,    // then frame, slot (32 bits each), whether it is damaged (8 bits)
  NoFrame,  // then frame, slot, the reason as text
};

}  // namespace host
