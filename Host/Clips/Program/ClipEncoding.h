// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipWriter.h"
#include "Host/Clips/Program/AudioPackets.h"
#include "Host/Clips/Program/ClipMuxer.h"
#include "Host/Clips/Program/EncodeFrames.h"

#include <deque>
#include <functional>
#include <optional>
#include <vector>

namespace host {

// The container of a target. Throws Failure for none.
const ClipContainer& containerOf(const ClipTarget& target);

// A clip while it is written. All of it throws Failure naming the file.
class ClipEncoding {
 public:
  // `goesOn` is called for each packet that is encoded, and while the file is completed.
  ClipEncoding(const ClipTarget& target, const std::function<void()>& goesOn);

  // Makes a frame of a slot's pixels; they are not needed any more afterwards.
  AvFrame frame(const FrameKind& kind, const std::byte* pixels);
  // The next frame, shown from that time on.
  void encode(AvFrame frame, std::int64_t time);
  // No more frames come: the file is complete.
  void finish(std::int64_t end);
  // What the user should know of a finished file; empty when all is well.
  std::string remark() const { return audio_ ? audio_->remark() : ""; }

 private:
  [[noreturn]] void refuse(const std::string& reason) const;
  void checkTime(std::int64_t time) const;
  void send(const AVFrame* frame);
  std::int64_t timeOf(std::int64_t frame) const;
  void muxReady();
  void muxAudio(std::int64_t until);

  std::function<void()> goesOn_;
  ClipTarget target_;
  const ClipContainer& container_;
  ClipStorage storage_;
  EncodeColors colors_;
  std::optional<AudioPackets> audio_;
  ClipMuxer muxer_;
  AvCodec encoder_;
  EncodeFrames frames_;
  std::vector<std::int64_t> times_;  // of frames, the first is at 0; behind the last one the end
  std::int64_t first_ = 0;           // the first one's time as it came
  std::deque<AvPacket> packets_;     // encoded; their times count frames
};

}  // namespace host
