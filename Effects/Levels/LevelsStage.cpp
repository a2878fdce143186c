// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Levels/LevelsStage.h"

#include "Effects/Support/Arithmetic.h"
#include "Effects/kernels/Power.h"
#include "Ports/VRTObjects.h"

#include <utility>

namespace vorto::effects {
namespace {

constexpr double kNearZero = 0.00001;
constexpr double kLeastPower = 0x1p-900;
constexpr double kPowerError = 0x1p-30;  // twice what powerRow() errs by

double clipped(double value) {
  return value > 0 ? std::min(value, 1.0) : 0.0;
}

}  // namespace

LevelsStage::LevelsStage(const VRTHistogram& levels, int channel) {
  const double whiteIn = finiteOr(levels.whiteInForChannel(channel), 1);
  const double whiteOut = finiteOr(levels.whiteOutForChannel(channel), 1);
  const double gamma = finiteOr(levels.gammaForChannel(channel), 1);
  blackIn_ = finiteOr(levels.blackInForChannel(channel), 0);
  blackOut_ = finiteOr(levels.blackOutForChannel(channel), 0);
  inputSpan_ = whiteIn - blackIn_;
  outputSpan_ = whiteOut - blackOut_;
  step_ = std::abs(inputSpan_) < kNearZero;
  gamma_ = gamma < kNearZero ? Gamma::Zero : (gamma == 1 ? Gamma::None : Gamma::Power);
  exponent_ = gamma_ == Gamma::Power ? 1 / gamma : 1;
  neutral_ = blackIn_ == 0 && blackOut_ == 0 && whiteIn == 1 && whiteOut == 1 && gamma == 1;
}

double LevelsStage::stretched(double value) const {
  if (step_) return value < blackIn_ ? 0 : 1;
  return (value - blackIn_) / inputSpan_;
}

double LevelsStage::shaped(double value) const {
  switch (gamma_) {
    case Gamma::Power:
      return value > 0 ? std::pow(value, exponent_) : value;
    case Gamma::Zero:
      return value > 0 && value < 1 ? 0 : value;
    case Gamma::None:
      break;
  }
  return value;
}

double LevelsStage::applyClipped(double value) const {
  if (neutral_) return clipped(value);
  return clipped(laid(shaped(clipped(stretched(value)))));
}

// Every step either never falls or never rises, rounding included, so that bounds stay bounds, exchanged at the end
// where levels turn around. Only of the powers more is known than that they are near.
void LevelsStage::applyClipped(LevelsBounds& values) const {
  for (std::vector<double>* bound : {&values.low, &values.high}) {
    for (double& value : *bound) value = clipped(neutral_ ? value : stretched(value));
  }
  if (neutral_) return;
  if (inputSpan_ < 0 && !step_) std::swap(values.low, values.high);
  if (gamma_ == Gamma::Power) {
    powerRow(values.low.data(), values.low.size(), exponent_);
    powerRow(values.high.data(), values.high.size(), exponent_);
    for (double& value : values.low) value = value > kLeastPower ? value * (1 - kPowerError) : 0;
    for (double& value : values.high) value *= 1 + kPowerError;
  } else {
    for (double& value : values.low) value = shaped(value);
    for (double& value : values.high) value = shaped(value);
  }
  for (double& value : values.low) value = clipped(laid(value));
  for (double& value : values.high) value = clipped(laid(value));
  if (outputSpan_ < 0) std::swap(values.low, values.high);
}

FloatStage LevelsStage::forFloats() const {
  FloatStage stage;
  stage.isNeutral = neutral_;
  stage.isStep = step_;
  stage.isLimit = gamma_ == Gamma::Zero;
  if (gamma_ == Gamma::Power) stage.power.emplace(exponent_);
  stage.blackIn = static_cast<float>(blackIn_);
  stage.inputSpan = static_cast<float>(inputSpan_);
  stage.blackOut = static_cast<float>(blackOut_);
  stage.outputSpan = static_cast<float>(outputSpan_);
  return stage;
}

}  // namespace vorto::effects
