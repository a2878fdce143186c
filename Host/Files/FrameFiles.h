// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host {

// A file name with the number of a frame in it, as in "in.%04d.exr": %d, or %0Nd for at least N digits.
struct FramePattern {
  std::string before;  // with the folder
  std::string after;
  int digits = 1;

  std::string path(std::uint32_t frame) const;
};

// Nothing for a path without a number. Throws Failure for more than one number, or one in the folder's name.
std::optional<FramePattern> framePattern(const std::string& path);

struct FrameRange {
  std::uint32_t first = 0;
  std::uint32_t last = 0;
  std::uint64_t count() const { return std::uint64_t{last} - first + 1; }
};

// "3-10" or "7". Throws Failure for anything else.
FrameRange parsedFrameRange(const std::string& text);

// From the lowest to the highest frame that is there. Throws Failure when there is none.
FrameRange existingFrames(const FramePattern& pattern);

// Of a range those that have a file, in no order; none where the folder cannot be read.
std::vector<std::uint32_t> framesThere(const FramePattern& pattern, const FrameRange& range);

// Throws Failure naming the first frame of the range that is missing.
void checkFramesExist(const FramePattern& pattern, const FrameRange& range);

}  // namespace host
