// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/CoreFoundation/CFBase.h"

// An immutable sequence of objects, which it retains. Null objects are kept as null.
using CFArrayRef = const struct CFArrayObject*;

// Null when `count` is negative, or is not 0 while `values` is null.
TARN_EXPORT CFArrayRef CFArrayCreate(CFAllocatorRef allocator, const CFTypeRef* values, CFIndex count);
TARN_EXPORT CFIndex CFArrayGetCount(CFArrayRef array);
// An index out of bounds is reported on standard error and gives null.
TARN_EXPORT CFTypeRef CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);
