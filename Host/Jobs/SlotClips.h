// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipInfo.h"
#include "Host/Processes/FrameSlots.h"
#include "Host/Rendering/ClipFrames.h"

#include <memory>
#include <string>
#include <vector>

namespace host {

// The frame of a clip that lies in a slot, copied. Throws Failure, naming the file, where what lies there is none.
FilePicture pictureInSlot(const std::shared_ptr<const ClipInfo>& clip, const std::string& path, std::uint32_t frame,
                          FrameSlots& slots, std::size_t slot);

// The clips of a worker: their frames lie in slots, which its tasks name.
class SlotClips : public ClipFrames {
 public:
  // By input; null where one is no clip. `slots` outlives it.
  SlotClips(std::vector<std::shared_ptr<const ClipInfo>> infos, std::vector<std::string> paths, FrameSlots& slots)
      : infos_(std::move(infos)), paths_(std::move(paths)), slots_(slots) {}

  // Where the frames of the present task lie, by input.
  void lieIn(std::vector<std::uint32_t> places) { places_ = std::move(places); }

  const ClipInfo& info(std::size_t input) override { return *infos_.at(input); }
  FilePicture frame(std::size_t input, std::uint32_t frame) override;

 private:
  std::vector<std::shared_ptr<const ClipInfo>> infos_;
  std::vector<std::string> paths_;
  FrameSlots& slots_;
  std::vector<std::uint32_t> places_;
};

}  // namespace host
