// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Preview/PreviewPicture.h"
#include "Host/Viewer/DisplayColors.h"
#include "Host/Viewer/DisplayRendering.h"

#include <atomic>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace host {

// What is to be made for the screen.
struct DisplayOrder {
  PreviewPictureRef picture;
  DisplayPlace place;
  DisplayGround ground;
  ChannelView channels = ChannelView::Color;
  ColorLook colors;
  bool wantsResult = true;
  bool wantsBefore = false;
};

struct DisplayFrame {
  DisplayOrder order;
  QImage result, before;  // null where they were not wanted, or the picture has none
  std::string shownAs;    // as DisplayColors has it
  std::string reason;
  std::string failure;  // why there is no image; empty when all went well
};

// Makes the screen's pixels on a thread of its own, the newest order first: those that were overtaken before their turn
// are dropped, one that has begun is finished.
class DisplayThread {
 public:
  // `finished` is called on the thread after each frame, which take() then returns, and when the views are known.
  explicit DisplayThread(std::function<void()> finished);
  ~DisplayThread();  // waits for the thread, which leaves the row that it is at
  DisplayThread(const DisplayThread&) = delete;
  DisplayThread& operator=(const DisplayThread&) = delete;

  void order(DisplayOrder order);
  // The newest frame, once; null when there is no new one. Any thread.
  std::unique_ptr<DisplayFrame> take();
  void waitUntilIdle();
  // Of the user's configuration, which is read after the first frame.
  std::vector<DisplayView> views();

 private:
  void run();

  const std::function<void()> finished_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::unique_ptr<DisplayOrder> next_;
  std::unique_ptr<DisplayFrame> frame_;
  std::vector<DisplayView> views_;
  bool isWorking_ = false;
  std::atomic<bool> ends_ = false;
  std::thread thread_;
};

}  // namespace host
