// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipInfo.h"
#include "Host/Processes/ChildProcess.h"
#include "Host/Processes/FrameSlots.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <string>

namespace host {

// Whether a file is a clip and none of the pictures that the host reads itself: by its first bytes, and for kinds that
// these do not tell, or where it cannot be read, by its extension.
bool isClip(const std::string& path);

// A clip that a process of its own decodes (vorto-clips), so that a fault in a codec ends that one and not the host.
// Decoding goes on while the caller does other things.
class ClipReader {
 public:
  // Frames go into slots of `slots`, which outlive the reader. `patience`: how long one frame may take to be decoded,
  // and how long the file may be looked through without going on.
  // Throws Failure naming the file when it is no clip that can be read.
  ClipReader(const std::string& path, FrameSlots& slots, std::chrono::seconds patience);

  const std::string& path() const { return path_; }
  const ClipInfo& info() const { return info_; }

  // Wants a frame by its place in info().times in a slot. Frames come in the order in which they are wanted; ascending
  // ones are cheap, others seek.
  void want(std::uint32_t frame, std::size_t slot);

  struct Frame {
    std::uint32_t frame = 0;
    std::size_t slot = 0;
    bool isDamaged = false;  // what could be decoded of it, or else the one before it
  };
  // Readable when frame() has something to say at once.
  int descriptor() const { return process_.socket().descriptor(); }
  // The next one that was wanted: waits for it. Throws Failure naming file and frame when it cannot be decoded, when
  // the process died of it, and after `patience`.
  Frame frame();

 private:
  Bytes received(const std::string& what);

  std::string path_;
  FrameSlots* slots_;
  std::chrono::seconds patience_;
  mutable ChildProcess process_;
  ClipInfo info_;
  std::deque<Frame> wanted_;
};

}  // namespace host
