// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/AxisSampling.h"

#include <algorithm>
#include <cmath>

namespace host {

AxisSampling::AxisSampling(int first, int count, int placed, double extent, std::uint32_t pixels) {
  constexpr double slack = 1e-7;  // of a pixel: what rounding makes of edges that coincide
  const double step = extent / placed;
  first_.reserve(static_cast<std::size_t>(count));
  offset_.reserve(static_cast<std::size_t>(count) + 1);
  for (int i = 0; i < count; ++i) {
    const double begin = (first + i) * step;
    const double end = begin + step;
    const double last = pixels - 1;
    const auto from = static_cast<std::uint32_t>(std::clamp(std::floor(begin + slack), 0.0, last));
    const auto to = static_cast<std::uint32_t>(std::clamp(std::ceil(end - slack) - 1, static_cast<double>(from), last));
    first_.push_back(from);
    offset_.push_back(static_cast<std::uint32_t>(weights_.size()));
    double sum = 0;
    for (std::uint32_t p = from; p <= to; ++p) {
      sum += std::max(0.0, std::min(end, p + 1.0) - std::max(begin, static_cast<double>(p)));
    }
    for (std::uint32_t p = from; p <= to; ++p) {
      const double part = std::min(end, p + 1.0) - std::max(begin, static_cast<double>(p));
      weights_.push_back(from == to ? 1.0f : static_cast<float>(std::max(0.0, part) / sum));
    }
    end_ = to + 1;
  }
  offset_.push_back(static_cast<std::uint32_t>(weights_.size()));
}

AxisSampling::Taps AxisSampling::taps(int device) const {
  const auto i = static_cast<std::size_t>(device);
  return {first_[i], offset_[i + 1] - offset_[i], weights_.data() + offset_[i]};
}

}  // namespace host
