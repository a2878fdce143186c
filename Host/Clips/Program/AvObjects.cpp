// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/AvObjects.h"

#include <new>

namespace host {

AvFrame newFrame() {
  AvFrame frame(av_frame_alloc());
  if (!frame) throw std::bad_alloc();
  return frame;
}

AvPacket newPacket() {
  AvPacket packet(av_packet_alloc());
  if (!packet) throw std::bad_alloc();
  return packet;
}

}  // namespace host
