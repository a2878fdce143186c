// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"

// Where the parts of the levels editor stand in its master view, lower left origin, for a panel of some size.
//
// From the top: the channels' pop-up, beside it the one that chooses between input and result where there is such a
// choice, the histogram, its handles, the ramp, its handles. Only the histogram grows with
// the height. The handle of 0 stands above the left inner edge of graph and ramp, that of 1 above the right one.
struct VRTHistogramEditorLayout {
  explicit VRTHistogramEditorLayout(NSSize panel, bool hasSides = false);

  NSRect popUp;
  NSRect sidePopUp;  // empty without that choice
  NSRect histogram;
  NSRect gutterIn;
  NSRect gradient;
  NSRect gutterOut;
};
