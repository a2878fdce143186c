// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Preview/PreviewOrder.h"
#include "Host/Preview/PreviewReport.h"
#include "Host/Processes/ChildProcess.h"
#include "Host/Processes/Message.h"

#include <cstddef>

namespace host {

// Orders and reports as messages. Bitmaps go through `entries` (BitmapHandover.h). Every function that takes something
// out of a message throws Failure for what cannot be one.

// Where a process that renders finds its end of `entries`.
inline constexpr int kPreviewEntries = kFirstInherited;

Bytes messageOf(const PreviewOrder& order, int entries);
PreviewOrder takePreviewOrder(const Bytes& message, int entries);

// What of a picture comes with a report; what does not is that of the picture before, or there is none.
struct PictureParts {
  enum class Part : std::uint8_t { None, Same, New };
  Part before = Part::None;
  Part fileBefore = Part::None;
  Part fileInfo = Part::None;
};

// Of a picture that is rendered `parts` has what is told; taken from a message it lacks what is the same.
Bytes messageOf(const PreviewReport& report, int entries, const PictureParts& parts = {});
PreviewReport takePreviewReport(const Bytes& message, int entries, PictureParts* parts);

}  // namespace host
