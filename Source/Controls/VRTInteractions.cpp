// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTInteractions.h"

#include "Controls/VRTLateEnds.h"
#include "Platform/Foundation/NSNotificationCenter.h"

void VRTPostStartInteraction(const QCPort* port) {
  VRTDeliverLateEnds();
  NSNotificationCenter::defaultCenter().postNotificationName(kVortoStartInteraction, port);
}

void VRTPostEndInteraction(const QCPort* port) {
  NSNotificationCenter::defaultCenter().postNotificationName(kVortoEndInteraction, port);
}
