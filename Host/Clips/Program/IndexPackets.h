// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/Program/AvObjects.h"
#include "Host/ImageFiles/FileMetadata.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace host {

// Where decoding can start.
struct KeyPacket {
  std::int64_t time;   // of its frame, in units of the stream
  std::int64_t order;  // its decoding time
};

// What the packets of a stream say about its frames, none of which has been decoded.
struct PacketIndex {
  AVRational timeBase;              // of the following
  std::vector<std::int64_t> times;  // of frames, ascending, no two equal
  std::int64_t end = 0;             // of the last frame
  // Packets do not say when their frames are shown: the n-th that is decoded is shown at the n-th time.
  bool isCounted = false;
  std::vector<KeyPacket> keys;  // by time; none where frames are counted
  std::string remark;           // that the file ends early; empty when all is well
};

// The time of a packet's frame, AV_NOPTS_VALUE where that is not known.
std::int64_t frameTime(const AVPacket& packet);

// Reads the file to its end. Throws Failure when there is no frame; `goesOn` is called again and again.
PacketIndex indexPackets(AVFormatContext& input, AVStream& stream, const std::function<void()>& goesOn);

}  // namespace host
