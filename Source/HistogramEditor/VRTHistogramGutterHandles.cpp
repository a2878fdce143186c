// SPDX-License-Identifier: BSD-3-Clause
#include "Channels/VRTChannelHistogram.h"
#include "Controls/VRTLocalizedText.h"
#include "HistogramEditor/VRTHistogramGutter.h"

// What the handles of either gutter stand for. Levels are read and written for the channel that they select.

double VRTHistogramGutter::valueOf(Handle handle, const VRTChannelHistogram& channel) const {
  return positionOf(handle, channel);
}

void VRTHistogramGutter::setValueOf(Handle handle, double value, VRTChannelHistogram& channel) const {
  setPositionOf(handle, value, channel);
}

double VRTHistogramGutter::largestValueOf(Handle) const {
  return 1;
}

QString VRTHistogramGutterIn::accessibilityLabel() const {
  return VRTLocalizedText("Input levels");
}

std::vector<VRTHistogramGutter::Handle> VRTHistogramGutterIn::handles() const {
  return {BlackHandle, WhiteHandle, GammaHandle};
}

QString VRTHistogramGutterIn::nameOf(Handle handle) const {
  return VRTLocalizedText(handle == BlackHandle ? "Input black" : handle == WhiteHandle ? "Input white" : "Gamma");
}

double VRTHistogramGutterIn::positionOf(Handle handle, const VRTChannelHistogram& channel) const {
  const double black = channel.getBlackInValue(channel.selectedChannel, 0.0, 0.0);
  const double white = channel.getWhiteInValue(channel.selectedChannel, 0.0, 0.0);
  if (handle == BlackHandle) return black;
  if (handle == WhiteHandle) return white;
  return VRTHistogramPositionOfGamma(black, white, channel.getGammaValue(channel.selectedChannel, 0.0, 0.0));
}

void VRTHistogramGutterIn::setPositionOf(Handle handle, double position, VRTChannelHistogram& channel) const {
  const std::int32_t selected = channel.selectedChannel;
  if (handle == BlackHandle) {
    channel.setBlackInValue(VRTHistogramClampToUnit(position), selected, 0.0, 0.0);
  } else if (handle == WhiteHandle) {
    channel.setWhiteInValue(VRTHistogramClampToUnit(position), selected, 0.0, 0.0);
  } else {
    const double black = channel.getBlackInValue(selected, 0.0, 0.0);
    const double white = channel.getWhiteInValue(selected, 0.0, 0.0);
    channel.setGammaValue(VRTHistogramGammaOfPosition(black, white, position), selected, 0.0, 0.0);
  }
}

double VRTHistogramGutterIn::valueOf(Handle handle, const VRTChannelHistogram& channel) const {
  if (handle != GammaHandle) return positionOf(handle, channel);
  return channel.getGammaValue(channel.selectedChannel, 0.0, 0.0);
}

void VRTHistogramGutterIn::setValueOf(Handle handle, double value, VRTChannelHistogram& channel) const {
  if (handle != GammaHandle) return setPositionOf(handle, value, channel);
  channel.setGammaValue(value, channel.selectedChannel, 0.0, 0.0);
}

double VRTHistogramGutterIn::largestValueOf(Handle handle) const {
  return handle == GammaHandle ? VRTHistogramLargestGamma : 1;
}

QString VRTHistogramGutterOut::accessibilityLabel() const {
  return VRTLocalizedText("Output levels");
}

std::vector<VRTHistogramGutter::Handle> VRTHistogramGutterOut::handles() const {
  return {BlackHandle, WhiteHandle};
}

QString VRTHistogramGutterOut::nameOf(Handle handle) const {
  return VRTLocalizedText(handle == BlackHandle ? "Output black" : "Output white");
}

double VRTHistogramGutterOut::positionOf(Handle handle, const VRTChannelHistogram& channel) const {
  return handle == BlackHandle ? channel.getBlackOutValue(channel.selectedChannel, 0.0, 0.0)
                               : channel.getWhiteOutValue(channel.selectedChannel, 0.0, 0.0);
}

void VRTHistogramGutterOut::setPositionOf(Handle handle, double position, VRTChannelHistogram& channel) const {
  const double value = VRTHistogramClampToUnit(position);
  if (handle == BlackHandle) {
    channel.setBlackOutValue(value, channel.selectedChannel, 0.0, 0.0);
  } else {
    channel.setWhiteOutValue(value, channel.selectedChannel, 0.0, 0.0);
  }
}
