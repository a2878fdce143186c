// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/Support/Arithmetic.h"
#include "Effects/Support/GradientTable.h"

#include <array>
#include <cstddef>
#include <vector>

namespace vorto::effects {

// A gradient's luma (ITU-R BT.709 weights, opacity ignored) at each of its kGradientSteps positions, and its range in
// each block of them.
struct WipeLumas {
  explicit WipeLumas(const std::vector<GradientEntry<float>>& gradient);

  static constexpr std::size_t kBlocks = 64;
  static constexpr std::size_t kBlockSteps = kGradientSteps / kBlocks;

  struct Range {
    double least, most;
  };
  std::vector<double> lumas;
  std::array<Range, kBlocks> blocks;
};

// How much of the second image shows at each of the positions.
//
// The luma says when a place changes: black first, white last. An edge runs from 0 at time 0 to 1 + softness at time 1;
// a place of luma m shows (edge - m) / softness of the second image, within 0 and 1. Without softness it shows the
// second image once m is below the edge.
template <class Channel>
class WipeWeights {
 public:
  void set(const WipeLumas& lumas, double time, double softness);

  // Neighbouring positions, from `first` up to the next run, that show the first image alone, or the second, or mix.
  enum class Kind { First, Second, Mixed };
  struct Run {
    std::size_t first;
    Kind kind;
  };
  const std::vector<Run>& runs() const { return runs_; }
  // kGradientSteps weights, of which those in runs that do not mix are unset.
  const MixWeight<Channel>* weights() const { return weights_.data(); }
  // Sets those as well.
  const MixWeight<Channel>* everyWeight();

 private:
  std::vector<MixWeight<Channel>> weights_;
  std::vector<Run> runs_;
};

}  // namespace vorto::effects
