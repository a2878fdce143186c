// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Preview/BitmapReleases.h"
#include "Host/Preview/PreviewMessages.h"
#include "Host/Preview/PreviewOrder.h"
#include "Host/Preview/PreviewReport.h"
#include "Host/Processes/ChildProcess.h"

#include <deque>
#include <memory>
#include <optional>

namespace host {

// A process that renders previews, as the one that started it sees it: nothing here waits for it, but the constructor
// until it runs and the destructor until it has ended. Bitmaps that it gives are memory that both have mapped; they
// live on when it has ended.
class PreviewProcess {
 public:
  // Bitmaps are given back through `releases`. Throws Failure when it cannot be started.
  PreviewProcess(const PreviewHello& hello, std::shared_ptr<BitmapReleases> releases);

  // What it does not take at once is kept. One that takes nothing any more is killed.
  void send(const PreviewOrder& order);
  bool wantsToWrite() const { return !unsent_.empty(); }
  void write();  // what was not taken yet, once descriptor() can be written

  int descriptor() const { return process_.socket().descriptor(); }
  // What it has reported and was not returned yet. After PreviewDied, which also comes when it sends what nobody can
  // believe, there is nothing more.
  std::optional<PreviewReport> next();

  void kill();  // at once; next() gives PreviewDied
  bool hasEnded() { return process_.hasEnded(std::chrono::milliseconds(0)); }
  pid_t id() const { return process_.id(); }

 private:
  std::optional<PreviewReport> died();
  void complete(PreviewPicture* picture, const PictureParts& parts);

  std::shared_ptr<BitmapReleases> releases_;
  MessageSocket entries_;
  ChildProcess process_;
  std::deque<Bytes> unsent_;
  std::size_t unsentBytes_ = 0;
  std::size_t written_ = 0;  // of the first
  bool isDead_ = false;
  // What the last picture came with, which others share.
  BitmapRef before_;
  BitmapRef fileBefore_;
  std::shared_ptr<const PictureInfo> fileInfo_;
};

}  // namespace host
