// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelFolder.h"

#include <array>

// The levels of one tone channel. Values are normally 0 to 1 (gamma above 0), stored as given.
class TARN_EXPORT VRTChannelHistogramSample : public VRTChannelBase {
 public:
  VRTChannelHistogramSample() = default;
  VRTChannelHistogramSample(double blackIn, double blackOut, double whiteIn, double whiteOut, double gamma);
  VRTChannelHistogramSample(const VRTChannelHistogramSample& source) = default;
  std::unique_ptr<VRTChannelBase> clone() const override;

  double blackIn = 0.0;
  double blackOut = 0.0;
  double whiteIn = 1.0;
  double whiteOut = 1.0;
  double gamma = 1.0;
};

// A levels adjustment: five values for each of five channels, 0 all colors together, 1 red, 2 green, 3 blue, 4 opacity.
//
// Any other channel reads 0 and stores nothing. Values are stored as given, without a notification. The trailing
// doubles of the accessors are not used: the values are not animated. Its own list of descendants stays empty, and
// reset() does nothing. A copy is complete.
class TARN_EXPORT VRTChannelHistogram : public VRTChannelFolder {
 public:
  VRTChannelHistogram() = default;
  VRTChannelHistogram(const VRTChannelHistogram& source) = default;
  std::unique_ptr<VRTChannelBase> clone() const override;

  // One value of the channel.
  double getBlackInValue(std::int32_t channel, double, double) const;
  double getBlackOutValue(std::int32_t channel, double, double) const;
  double getWhiteInValue(std::int32_t channel, double, double) const;
  double getWhiteOutValue(std::int32_t channel, double, double) const;
  double getGammaValue(std::int32_t channel, double, double) const;

  // Sets one value of the channel.
  void setBlackInValue(double value, std::int32_t channel, double, double);
  void setBlackOutValue(double value, std::int32_t channel, double, double);
  void setWhiteInValue(double value, std::int32_t channel, double, double);
  void setWhiteOutValue(double value, std::int32_t channel, double, double);
  void setGammaValue(double value, std::int32_t channel, double, double);

  std::int32_t selectedChannel = 0;  // shown by the editor
  std::array<VRTChannelHistogramSample, 5> samples;
};
