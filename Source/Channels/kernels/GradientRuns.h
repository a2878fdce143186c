// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/kernels/GradientDefinition.h"

#include <cstddef>

// Splits the positions of a table, which ascend, into runs that lie in one segment of a folder.
namespace vorto::kernels {

struct GradientRun {
  enum class Rule {
    unwritten,   // no entries, or an unknown interpolation kind
    constant,    // the left entry's value
    linear,      // between the two entries
    smooth,      // likewise
    definition,  // values or positions out of the vector kernels' reach: leave it to evaluateGradient
  };
  Rule rule;
  const GradientEntry* left;
  const GradientEntry* right;
  std::uint32_t end;  // index of the first position beyond the run
};

class GradientRuns {
 public:
  // For a table of `count` positions, at least 2.
  GradientRuns(GradientEntries entries, std::span<const GradientComponent> components, std::uint32_t count);

  // The run that holds the position with this index; indices must not descend from call to call.
  const GradientRun& runAt(std::uint32_t index);

 private:
  void advance();
  std::uint32_t firstIndexBeyond(double position) const;
  GradientRun::Rule ruleOf(const GradientEntry& left, const GradientEntry* right) const;
  bool isTame(const GradientEntry& entry) const;

  GradientEntries _entries;
  std::span<const GradientComponent> _components;
  std::uint32_t _count;
  double _step;
  std::size_t _next = 0;  // number of entries that end a run already taken
  GradientRun _run;
};

}  // namespace vorto::kernels
