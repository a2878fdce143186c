// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <vector>

namespace host {

// How device pixels in a row see the pixels of a picture that lies under them, along one axis: each shows the mean of
// what it covers. At whole zooms that is one pixel each.
class AxisSampling {
 public:
  // `count` device pixels from `first` on, of `placed` that the picture covers; `extent` is how many of the `pixels`
  // the picture has they cover, which is less than all where the last one is cut.
  AxisSampling(int first, int count, int placed, double extent, std::uint32_t pixels);

  struct Taps {
    std::uint32_t first = 0;         // of the picture's pixels
    std::uint32_t count = 0;         // 1 or more
    const float* weights = nullptr;  // of sum 1
  };
  Taps taps(int device) const;
  int count() const { return static_cast<int>(first_.size()); }
  bool isOneToOne() const { return weights_.size() == first_.size(); }  // one pixel under each

  // The range of pixels that are seen.
  std::uint32_t begin() const { return first_.empty() ? 0 : first_.front(); }
  std::uint32_t end() const { return end_; }

 private:
  std::vector<std::uint32_t> first_;
  std::vector<std::uint32_t> offset_;  // of its weights; one more than pixels
  std::vector<float> weights_;
  std::uint32_t end_ = 0;
};

}  // namespace host
