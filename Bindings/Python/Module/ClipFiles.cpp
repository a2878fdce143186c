// SPDX-License-Identifier: BSD-3-Clause
#include "ClipFiles.h"

#include "Errors.h"

#include "Host/Files/OutputFile.h"
#include "Host/Jobs/FrameOutput.h"
#include "Host/Jobs/SlotClips.h"
#include "Host/Messages/Failure.h"
#include "Host/Pixels/Alpha.h"

#include <utility>

namespace vorto::python {
namespace {

constexpr std::size_t kReadSlots = 2;   // a frame, and the next
constexpr std::size_t kWriteSlots = 3;  // two that are encoded, and the next

host::JobOutput jobOutputOf(const host::ClipTarget& target, std::chrono::seconds patience) {
  host::JobOutput output;
  output.clip = target;
  output.patience = patience;
  const host::ClipContainer* container = host::clipContainerNamed(target.container);
  if (!container) {
    throw host::Failure(host::ExitCode::Usage, "cannot write " + target.path +
                                                   ": it is called like no clip (mp4, mov, "
                                                   "mkv, webm, avi)");
  }
  host::checkClipSettings(host::clipCodecIn(*container, target.settings.codec), target.settings);
  output.clipHoldsAlpha = host::holdsAlpha(*container, target.settings);
  host::checkOutput(target.path);
  host::ClipWriter::checkAudio(target, patience);
  return output;
}

}  // namespace

void OwnThread::check(const std::string& what) const {
  if (std::this_thread::get_id() == thread_) return;
  throw Error(what + " belongs to another thread: open it on the one that uses it");
}

ClipFile::ClipFile(const std::string& path, std::chrono::seconds patience)
    : path_(path),
      slots_(kReadSlots),
      reader_(path, slots_, patience),
      info_(std::make_shared<const host::ClipInfo>(reader_.info())) {
  if (!info_->remark.empty()) host::remark(path + ": " + info_->remark);
}

void ClipFile::want(std::uint32_t index) {
  wanted_.push_back(index);
  reader_.want(index, index % kReadSlots);
}

host::HeldPicture ClipFile::frame(std::uint32_t index) {
  const bool isNext = !wanted_.empty() && wanted_.front() == index;
  while (!wanted_.empty() && wanted_.front() != index) {
    wanted_.pop_front();
    reader_.frame();
  }
  if (wanted_.empty()) want(index);
  wanted_.pop_front();
  const host::ClipReader::Frame frame = reader_.frame();
  if (index + 1 < info_->times.size() && (isNext || index == 0)) want(index + 1);
  if (frame.isDamaged) {
    host::remark(path_ + ": frame " + std::to_string(index) +
                     " is damaged: what could be decoded of it is shown, or the "
                     "frame before",
                 path_ + ": damaged");
  }
  return host::heldPicture(host::pictureInSlot(info_, path_, index, slots_, frame.slot), path_, true);
}

ClipFileWriter::ClipFileWriter(const host::ClipTarget& target, ClipTimes times, const host::HeldOutput& output,
                               std::chrono::seconds patience)
    : times_(std::move(times)),
      output_(jobOutputOf(target, patience)),
      slots_(kWriteSlots),
      results_(output_, slots_),
      colors_(output),
      channels_(output.channels) {}

void ClipFileWriter::write(const host::HeldPicture& held) {
  if (!times_.times.empty() && count_ >= times_.times.size()) {
    throw Error("cannot write " + output_.clip.path + ": the clip that it is like has " +
                std::to_string(times_.times.size()) + " frames: give a rate instead");
  }
  std::optional<host::Channels> channels = count_ == 0 ? channels_ : results_.channels();
  // Pixels that nobody says more of have alpha where they are not opaque.
  if (!channels && !held.info && host::isOpaque(*held.bitmap)) channels = host::Channels::RGB;
  const host::OutputPicture picture = colors_.picture(held, channels);
  std::optional<std::size_t> slot;
  while (!(slot = results_.freeSlot())) results_.takeBack();
  host::FrameTask task;
  task.frame.index = count_;
  task.frame.number = static_cast<std::uint32_t>(count_);
  task.frame.shown = times_.times.empty() ? static_cast<std::int64_t>(count_) : times_.times[count_] - times_.times[0];
  task.outputSlot = static_cast<std::uint32_t>(*slot);
  task.isFirst = count_ == 0;
  host::StoredFrame stored;
  clipped_ += host::leaveFrame(picture, task, output_, slots_, &stored);
  results_.use(task.frame, stored, *slot);
  ++count_;
}

void ClipFileWriter::finish() {
  if (count_ == 0) throw Error("cannot write " + output_.clip.path + ": no frame was written");
  const bool isWhole = times_.times.empty() || count_ == times_.times.size();
  const std::int64_t next = times_.times.empty() ? static_cast<std::int64_t>(count_)
                                                 : (isWhole ? times_.end : times_.times[count_]) - times_.times[0];
  results_.finish(next);
  host::tellOfClipping(clipped_, colors_.clippedSpace());
}

}  // namespace vorto::python
