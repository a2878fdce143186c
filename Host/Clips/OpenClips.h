// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipReader.h"

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace host {

// The inputs of a run that are clips, each read by a process of its own into slots of its own.
class OpenClips {
 public:
  explicit OpenClips(std::size_t inputs) : clips_(inputs) {}

  // Throws Failure naming the file.
  void open(std::size_t input, const std::string& path, std::size_t slots, std::chrono::seconds patience);

  std::size_t inputs() const { return clips_.size(); }
  ClipReader* reader(std::size_t input) { return clips_[input] ? &clips_[input]->reader : nullptr; }
  FrameSlots* slots(std::size_t input) { return clips_[input] ? &clips_[input]->slots : nullptr; }
  std::vector<const ClipInfo*> infos() const;  // by input; null where one is no clip

 private:
  struct Clip {
    Clip(const std::string& path, std::size_t count, std::chrono::seconds patience)
        : slots(count), reader(path, slots, patience) {}
    FrameSlots slots;
    ClipReader reader;
  };
  std::vector<std::unique_ptr<Clip>> clips_;
};

}  // namespace host
