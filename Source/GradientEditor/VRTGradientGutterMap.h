// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTGradientLookup.h"
#include "GradientEditor/VRTGradientGutterGeometry.h"
#include "TarnCore/TCColor.h"

#include <cstdint>
#include <map>

class VRTChannelGradientSample;

// A gutter's working record of one sample, rebuilt from the folder whenever it is needed.
struct KXGutterSample {
  VortoColor color;                // what the swatch shows, opaque
  double middle = 0.5;             // of the segment that begins here
  std::int32_t interpolation = 0;  // of that segment; always 0 in the opacity gutter
  VRTChannelGradientSample* sample = nullptr;
};

// The samples by ascending position; of samples at one position the last in the folder's order.
using VRTGradientGutterMap = std::map<double, KXGutterSample, VRTGradientPositionLess>;

// What the editor has selected: a sample, or the middle point of the segment that begins at it.
struct VRTGradientSelection {
  const VRTChannelGradientSample* sample = nullptr;
  bool middle = false;

  bool isSample(const KXGutterSample& record) const { return sample && sample == record.sample; }
};

// The entry whose marker lies under a point of the gutter, or the map's end. *hitMiddle becomes true when it is the
// marker of the middle point after that sample, else it is left alone.
//
// From left to right each sample's marker is tried, then its middle point's. Middle points are hit only next to the
// selection: that of the selected sample's own segment, and, unless a middle point is selected, the one before it.
// Whether they are drawn plays no part.
VRTGradientGutterMap::const_iterator VRTHitTestGradientGutter(const VRTGradientGutterMap& map,
                                                              const VRTGradientGutterGeometry& geometry,
                                                              const VRTGradientSelection& selection, NSPoint point,
                                                              bool* hitMiddle);
