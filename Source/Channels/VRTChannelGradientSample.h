// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelBase.h"

// How a gradient goes from a sample to the next one on its right. Other values are kept as they are and evaluate to
// nothing (see VRTChannelGradientFolder).
enum VRTGradientInterpolation : std::int32_t {
  VRTGradientConstant = 0,
  VRTGradientLinear = 1,
  VRTGradientSmooth = 2,
};

// A control point of a gradient.
//
// Positions, middles, colors and opacities are doubles, normally 0 to 1, stored as given. The name that the
// constructors take is ignored: a sample is called "VRTChannelBase" until its folder's sortAndRename().
class TARN_EXPORT VRTChannelGradientSample : public VRTChannelBase {
 public:
  VRTChannelGradientSample(const VortoString& ignoredName, double position, double middle, std::int32_t interpolation);
  VRTChannelGradientSample(const VRTChannelGradientSample& source) = default;
  std::unique_ptr<VRTChannelBase> clone() const override;

  double position;             // on the gradient's axis
  double middle;               // of the segment that begins here, as a fraction of it; 0.5 is the centre
  std::int32_t interpolation;  // of the segment that begins here
};

// A color control point.
class TARN_EXPORT VRTChannelGradientSampleRGB : public VRTChannelGradientSample {
 public:
  VRTChannelGradientSampleRGB(const VortoString& ignoredName, double red, double green, double blue, double position,
                              double middle, std::int32_t interpolation);
  VRTChannelGradientSampleRGB(const VRTChannelGradientSampleRGB& source) = default;
  std::unique_ptr<VRTChannelBase> clone() const override;

  double red;
  double green;
  double blue;
};

// An opacity control point.
class TARN_EXPORT VRTChannelGradientSampleAlpha : public VRTChannelGradientSample {
 public:
  VRTChannelGradientSampleAlpha(const VortoString& ignoredName, double alpha, double position, double middle,
                                std::int32_t interpolation);
  VRTChannelGradientSampleAlpha(const VRTChannelGradientSampleAlpha& source) = default;
  std::unique_ptr<VRTChannelBase> clone() const override;

  double alpha;
};
