// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipReader.h"
#include "Host/Jobs/ResultOutput.h"
#include "Host/Rendering/HeldPicture.h"

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace vorto::python {

// What starts a process belongs to the thread that made it: the process ends with that thread. Throws Error on another.
class OwnThread {
 public:
  void check(const std::string& what) const;

 private:
  const std::thread::id thread_ = std::this_thread::get_id();
};

// The frames of a clip, in any order, one after another at best: the next is decoded while the caller does other
// things. Throws host::Failure naming the file.
class ClipFile {
 public:
  ClipFile(const std::string& path, std::chrono::seconds patience);

  const host::ClipInfo& info() const { return *info_; }
  const std::string& path() const { return path_; }
  host::HeldPicture frame(std::uint32_t index);  // below info().times.size(); says when it is damaged

 private:
  void want(std::uint32_t index);

  const std::string path_;
  host::FrameSlots slots_;
  host::ClipReader reader_;
  std::shared_ptr<const host::ClipInfo> info_;
  std::deque<std::uint32_t> wanted_;
};

// When the frames of a clip that is written are shown.
struct ClipTimes {
  host::Rational rate{25, 1};
  host::Rational timeBase{1, 25};
  std::vector<std::int64_t> times;  // of each frame in units of the base; empty: one after another, a unit each
  std::int64_t end = 0;             // of the last of these
};

// A clip that is written as `vorto render` writes it. The old file stays until finish() has succeeded; what is
// destroyed before leaves nothing. Throws host::Failure.
class ClipFileWriter {
 public:
  ClipFileWriter(const host::ClipTarget& target, ClipTimes times, const host::HeldOutput& output,
                 std::chrono::seconds patience);
  void write(const host::HeldPicture& frame);
  void finish();
  std::uint64_t count() const { return count_; }

 private:
  const ClipTimes times_;
  host::JobOutput output_;
  host::FrameSlots slots_;
  host::ResultOutput results_;
  host::HeldPictureOutput colors_;
  const std::optional<host::Channels> channels_;  // told
  std::uint64_t count_ = 0;
  std::uint64_t clipped_ = 0;
};

}  // namespace vorto::python
