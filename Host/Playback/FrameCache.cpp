// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/FrameCache.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>

namespace host {

FrameCache::FrameCache() : generations_(1), budget_(defaultBudget()) {}

std::uint64_t FrameCache::defaultBudget() {
  const long pages = sysconf(_SC_PHYS_PAGES);
  const long pageSize = sysconf(_SC_PAGESIZE);
  if (pages <= 0 || pageSize <= 0) return std::uint64_t{1} << 30;
  return static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize) / 4;
}

std::size_t FrameCache::mostPictures() {
  constexpr std::size_t most = 16000;     // of 65530 mappings that processes usually have
  constexpr std::size_t forOthers = 256;  // descriptors
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return most;
  const auto descriptors = static_cast<std::size_t>(limit.rlim_cur);
  return std::min(most, std::max(descriptors, 2 * forOthers) / 3 - forOthers / 3);
}

void FrameCache::setBudget(std::uint64_t bytes) {
  budget_ = bytes;
  makeRoom();
}

std::list<FrameCache::Generation>::iterator FrameCache::generationOf(const VortoHash128& fingerprint) {
  return std::find_if(generations_.begin(), generations_.end(),
                      [&](const Generation& generation) { return generation.fingerprint == fingerprint; });
}

void FrameCache::setFingerprint(const VortoHash128& fingerprint) {
  if (fingerprint == this->fingerprint()) return;
  const auto found = generationOf(fingerprint);
  if (found != generations_.end()) {
    generations_.splice(generations_.begin(), generations_, found);
  } else {
    generations_.emplace_front().fingerprint = fingerprint;
  }
  const auto former = std::next(generations_.begin());
  if (former->pictures.empty()) generations_.erase(former);
}

void FrameCache::setPlayhead(const PlayOrder& order, const PlayPlace& place, std::optional<std::uint64_t> shown) {
  order_ = order;
  place_ = place;
  shown_ = shown;
}

bool FrameCache::put(std::uint64_t frame, const VortoHash128& fingerprint, const PreviewPictureRef& picture) {
  auto generation = generationOf(fingerprint);
  if (generation == generations_.end()) {
    // One that has passed by the time its frames arrive was in use just before the present one.
    generation = generations_.emplace(std::next(generations_.begin()));
    generation->fingerprint = fingerprint;
  }
  memory_.add(*picture);
  generation->memory.add(*picture);
  auto& place = generation->pictures[frame];
  ++pictures_;
  if (place) {
    --pictures_;
    memory_.remove(*place);
    generation->memory.remove(*place);
  }
  place = picture;
  generation->spans.add(frame);
  makeRoom();
  generation = generationOf(fingerprint);
  return generation != generations_.end() && generation->pictures.contains(frame);
}

void FrameCache::clear() {
  const VortoHash128 fingerprint = this->fingerprint();
  generations_.clear();
  generations_.emplace_front().fingerprint = fingerprint;
  memory_ = {};
  pictures_ = 0;
}

PreviewPictureRef FrameCache::find(std::uint64_t frame) const {
  const auto found = present().pictures.find(frame);
  return found == present().pictures.end() ? nullptr : found->second;
}

std::uint64_t FrameCache::framesThatFit() const {
  const Generation& generation = present();
  if (generation.memory.bytes() == 0) return 0;
  const double each = static_cast<double>(generation.memory.bytes()) / static_cast<double>(generation.pictures.size());
  return std::min<std::uint64_t>(mostPictures(), static_cast<std::uint64_t>(static_cast<double>(budget_) / each));
}

void FrameCache::remove(Generation& generation, std::uint64_t frame) {
  const auto found = generation.pictures.find(frame);
  memory_.remove(*found->second);
  generation.memory.remove(*found->second);
  generation.pictures.erase(found);
  --pictures_;
  generation.spans.remove(frame);
}

bool FrameCache::isNeeded(std::uint64_t frame) const {
  const auto next = order_.next(place_);
  return frame == shown_ || frame == place_.frame || (next && frame == next->frame);
}

// Along a playing order the distance grows steadily between the playhead and the ends of the range, so that the frame
// that is farthest is beside one of these or the first or last of all.
std::optional<std::uint64_t> FrameCache::leastWanted(const Generation& generation) const {
  const auto& pictures = generation.pictures;
  const bool isPresent = &generation == &present();
  std::optional<std::uint64_t> worst;
  std::uint64_t worstDistance = 0;
  const auto consider = [&](std::uint64_t frame) {
    if (isPresent && isNeeded(frame)) return;
    const std::uint64_t distance = order_.distance(place_, frame);
    if (worst && distance <= worstDistance) return;
    worst = frame;
    worstDistance = distance;
  };
  for (const std::uint64_t edge : {std::uint64_t{0}, order_.first, place_.frame, order_.last + 1, UINT64_MAX}) {
    const auto at = pictures.lower_bound(edge);
    auto after = at;
    for (int i = 0; i < 4 && after != pictures.end(); ++i) consider((after++)->first);
    auto before = at;
    for (int i = 0; i < 4 && before != pictures.begin(); ++i) consider((--before)->first);
  }
  return worst;
}

void FrameCache::makeRoom() {
  const std::size_t most = mostPictures();
  while (memory_.bytes() > budget_ || pictures_ > most) {
    Generation& oldest = generations_.back();
    const auto frame = leastWanted(oldest);
    if (!frame) return;
    remove(oldest, *frame);
    if (oldest.pictures.empty() && &oldest != &present()) generations_.pop_back();
  }
}

}  // namespace host
