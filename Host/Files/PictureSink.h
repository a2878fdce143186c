// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Files/FrameFiles.h"
#include "Host/Files/FrameStream.h"
#include "Host/Files/PictureWriting.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace host {

// Where the pictures of a run go: one file, a file for each frame, or the standard output ("-"), one after another
// there.
class PictureSink {
 public:
  // `format` is an extension, needed for the standard output, where "y4m" and "raw" are streams of frames for pipes.
  // Throws Failure when no such file could be written.
  PictureSink(const std::string& output, const std::string& format, const WriteSettings& settings, double rate,
              bool isVerbose);
  void write(const OutputPicture& picture, std::uint32_t frame);  // throws Failure

  // For who renders here what another process prints: the frame's bytes for the standard output, piece by piece; and
  // printing them, in the order of the frames. encode() returns the clipped pixels, which do not count here. Both throw
  // Failure.
  bool isPrinted() const { return output_ == "-"; }
  std::uint64_t encode(const OutputPicture& picture, const BytesTaker& take) const;
  void print(const StreamFrame& frame, std::span<const std::uint8_t> bytes);

  // What files do not keep, which is said of the first picture, another process says.
  void leaveLossesUntold() { isVerbose_ = false; }
  void tellOfLosses(const OutputPicture& picture);  // once; write() does

  // As messages call it: the file or the pattern of many.
  std::string name() const { return isPrinted() ? "the standard output" : output_; }

  // Of how many pixels, of all pictures that were written, the file's integers could not hold the colors.
  std::uint64_t clippedPixels() const { return clipped_; }

  // Of the files. Frames in a stream count as PNM, raw floats as PFM, which say nothing of their colors either.
  FileFormat format(Depth depth) const {
    const bool isLight = isRaw_ && (depth == Depth::Half || depth == Depth::Float);
    return isLight ? FileFormat::Pfm : format_;
  }

 private:
  void print(const OutputPicture& picture);

  const std::string output_;
  const std::optional<FramePattern> pattern_;
  const WriteSettings settings_;
  bool isVerbose_;
  std::optional<FrameStream> stream_;
  bool isRaw_ = false;
  FileFormat format_ = FileFormat::Pnm;
  std::uint64_t clipped_ = 0;
};

}  // namespace host
