// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCKernelTarget.h"

#include "TarnCore/kernels/Dispatch.h"
#include "TarnCore/kernels/Memory.h"

bool TCUsesScalarKernels() {
  return vorto::kernels::useScalar();
}

bool TCStreamsStores(std::size_t bytes) {
  return vorto::kernels::isStreamed(bytes);
}
