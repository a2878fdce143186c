// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstddef>

// For effects that bring Highway kernels of their own: applies the environment variable VORTO_SIMD ("scalar", "sse4",
// "avx2" or "avx512"; read once) to this process, whose kernels then all use the same instructions, and returns whether
// they shall run their scalar definitions. Call it before a kernel's HWY_DYNAMIC_DISPATCH. From any thread.
TARN_EXPORT bool TCUsesScalarKernels();

// Whether a kernel that writes so many bytes in one go shall write them past the caches, because they would not stay
// there and this machine is quicker so. From any thread.
TARN_EXPORT bool TCStreamsStores(std::size_t bytes);
