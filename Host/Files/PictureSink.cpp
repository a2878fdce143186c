// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/PictureSink.h"

#include "Host/Files/FileFormat.h"
#include "Host/Files/OutputFile.h"
#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/StandardOutput.h"

#include <unistd.h>

#include <cstdio>

namespace host {

PictureSink::PictureSink(const std::string& output, const std::string& format, const WriteSettings& settings,
                         double rate, bool isVerbose)
    : output_(output), pattern_(framePattern(output)), settings_(settings), isVerbose_(isVerbose) {
  if (output != "-") {
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
  if (output_ == "-") return print(picture);
  tellOfLosses(picture);
  clipped_ += writePicture(pattern_ ? pattern_->path(frame) : output_, format_, picture, settings_);
}

void PictureSink::print(const OutputPicture& picture) {
  if (stream_) {
    clipped_ += stream_->write(picture);
  } else {
    tellOfLosses(picture);
    clipped_ += printPicture(format_, picture, settings_);
  }
  finishStandardOutput();  // whoever reads may have had enough
}

// Once: the frames of a sequence are alike.
void PictureSink::tellOfLosses(const OutputPicture& picture) {
  if (!isVerbose_) return;
  isVerbose_ = false;
  const std::vector<std::string> lost = lostMetadata(format_, picture.metadata);
  if (lost.empty()) return;
  std::fprintf(stderr, "vorto: %s does not hold %s of the first input\n", traitsOf(format_).name,
               joinedNames(lost, " or ").c_str());
}

}  // namespace host
