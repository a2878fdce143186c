// SPDX-License-Identifier: BSD-3-Clause
#include "Registry/VRTExecutionTraits.h"

#include "Platform/QuartzComposer/QCPatch.h"

bool dependsOnTime(const QCPatch& patch) {
  return !patch.declaresFalse("dependsOnTime");
}

bool keepsState(const QCPatch& patch) {
  return !patch.declaresFalse("keepsState");
}
