// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipReader.h"
#include "Tests/Support/ChildProcess.h"

// Clips that the program ffmpeg makes, and what it makes of them.

// Runs ffmpeg with these words of a shell; fails the test, with what it says, when it does.
void runFfmpeg(const std::string& words);

// What ffmpeg decodes of a clip with these options, as packed frames of the format.
std::string decodedByFfmpeg(const std::string& clip, const std::string& options, const std::string& format);

// The same as RGBA of 8 or 16 bits, converted exactly; the options are of ffmpeg's scaling filter.
std::string convertedByFfmpeg(const std::string& clip, const std::string& options, bool isDeep);

std::string contentsOf(const std::string& path);

// A clip that is read frame by frame, in one slot.
class ReadClip {
 public:
  explicit ReadClip(const std::string& path, int patience = 20);
  const host::ClipInfo& info() const { return reader_.info(); }
  std::size_t count() const { return info().times.size(); }
  // The pixels of a frame.
  std::string frame(std::uint32_t place);
  // Of all of them, one after another.
  std::string all();
  host::ClipReader& reader() { return reader_; }
  std::vector<std::uint32_t> damaged;  // frames that were read so

 private:
  host::FrameSlots slots_{2};
  host::ClipReader reader_;
};

// A clip's failure to open, or to be read to its end; empty when there is none.
std::string failureOf(const std::string& path);
