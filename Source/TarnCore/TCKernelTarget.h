// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

// For effects that bring Highway kernels of their own: applies the environment variable VORTO_SIMD ("scalar", "sse4",
// "avx2" or "avx512"; read once) to this process, whose kernels then all use the same instructions, and returns whether
// they shall run their scalar definitions. Call it before a kernel's HWY_DYNAMIC_DISPATCH. From any thread.
TARN_EXPORT bool TCUsesScalarKernels();
