// SPDX-License-Identifier: BSD-3-Clause
#include "Effects/Levels/LevelsStage.h"

#include "Effects/Support/Arithmetic.h"
#include "Effects/kernels/Power.h"
#include "Ports/VRTObjects.h"

namespace vorto::effects {
namespace {

constexpr double kNearZero = 0.00001;

double clipped(double value) {
  return value > 0 ? std::min(value, 1.0) : 0.0;
}

void clip(float* values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) values[i] = values[i] > 0 ? std::min(values[i], 1.0F) : 0.0F;
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
  return clipped(blackOut_ + shaped(clipped(stretched(value))) * outputSpan_);
}

void LevelsStage::apply(float* values, std::size_t count) const {
  if (neutral_) return;
  stretch(values, count);
  shape(values, count);
  lay(values, count);
}

void LevelsStage::applyClipped(float* values, std::size_t count) const {
  if (!neutral_) {
    stretch(values, count);
    clip(values, count);
    shape(values, count);
    lay(values, count);
  }
  clip(values, count);
}

void LevelsStage::stretch(float* values, std::size_t count) const {
  const auto black = static_cast<float>(blackIn_);
  const auto span = static_cast<float>(inputSpan_);
  for (std::size_t i = 0; i < count; ++i) {
    values[i] = step_ ? (values[i] < black ? 0.0F : 1.0F) : (values[i] - black) / span;
  }
}

void LevelsStage::shape(float* values, std::size_t count) const {
  if (gamma_ == Gamma::Power) {
    powerRow(values, count, exponent_);
  } else if (gamma_ == Gamma::Zero) {
    for (std::size_t i = 0; i < count; ++i) values[i] = values[i] > 0 && values[i] < 1 ? 0.0F : values[i];
  }
}

void LevelsStage::lay(float* values, std::size_t count) const {
  const auto black = static_cast<float>(blackOut_);
  const auto span = static_cast<float>(outputSpan_);
  if (span == 0) {
    std::fill_n(values, count, black);  // infinity and NaN, too
    return;
  }
  for (std::size_t i = 0; i < count; ++i) values[i] = black + values[i] * span;
}

}  // namespace vorto::effects
