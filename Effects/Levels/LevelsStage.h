// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Effects/kernels/LevelsFloats.h"

#include <vector>

class VRTHistogram;

namespace vorto::effects {

// Values that are known to lie between two others, within 0 and 1.
struct LevelsBounds {
  std::vector<double> low, high;
};

// One channel's levels: the input range is stretched to 0 to 1, raised to 1 / gamma, and laid on the output range. So
// the value under the gamma handle, which stands at blackIn + (whiteIn - blackIn) * 0.5 ^ gamma, becomes the middle of
// the output range.
//
// Every setting has a result. Crossed input points turn the range around. Points nearer than 0.00001 make a step:
// below the black point 0, from it on 1. A gamma under 0.00001 is the limit towards 0: all between the points becomes
// black. Gamma shapes what lies above the black point only. Parameters that are not finite count as their defaults.
class LevelsStage {
 public:
  LevelsStage() = default;  // neutral
  LevelsStage(const VRTHistogram& levels, int channel);

  bool isNeutral() const { return neutral_; }
  // Of channels that cannot leave 0 to 1: the input range clips, and so do 0 and 1. NaN becomes 0.
  double applyClipped(double value) const;
  // Between which values the results of applyClipped() lie; quick where there are many.
  void applyClipped(LevelsBounds& values) const;
  // For floats: values outside the input range go on in the same way and may leave the output range.
  FloatStage forFloats() const;

 private:
  enum class Gamma { None, Power, Zero };
  double stretched(double value) const;
  double shaped(double value) const;
  double laid(double value) const { return blackOut_ + value * outputSpan_; }

  bool neutral_ = true;
  bool step_ = false;
  Gamma gamma_ = Gamma::None;
  double blackIn_ = 0;
  double inputSpan_ = 1;
  double exponent_ = 1;
  double blackOut_ = 0;
  double outputSpan_ = 1;
};

// What one color channel goes through: the levels of all colors, then its own.
struct LevelsCurve {
  LevelsStage common;
  LevelsStage own;
  double applyClipped(double value) const { return own.applyClipped(common.applyClipped(value)); }
};

}  // namespace vorto::effects
