// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipWriter.h"
#include "Host/Processes/Message.h"

#include <cstdint>

// What ClipWriter and the process that writes for it say to each other. Each message begins with its kind.
namespace host {

enum class WriterOrder : std::uint8_t {
  CheckAudio,  // the target
  Open,        // the target, how many slots there are
  Write,       // slot, time
  Finish,      // end
};

enum class WriterReport : std::uint8_t {
  Ready,     // after CheckAudio and Open
  Working,   // goes on: nothing else
  Written,   // slot: its frame has been taken
  Finished,  // the file is complete and in its place: a remark, empty for none
  Failed,    // exit code, message: the last one
};

void put(MessageWriter& message, const ClipTarget& target);
ClipTarget takeClipTarget(MessageReader& message);  // throws Failure for what ends early

}  // namespace host
