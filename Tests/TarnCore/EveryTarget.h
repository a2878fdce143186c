// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/kernels/Dispatch.h"

// Calls the function once in every instruction set of the machine and once without any.
template <class Function>
void onEveryTarget(Function function) {
  for (const vorto::kernels::SimdTarget& target : vorto::kernels::simdTargets()) {
    SCOPED_TRACE(target.name);
    forceSimdTarget(target);
    function();
  }
  vorto::kernels::restoreSimdTarget();
}
