// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Playback/FrameSpans.h"
#include "Host/Playback/PictureMemory.h"
#include "Host/Playback/PlayOrder.h"
#include "Host/Preview/PreviewPicture.h"
#include "TarnCore/TCHash128.h"

#include <cstdint>
#include <list>
#include <map>
#include <optional>
#include <vector>

namespace host {

// Pictures of frames in memory, by the parameters that they were rendered with, up to a budget. Where that is exceeded,
// pictures of other parameters than the present ones are thrown away first, those of the parameters that were not in
// use for longest before others; then the frames that are played last from the playhead on. The one that is shown, that
// of the playhead and the next one stay whatever the budget is.
class FrameCache {
 public:
  FrameCache();
  static std::uint64_t defaultBudget();  // bytes: a quarter of the machine's memory
  // Of all parameters together, however small they are: a picture takes up to three mappings and descriptors, of which
  // a process has so many only.
  static std::size_t mostPictures();

  std::uint64_t budget() const { return budget_; }
  void setBudget(std::uint64_t bytes);
  std::uint64_t bytes() const { return memory_.bytes(); }

  // What those parameters have rendered is what the cache shows from now on.
  void setFingerprint(const VortoHash128& fingerprint);
  const VortoHash128& fingerprint() const { return present().fingerprint; }
  void setPlayhead(const PlayOrder& order, const PlayPlace& place, std::optional<std::uint64_t> shown);

  // Takes a picture in, in the place of one of the same frame and parameters. False where there was no room for it.
  bool put(std::uint64_t frame, const VortoHash128& fingerprint, const PreviewPictureRef& picture);
  void clear();

  // Of the present parameters:
  PreviewPictureRef find(std::uint64_t frame) const;  // null when it is not there
  std::optional<FrameSpan> spanAround(std::uint64_t frame) const { return present().spans.around(frame); }
  std::vector<FrameSpan> spans() const { return present().spans.all(); }
  std::size_t count() const { return present().pictures.size(); }
  std::uint64_t framesThatFit() const;  // into the budget, going by those that are there; 0 when there are none

 private:
  struct Generation {
    VortoHash128 fingerprint;
    std::map<std::uint64_t, PreviewPictureRef> pictures;
    FrameSpans spans;
    PictureMemory memory;
  };

  // The present one is the first, then those that were in use last.
  Generation& present() { return generations_.front(); }
  const Generation& present() const { return generations_.front(); }
  std::list<Generation>::iterator generationOf(const VortoHash128& fingerprint);
  void remove(Generation& generation, std::uint64_t frame);
  bool isNeeded(std::uint64_t frame) const;
  std::optional<std::uint64_t> leastWanted(const Generation& generation) const;
  void makeRoom();

  std::list<Generation> generations_;
  PictureMemory memory_;
  std::size_t pictures_ = 0;  // of all generations
  std::uint64_t budget_;
  PlayOrder order_;
  PlayPlace place_;
  std::optional<std::uint64_t> shown_;
};

}  // namespace host
