// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/PictureSink.h"

#include "Host/Files/FileFormat.h"
#include "Host/Files/OutputFile.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/StandardOutput.h"

#include <unistd.h>

namespace host {

PictureSink::PictureSink(const std::string& output, const std::string& format, const WriteSettings& settings,
                         double rate, bool isVerbose)
    : output_(output), pattern_(framePattern(output)), settings_(settings), isVerbose_(isVerbose) {
  if (!isPrinted()) {
    if (frameStreamNamed(format)) {
      throw Failure(ExitCode::Usage, "--format " + format + ": frames one after another go to --output - alone");
    }
    format_ = format.empty() ? fileFormatOf(output) : fileFormatNamed(format);
    checkOutput(output);
    return;
  }
  if (format.empty()) {
    throw Failure(ExitCode::Usage, "--output -: say what to write, as in --format png, y4m or raw");
  }
  if (isatty(STDOUT_FILENO)) {
    throw Failure(ExitCode::Output, "cannot write to the standard output: it is a terminal");
  }
  if (const auto kind = frameStreamNamed(format)) {
    stream_.emplace(*kind, rate);
    isRaw_ = *kind == FrameStreamKind::Raw;
  } else {
    format_ = fileFormatNamed(format);
  }
}

void PictureSink::write(const OutputPicture& picture, std::uint32_t frame) {
  tellOfLosses(picture);
  if (isPrinted()) return print(picture);
  clipped_ += writePicture(pattern_ ? pattern_->path(frame) : output_, format_, picture, settings_);
}

void PictureSink::print(const OutputPicture& picture) {
  if (stream_) printText(stream_->start(streamFrameOf(picture)));
  clipped_ += encode(picture, printBytes);
  finishStandardOutput();  // whoever reads may have had enough
}

std::uint64_t PictureSink::encode(const OutputPicture& picture, const BytesTaker& take) const {
  return stream_ ? stream_->encode(picture, take) : encodePicture(format_, picture, settings_, take);
}

void PictureSink::print(const StreamFrame& frame, std::span<const std::uint8_t> bytes) {
  if (stream_) printText(stream_->start(frame));
  printBytes(bytes);
  finishStandardOutput();
}

// Once: the frames of a sequence are alike.
void PictureSink::tellOfLosses(const OutputPicture& picture) {
  if (!isVerbose_) return;
  isVerbose_ = false;
  const char* const what = stream_ ? "a stream" : traitsOf(format_).name;
  host::tellOfLosses(what, stream_ ? std::nullopt : std::optional(format_), picture);
}

}  // namespace host
