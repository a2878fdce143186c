// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Jobs/ResultOutput.h"

#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"

#include <string>

namespace host {
namespace {

std::string sizeText(const FrameKind& kind) {
  return std::to_string(kind.width) + " x " + std::to_string(kind.height);
}

}  // namespace

ResultOutput::ResultOutput(const JobOutput& output, FrameSlots& slots) : output_(output), slots_(slots) {
  for (std::size_t slot = slots.count(); slot > 0; --slot) free_.push_back(slot - 1);
}

std::optional<Channels> ResultOutput::channels() const {
  return writer_ ? std::optional(kind_.channels) : std::nullopt;
}

std::optional<std::size_t> ResultOutput::freeSlot() {
  if (free_.empty()) return std::nullopt;
  const std::size_t slot = free_.back();
  free_.pop_back();
  return slot;
}

void ResultOutput::giveBack(std::size_t slot) {
  free_.push_back(slot);
}

void ResultOutput::use(const PlannedFrame& frame, const StoredFrame& stored, std::size_t slot) {
  if (!usesSlots()) return;
  if (!output_.isClip()) {
    output_.sink->print(stored.stream, slots_.bytes(slot));
    return giveBack(slot);
  }
  const FrameKind kind = slots_.kind(slot);
  if (writer_) {
    checkKind(frame, kind);
  } else {
    beginClip(stored, kind);
  }
  writer_->write(slot, frame.shown);
  ++inClip_;
}

void ResultOutput::beginClip(const StoredFrame& stored, const FrameKind& kind) {
  ClipTarget target = output_.clip;
  target.kind = kind;
  target.bits = stored.depth == Depth::Bits8 ? 8 : 16;
  target.metadata = stored.metadata;
  if (!output_.keepsTimeCode && target.metadata.timeCode) {
    target.metadata.timeCode.reset();
    if (output_.isVerbose) remark(target.path + ": the time code is left out: it counts frames of another rate");
  }
  writer_.emplace(target, slots_, output_.patience);
  kind_ = kind;
}

void ResultOutput::checkKind(const PlannedFrame& frame, const FrameKind& kind) const {
  if (kind == kind_) return;
  const bool isOtherSize = kind.width != kind_.width || kind.height != kind_.height;
  throw Failure(ExitCode::Output,
                "cannot write " + output_.clip.path + ": frame " + std::to_string(frame.number) +
                    (isOtherSize ? " has " + sizeText(kind) + " pixels, the first one " + sizeText(kind_)
                                 : " has another depth than the first one") +
                    ", and the frames of a clip have one " +
                    (isOtherSize ? "size: --size gives it" : "depth: --depth gives it"));
}

void ResultOutput::takeBack() {
  free_.push_back(writer_->written());
  --inClip_;
}

void ResultOutput::finish(std::int64_t end) {
  if (writer_) writer_->finish(end);
}

}  // namespace host
