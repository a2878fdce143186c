// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/DisplayThread.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace host {
namespace {

// The pyramids of the pictures that were shown last, so that before and the picture that a quick one stands for stay.
class Pyramids {
 public:
  explicit Pyramids(const std::atomic<bool>& ends) : ends_(ends) {}
  PicturePyramid& of(const BitmapRef& bitmap) {
    const auto found = std::find_if(pyramids_.begin(), pyramids_.end(),
                                    [&](const auto& pyramid) { return pyramid->bitmap() == bitmap; });
    if (found != pyramids_.end()) {
      std::rotate(pyramids_.begin(), found, found + 1);
    } else {
      pyramids_.insert(pyramids_.begin(), std::make_unique<PicturePyramid>(bitmap, &ends_));
    }
    if (pyramids_.size() > kMost) pyramids_.pop_back();
    return *pyramids_.front();
  }

 private:
  static constexpr std::size_t kMost = 3;
  const std::atomic<bool>& ends_;
  std::vector<std::unique_ptr<PicturePyramid>> pyramids_;
};

// What the thread keeps from one order to the next.
class Workshop {
 public:
  explicit Workshop(const std::atomic<bool>& ends) : pyramids_(ends) {}
  void make(DisplayFrame& frame) {
    const DisplayOrder& order = frame.order;
    try {
      const ColorWay colors = colors_.way(order.picture->space, order.colors);
      frame.shownAs = colors_.text();
      frame.reason = colors_.reason();
      if (order.wantsResult) frame.result = image(order, order.picture->result, colors);
      if (order.wantsBefore) frame.before = image(order, order.picture->before, colors);
    } catch (const std::exception& error) {
      frame.failure = error.what();
    }
  }

  std::vector<DisplayView> views() { return colors_.views(); }

 private:
  QImage image(const DisplayOrder& order, const BitmapRef& bitmap, const ColorWay& colors) {
    if (!bitmap) return {};
    return displayImage(pyramids_.of(bitmap), order.place, order.ground, order.channels, colors);
  }

  DisplayColors colors_;
  Pyramids pyramids_;
};

}  // namespace

DisplayThread::DisplayThread(std::function<void()> finished)
    : finished_(std::move(finished)), thread_([this] { run(); }) {}

DisplayThread::~DisplayThread() {
  {
    const std::lock_guard lock(mutex_);
    ends_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void DisplayThread::order(DisplayOrder order) {
  auto next = std::make_unique<DisplayOrder>(std::move(order));
  {
    const std::lock_guard lock(mutex_);
    next_.swap(next);
  }
  changed_.notify_all();
}

std::unique_ptr<DisplayFrame> DisplayThread::take() {
  const std::lock_guard lock(mutex_);
  return std::move(frame_);
}

std::vector<DisplayView> DisplayThread::views() {
  const std::lock_guard lock(mutex_);
  return views_;
}

void DisplayThread::waitUntilIdle() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return !next_ && !isWorking_; });
}

void DisplayThread::run() {
  Workshop workshop(ends_);
  for (bool isFirst = true;; isFirst = false) {
    auto frame = std::make_unique<DisplayFrame>();
    {
      std::unique_lock lock(mutex_);
      isWorking_ = false;
      changed_.notify_all();
      changed_.wait(lock, [this] { return next_ || ends_; });
      if (ends_) return;
      frame->order = std::move(*next_);
      next_.reset();
      isWorking_ = true;
    }
    try {
      workshop.make(*frame);
    } catch (const DisplayEnded&) {
      return;
    }
    {
      const std::lock_guard lock(mutex_);
      frame_.swap(frame);
    }
    finished_();
    if (!isFirst) continue;
    std::vector<DisplayView> views = workshop.views();
    if (views.empty()) continue;
    {
      const std::lock_guard lock(mutex_);
      views_ = std::move(views);
    }
    finished_();
  }
}

}  // namespace host
