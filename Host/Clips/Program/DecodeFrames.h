// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/Program/AvObjects.h"
#include "Host/Clips/Program/IndexPackets.h"

#include <cstdint>
#include <functional>
#include <string>

namespace host {

// A stream's frames by their places in its index.
class FrameDecoder {
 public:
  // The input is that of the path, opened, in any state. Throws Failure when nothing decodes the stream.
  FrameDecoder(const std::string& path, AvInput input, int stream);

  const AVFormatContext& input() const { return *input_; }
  AVStream& stream() const { return *input_->streams[streamIndex_]; }
  const PacketIndex& index() const { return index_; }

  // Looks through the file and decodes its first frame; the index then begins with that. Before all others.
  void begin(const std::function<void()>& goesOn);

  struct Decoded {
    const AVFrame* frame;  // until the next call
    bool isDamaged;        // it could not be decoded, or not whole
  };
  // The frame there; where nothing could be decoded, or the stream only says that nothing changes, the one before.
  // Throws Failure when there is none.
  Decoded frame(std::size_t place);

 private:
  struct Placed {
    AvFrame frame;
    std::int64_t place = -1;
    bool isDamaged = false;
  };

  void openCodec();
  void reopen();
  void rewind();
  bool seekTo(const KeyPacket& key);
  bool findPacket(const KeyPacket& key);
  void forget();
  bool decodeNext();
  bool receiveNext();
  void sendNext();
  bool readPacket();
  std::int64_t placeOf(const AVFrame& frame);
  bool isNear(std::int64_t place) const;
  bool decodeUpTo(std::int64_t place);
  bool startsWith(const KeyPacket& key);
  bool seekAndDecode(std::int64_t place);
  std::int64_t firstPlace();

  std::string path_;
  AvInput input_;
  int streamIndex_;
  AvCodec codec_;
  PacketIndex index_;
  AvPacket packet_;
  bool isPacketHeld_ = false;  // to be sent to the codec
  bool isDrained_ = false;     // nothing is left to be sent
  bool hasErrors_ = false;     // since the last frame
  int errors_ = 0;             // one after another
  std::int64_t counted_ = 0;   // frames since the start
  Placed last_;                // what was decoded last, up to the wanted place
  Placed next_;                // and one beyond it, where that was decoded
};

}  // namespace host
