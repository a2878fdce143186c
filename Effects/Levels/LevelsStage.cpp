// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Levels/LevelsStage.h"

#include "Effects/Support/Arithmetic.h"
#include "Ports/VRTObjects.h"

namespace vorto::effects {
namespace {

constexpr double kNearZero = 0.00001;

template <class Real>
Real clipped(Real value) {
  return value > 0 ? std::min(value, Real{1}) : Real{0};
}

}  // namespace

template <class Real>
LevelsStage<Real>::LevelsStage(const VRTHistogram& levels, int channel) {
  const double blackIn = finiteOr(levels.blackInForChannel(channel), 0);
  const double blackOut = finiteOr(levels.blackOutForChannel(channel), 0);
  const double whiteIn = finiteOr(levels.whiteInForChannel(channel), 1);
  const double whiteOut = finiteOr(levels.whiteOutForChannel(channel), 1);
  const double gamma = finiteOr(levels.gammaForChannel(channel), 1);
  step_ = std::abs(whiteIn - blackIn) < kNearZero;
  gamma_ = gamma < kNearZero ? Gamma::Zero : (gamma == 1 ? Gamma::None : Gamma::Power);
  neutral_ = blackIn == 0 && blackOut == 0 && whiteIn == 1 && whiteOut == 1 && gamma == 1;
  blackIn_ = static_cast<Real>(blackIn);
  inputSpan_ = static_cast<Real>(whiteIn - blackIn);
  exponent_ = gamma_ == Gamma::Power ? static_cast<Real>(1 / gamma) : Real{1};
  blackOut_ = static_cast<Real>(blackOut);
  outputSpan_ = static_cast<Real>(whiteOut - blackOut);
}

template <class Real>
Real LevelsStage<Real>::stretched(Real value) const {
  if (step_) return value < blackIn_ ? Real{0} : Real{1};
  return (value - blackIn_) / inputSpan_;
}

template <class Real>
Real LevelsStage<Real>::shaped(Real value) const {
  switch (gamma_) {
    case Gamma::Power:
      return value > 0 ? std::pow(value, exponent_) : value;
    case Gamma::Zero:
      return value > 0 && value < 1 ? Real{0} : value;
    case Gamma::None:
      break;
  }
  return value;
}

template <class Real>
Real LevelsStage<Real>::apply(Real value) const {
  if (neutral_) return value;
  if (outputSpan_ == 0) return blackOut_;
  return blackOut_ + shaped(stretched(value)) * outputSpan_;
}

template <class Real>
Real LevelsStage<Real>::applyClipped(Real value) const {
  if (neutral_) return clipped(value);
  return clipped(blackOut_ + shaped(clipped(stretched(value))) * outputSpan_);
}

template class LevelsStage<float>;
template class LevelsStage<double>;

}  // namespace vorto::effects
