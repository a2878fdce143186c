// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"

#include <cstdint>
#include <string>
#include <vector>

namespace host {

// One frame that is rendered.
struct PlannedFrame {
  std::uint64_t index = 0;             // among the frames of the plan
  std::uint32_t number = 0;            // in the output's name; counted from 0 where a clip leads
  std::vector<std::uint32_t> sources;  // by input: the file's number of a sequence, the place in a clip; 0 of stills
  double time = 0;                     // for the effect: seconds since the first, 0 to 1 for transitions
  std::int64_t shown = 0;              // from when on, in units of the plan's time base
};

// Which frames of the inputs are rendered, one after another, and when they are shown. Every frame can be rendered
// without the others being: what is true of all (depth, colors) the first one decides.
class RenderPlan {
 public:
  virtual ~RenderPlan() = default;
  virtual std::uint64_t count() const = 0;
  virtual PlannedFrame frame(std::uint64_t index) const = 0;  // below count()
  virtual Rational rate() const = 0;                          // frames per second
  virtual Rational timeBase() const = 0;                      // seconds in a unit of PlannedFrame::shown
  virtual std::int64_t end() const = 0;                       // when the last frame is over
  virtual bool isEven() const = 0;                            // frames come at that rate, one like another
};

}  // namespace host
