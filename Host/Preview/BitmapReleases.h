// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Pixels/Bitmaps.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace host {

// Gives large bitmaps back that processes share, on a thread of its own: the kernel takes a tenth of a second for the
// pages of half a gigabyte, which nobody who shows pictures can wait for.
class BitmapReleases : public std::enable_shared_from_this<BitmapReleases> {
 public:
  // The one of the process, so that those who close a window wait for none of it; the end of the program does.
  static std::shared_ptr<BitmapReleases> shared();
  ~BitmapReleases();  // when all is given back
  BitmapReleases(const BitmapReleases&) = delete;
  BitmapReleases& operator=(const BitmapReleases&) = delete;

  // A bitmap that nobody else has: where it is large, one of the same pixels that is given back here.
  BitmapRef adopted(BitmapRef bitmap);

 private:
  BitmapReleases();
  void run();
  void release(BitmapRef bitmap);

  std::mutex mutex_;
  std::condition_variable changed_;
  std::vector<BitmapRef> released_;
  bool isEnding_ = false;
  std::thread thread_;
};

}  // namespace host
