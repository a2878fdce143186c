// SPDX-License-Identifier: BSD-3-Clause
#pragma once

class VRTChannelGradientFolder;
class VRTChannelGradientSample;

// When the value of a port is replaced (by undo, or by a host that stores a copy on every change), what people are
// editing goes on in the new gradient as far as it is the same.

// The sample of the new folder that stands for one of the old folder: an equal one; in a folder of as many samples,
// when there is none, one of those that have changed, best of the same color. Of several the nearest in order. Null
// when nothing stands for it.
VRTChannelGradientSample* VRTSuccessorOfSample(const VRTChannelGradientSample& sample,
                                               const VRTChannelGradientFolder& before,
                                               const VRTChannelGradientFolder& after);

// Whether both hold equal samples, to the bit, in the same order.
bool VRTHoldEqualSamples(const VRTChannelGradientFolder& one, const VRTChannelGradientFolder& other);
