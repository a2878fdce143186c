// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Jobs/JobOutput.h"

namespace host {

OutputDescription JobOutput::description() const {
  if (isClip()) return {clip.path, [](Depth) { return FileFormat::Clip; }};
  return {sink->name(), [sink = sink](Depth depth) { return sink->format(depth); }};
}

}  // namespace host
