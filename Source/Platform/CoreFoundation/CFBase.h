// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstdint>
#include <memory>
#include <type_traits>

// What every CoreFoundation-style object shares.
//
// Ownership goes by the name of the call: what a function with Create or Copy in its name returns belongs to the
// caller, who releases it once (CFOwned does); what one with Get in its name returns belongs to somebody else and must
// be retained to be kept. Counts are atomic: threads may hold one object that none of them changes; a mutable one is
// used by one thread at a time. Null is harmless everywhere: it is neither retained nor released, queries of it give 0
// or null, edits of it do nothing.
using CFTypeRef = const void*;  // any object of this room
using CFAllocatorRef = const struct CFAllocatorObject*;
using CFIndex = long;  // counts and positions; negative ones are always out of bounds
using CFOptionFlags = unsigned long;
using UniChar = unsigned short;  // one UTF-16 unit

inline constexpr CFAllocatorRef kCFAllocatorDefault = nullptr;  // the only allocator; the argument is not looked at
inline constexpr CFIndex kCFNotFound = -1;

// `length` units or items from `location` on.
struct CFRange {
  CFIndex location = 0;
  CFIndex length = 0;
};

// The range of these values.
constexpr CFRange CFRangeMake(CFIndex location, CFIndex length) {
  return CFRange{location, length};
}

enum CFComparisonResult : CFIndex { kCFCompareLessThan = -1, kCFCompareEqualTo = 0, kCFCompareGreaterThan = 1 };

// Returns its argument.
TARN_EXPORT CFTypeRef CFRetain(CFTypeRef object);
// The last release destroys the object. Constants are never destroyed.
TARN_EXPORT void CFRelease(CFTypeRef object);
TARN_EXPORT CFIndex CFGetRetainCount(CFTypeRef object);
// Writes a description and a newline to standard error: of a string its text in UTF-8.
TARN_EXPORT void CFShow(CFTypeRef object);

// Owns one reference of an object, or null, and releases it once: CFOwned<CFStringRef> is for what functions with
// Create or Copy in their name return. To share, CFRetain() what get() returns.
struct CFReleaser {
  void operator()(CFTypeRef object) const { CFRelease(object); }
};
template <typename Reference>
using CFOwned = std::unique_ptr<std::remove_pointer_t<Reference>, CFReleaser>;
