// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCKernelTarget.h"

#include "TarnCore/kernels/Dispatch.h"

bool TCUsesScalarKernels() {
  return vorto::kernels::useScalar();
}
