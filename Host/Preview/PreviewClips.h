// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/OpenClips.h"
#include "Host/Rendering/ClipFrames.h"
#include "Host/Rendering/Inputs.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace host {

// The clips among inputs, for frames in any order. While frames are taken one after another the next ones are decoded
// meanwhile.
class PreviewClips : public ClipFrames {
 public:
  explicit PreviewClips(const Inputs& inputs);  // throws Failure for one that cannot be opened

  std::vector<const ClipInfo*> infos() const;  // by input; null where one is no clip

  const ClipInfo& info(std::size_t input) override { return *clips_.at(input)->info; }
  FilePicture frame(std::size_t input, std::uint32_t frame) override;

 private:
  struct Slot {
    enum class Use { Free, Awaited, There } use = Use::Free;
    std::uint32_t frame = 0;
    bool isDamaged = false;
  };
  struct Clip {
    std::string path;
    std::unique_ptr<OpenClips> open;  // this one alone; null after it failed
    std::shared_ptr<const ClipInfo> info;
    std::vector<Slot> slots;
    std::uint32_t last = 0;  // that was taken
  };
  static void open(Clip& clip);
  static ClipReader& reader(Clip& clip) { return *clip.open->reader(0); }
  static std::size_t take(Clip& clip);
  static std::size_t placeOf(Clip& clip, std::uint32_t frame);
  static std::size_t freePlace(Clip& clip);
  static void wantNext(Clip& clip, std::uint32_t frame);

  std::vector<std::unique_ptr<Clip>> clips_;  // by input
};

}  // namespace host
