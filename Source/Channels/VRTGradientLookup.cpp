// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTGradientLookup.h"

#include <algorithm>
#include <cmath>

namespace {

bool before(const VRTGradientLookup::Entry& left, const VRTGradientLookup::Entry& right) {
  return VRTGradientPositionLess()(left.position, right.position);
}

}  // namespace

bool VRTGradientPositionLess::operator()(double left, double right) const {
  return left < right || (std::isnan(right) && !std::isnan(left));
}

void VRTGradientLookup::collect(double position, const VRTGradientLookupSample& sample) {
  const std::size_t capacity = _heap.empty() ? kInlineEntries : _heap.size();
  if (_size == capacity) grow();
  _entries[_size++] = {position, sample};
}

void VRTGradientLookup::grow() {
  if (_heap.empty()) _heap.assign(_inline, _inline + _size);
  _heap.resize(2 * _size);
  _entries = _heap.data();
}

void VRTGradientLookup::arrange() {
  Entry* const last = _entries + _size;
  const auto outOfPlace = [](const Entry& left, const Entry& right) { return !before(left, right); };
  if (std::adjacent_find(_entries, last, outOfPlace) == last) return;

  std::stable_sort(_entries, last, before);
  Entry* kept = _entries;
  for (Entry* entry = _entries + 1; entry < last; ++entry) {
    if (before(*kept, *entry)) ++kept;
    *kept = *entry;
  }
  _size = static_cast<std::size_t>(kept - _entries) + 1;
}
