// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <optional>

namespace host {

enum class Looping { Off, Around, BackAndForth };

// A frame, and which way playing goes on from it.
struct PlayPlace {
  std::uint64_t frame = 0;
  bool isBackward = false;
  bool operator==(const PlayPlace&) const = default;
};

// Which frame is played after which: from `first` to `last`, both counted, every `stride`th and the last one.
struct PlayOrder {
  std::uint64_t first = 0;
  std::uint64_t last = 0;
  std::uint64_t stride = 1;
  Looping looping = Looping::Around;

  bool contains(std::uint64_t frame) const { return frame >= first && frame <= last; }
  // Nothing at the end where playing does not go round. From outside it goes to where playing begins.
  std::optional<PlayPlace> next(const PlayPlace& from) const;
  PlayPlace begin(bool isBackward) const { return {isBackward ? last : first, isBackward}; }
  // How many frames lie on the way until `frame` is played next (where playing ends, as if it began again then). Frames
  // that are not played come after all others, those farthest from the played ones last.
  std::uint64_t distance(const PlayPlace& from, std::uint64_t frame) const;
  // Steps after which everything that is played was there at least once.
  std::uint64_t steps() const;
};

}  // namespace host
