// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelHistogram.h"

namespace {

using Levels = VRTChannelHistogramSample;
using Samples = std::array<Levels, 5>;

bool isChannel(std::int32_t channel) {
  return channel >= 0 && channel < 5;
}

double get(const Samples& samples, std::int32_t channel, double Levels::*field) {
  return isChannel(channel) ? samples[static_cast<std::size_t>(channel)].*field : 0.0;
}

void set(Samples& samples, std::int32_t channel, double Levels::*field, double value) {
  if (isChannel(channel)) samples[static_cast<std::size_t>(channel)].*field = value;
}

}  // namespace

VRTChannelHistogramSample::VRTChannelHistogramSample(double bIn, double bOut, double wIn, double wOut, double g)
    : blackIn(bIn), blackOut(bOut), whiteIn(wIn), whiteOut(wOut), gamma(g) {}

std::unique_ptr<VRTChannelBase> VRTChannelHistogramSample::clone() const {
  return std::make_unique<VRTChannelHistogramSample>(*this);
}

std::unique_ptr<VRTChannelBase> VRTChannelHistogram::clone() const {
  return std::make_unique<VRTChannelHistogram>(*this);
}

double VRTChannelHistogram::getBlackInValue(std::int32_t channel, double, double) const {
  return get(samples, channel, &Levels::blackIn);
}

double VRTChannelHistogram::getBlackOutValue(std::int32_t channel, double, double) const {
  return get(samples, channel, &Levels::blackOut);
}

double VRTChannelHistogram::getWhiteInValue(std::int32_t channel, double, double) const {
  return get(samples, channel, &Levels::whiteIn);
}

double VRTChannelHistogram::getWhiteOutValue(std::int32_t channel, double, double) const {
  return get(samples, channel, &Levels::whiteOut);
}

double VRTChannelHistogram::getGammaValue(std::int32_t channel, double, double) const {
  return get(samples, channel, &Levels::gamma);
}

void VRTChannelHistogram::setBlackInValue(double value, std::int32_t channel, double, double) {
  set(samples, channel, &Levels::blackIn, value);
}

void VRTChannelHistogram::setBlackOutValue(double value, std::int32_t channel, double, double) {
  set(samples, channel, &Levels::blackOut, value);
}

void VRTChannelHistogram::setWhiteInValue(double value, std::int32_t channel, double, double) {
  set(samples, channel, &Levels::whiteIn, value);
}

void VRTChannelHistogram::setWhiteOutValue(double value, std::int32_t channel, double, double) {
  set(samples, channel, &Levels::whiteOut, value);
}

void VRTChannelHistogram::setGammaValue(double value, std::int32_t channel, double, double) {
  set(samples, channel, &Levels::gamma, value);
}
