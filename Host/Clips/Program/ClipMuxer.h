// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipWriter.h"
#include "Host/Clips/Program/AvObjects.h"
#include "Host/Clips/Program/MuxFile.h"

#include <functional>

namespace host {

// The library's name of the muxer of a container's files.
const char* muxerName(const ClipContainer& container);

// Puts packets into a file. All of it throws Failure naming the file.
class ClipMuxer {
 public:
  // Opens the file; the target outlives it. `goesOn` is called for each part of the file that is written or read.
  ClipMuxer(const ClipTarget& target, const ClipContainer& container, const std::function<void()>& goesOn);

  bool wantsHeader() const;  // encoders put what decoders need first into the file's header

  // Streams, the video first; then begin().
  void addVideo(const AVCodecContext& encoder);
  void addAudio(const AVStream& source);
  void begin();

  // A packet of a stream, its times in a unit, in the order of decoding times over all streams.
  void write(AVPacket& packet, int stream, AVRational unit);
  // The same for a packet that may be damaged: false when it is, and is not in the file.
  bool writeForeign(AVPacket& packet, int stream, AVRational unit);

  // Completes the file, which then is in its place.
  void finish();

 private:
  int put(AVPacket& packet, int stream, AVRational unit);
  void check(int error, const std::string& logged = "");
  AVStream& newStream();
  std::int64_t delayOf(const AVCodecParameters& codec) const;

  const ClipTarget& target_;
  MuxFile file_;
  AvOutput context_;
};

}  // namespace host
