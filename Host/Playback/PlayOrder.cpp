// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/PlayOrder.h"

#include <algorithm>

namespace host {

std::optional<PlayPlace> PlayOrder::next(const PlayPlace& from) const {
  if (!contains(from.frame)) return begin(from.isBackward);
  const std::uint64_t left = from.isBackward ? from.frame - first : last - from.frame;
  if (left > 0) {
    const std::uint64_t way = std::min(left, stride);
    return PlayPlace{from.isBackward ? from.frame - way : from.frame + way, from.isBackward};
  }
  if (looping == Looping::Off) return std::nullopt;
  if (looping == Looping::Around) return begin(from.isBackward);
  if (first == last) return from;
  return next({from.frame, !from.isBackward});
}

std::uint64_t PlayOrder::distance(const PlayPlace& from, std::uint64_t frame) const {
  const std::uint64_t most = 2 * (last - first) + 2;
  if (frame < first) return most + (first - frame);
  if (frame > last) return most + (frame - last);
  const PlayPlace start = contains(from.frame) ? from : begin(from.isBackward);
  // Seen in a mirror playing goes forward.
  const std::uint64_t length = last - first;
  const std::uint64_t at = start.isBackward ? last - start.frame : start.frame - first;
  const std::uint64_t wanted = start.isBackward ? last - frame : frame - first;
  if (wanted >= at) return wanted - at;
  return looping == Looping::BackAndForth ? (length - at) + (length - wanted) : (length - at) + 1 + wanted;
}

std::uint64_t PlayOrder::steps() const {
  const std::uint64_t once = (last - first + stride - 1) / stride + 1;
  return looping == Looping::BackAndForth ? 2 * once : once;
}

}  // namespace host
