// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// The values of one control point as the lookup keeps them. A color folder leaves alpha 0, an opacity folder the
// colors.
struct VRTGradientLookupSample {
  double red;
  double green;
  double blue;
  double alpha;
  double middle;
  std::int32_t interpolation;
};

// The order of positions: ascending, -0 equal to 0, and every NaN equal to the others and after all numbers (plain <
// does not order NaN).
struct TARN_EXPORT VRTGradientPositionLess {
  bool operator()(double left, double right) const;
};

// A gradient folder's samples by ascending position, one entry per position. It holds the usual number of samples
// without touching the heap.
//
// It is filled in two steps, collect() any number of times and arrange() once; only then may it be read.
class TARN_EXPORT VRTGradientLookup {
 public:
  // One control point and where it lies.
  struct Entry {
    double position;
    VRTGradientLookupSample sample;
  };

  VRTGradientLookup() = default;
  VRTGradientLookup(const VRTGradientLookup&) = delete;
  VRTGradientLookup& operator=(const VRTGradientLookup&) = delete;

  // Adds a sample, in any order.
  void collect(double position, const VRTGradientLookupSample& sample);
  void arrange();  // sorts; of entries with equal positions the one collected last stays

  // The entries, as a range.
  const Entry* begin() const { return _entries; }
  const Entry* end() const { return _entries + _size; }
  std::size_t size() const { return _size; }
  bool empty() const { return _size == 0; }

 private:
  static constexpr std::size_t kInlineEntries = 40;

  void grow();

  Entry _inline[kInlineEntries];
  std::vector<Entry> _heap;  // used instead, once there are more
  Entry* _entries = _inline;
  std::size_t _size = 0;
};
