// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipWriter.h"
#include "Host/Clips/Program/AvObjects.h"

#include <cstdint>
#include <deque>
#include <string>
#include <vector>

namespace host {

// When a file says that its first frame is shown, in microseconds; 0 where it does not.
std::int64_t firstFrameTime(const AVFormatContext& input);

// How many samples a decoder of Opus leaves out at first; 0 of other codecs.
int opusPadding(const AVCodecParameters& codec);

// The audio of a file, packet by packet as it is there, from a moment on that becomes 0.
class AudioPackets {
 public:
  // Throws Failure naming the file when it cannot be read, has no audio, or audio that the container does not hold.
  AudioPackets(const ClipAudio& audio, const ClipContainer& container);

  std::size_t count() const { return tracks_.size(); }
  const AVStream& stream(std::size_t track) const { return *tracks_[track].stream; }

  struct Packet {
    AvPacket packet;  // in units of the track's rate; first times may be below 0 by what decoders are to leave out
    std::size_t track = 0;
    AVRational unit = {1, 1};
  };
  // The next packet; null after the last. It stays until next().
  Packet* packet() { return ready_.empty() ? nullptr : &ready_.front(); }
  void next();

  // The packet that was taken last is damaged and cannot be copied.
  void leaveOut() { ++damaged_; }
  // What of the audio is missing, naming its file; empty when nothing is.
  std::string remark() const;

 private:
  struct Track {
    const AVStream* stream = nullptr;
    AVRational unit = {1, 1};            // a sample
    std::int64_t start = 0;              // in units of the file's own time
    std::int64_t end = 0;                // relative to the start; not included
    std::int64_t earliest = 0;           // of times of packets, relative to the start
    std::int64_t grain = 0;              // how exact its times are
    std::int64_t last = AV_NOPTS_VALUE;  // what av_rescale_delta() keeps
    AvPacket before;                     // the last packet in front of `earliest`, where it may be kept
    bool isOver = false;
  };

  [[noreturn]] void refuse(const std::string& reason) const;
  void open();
  void chooseTracks(const ClipContainer& container);
  void findBounds();
  void read();
  void endAt(const std::string& fault);
  void add(AvPacket packet, std::size_t index);
  bool isOver() const;

  ClipAudio audio_;
  bool hasEditLists_;
  AvInput input_;
  std::vector<Track> tracks_;
  std::deque<Packet> ready_;
  bool isAtEnd_ = false;
  bool hasPackets_ = false;
  std::uint64_t damaged_ = 0;  // packets that are left out
  std::string fault_;          // why it ends early
};

}  // namespace host
