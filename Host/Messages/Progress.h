// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>

namespace host {

// A bar on standard error while long work goes on, when that is a terminal; nothing otherwise. Erased when it ends.
class Progress {
 public:
  explicit Progress(std::uint64_t steps);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  void finished(std::uint64_t stepsSoFar);

 private:
  const std::uint64_t steps_;
  const bool shown_;
};

}  // namespace host
