// SPDX-License-Identifier: BSD-3-Clause
#pragma once

class VRTHistogram;

namespace vorto::effects {

// One channel's levels: the input range is stretched to 0 to 1, raised to 1 / gamma, and laid on the output range. So
// the value under the gamma handle, which stands at blackIn + (whiteIn - blackIn) * 0.5 ^ gamma, becomes the middle of
// the output range.
//
// Every setting has a result. Crossed input points turn the range around. Points nearer than 0.00001 make a step:
// below the black point 0, from it on 1. A gamma under 0.00001 is the limit towards 0: all between the points becomes
// black. Gamma shapes what lies above the black point only. Parameters that are not finite count as their defaults.
template <class Real>
class LevelsStage {
 public:
  LevelsStage() = default;
  LevelsStage(const VRTHistogram& levels, int channel);

  bool isNeutral() const { return neutral_; }
  // Values outside the input range go on in the same way and may leave the output range.
  Real apply(Real value) const;
  // The same for channels that cannot leave 0 to 1: the input range clips, and so do 0 and 1. NaN becomes 0.
  Real applyClipped(Real value) const;

 private:
  enum class Gamma { None, Power, Zero };
  Real stretched(Real value) const;
  Real shaped(Real value) const;

  bool neutral_ = true;
  bool step_ = false;
  Gamma gamma_ = Gamma::None;
  Real blackIn_ = 0;
  Real inputSpan_ = 1;
  Real exponent_ = 1;
  Real blackOut_ = 0;
  Real outputSpan_ = 1;
};

// What one color channel goes through: the levels of all colors, then its own.
template <class Real>
struct LevelsCurve {
  LevelsStage<Real> common;
  LevelsStage<Real> own;
  bool isNeutral() const { return common.isNeutral() && own.isNeutral(); }
  Real apply(Real value) const { return own.apply(common.apply(value)); }
  Real applyClipped(Real value) const { return own.applyClipped(common.applyClipped(value)); }
};

}  // namespace vorto::effects
