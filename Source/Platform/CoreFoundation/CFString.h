// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/CoreFoundation/CFArray.h"
#include "Platform/CoreFoundation/CFBase.h"

#include <string>
#include <string_view>

// Strings of UTF-16 units, immutable or mutable.
//
// Text is kept as it comes: a lone surrogate survives everything but a conversion to another encoding. Positions and
// lengths count UTF-16 units. A range out of bounds is reported on standard error, and the operation does nothing.
// A string holds at most kCFStringMaximumLength units; what would be longer is refused like a range out of bounds.
using CFStringRef = const struct CFStringObject*;
using CFMutableStringRef = struct CFStringObject*;

inline constexpr CFIndex kCFStringMaximumLength = 0x3FFFFFFF;

// Conversions are strict: bytes that are invalid in the encoding, and text that it cannot express, make them fail.
using CFStringEncoding = std::uint32_t;
enum : CFStringEncoding {
  kCFStringEncodingMacRoman = 0,
  kCFStringEncodingISOLatin1 = 0x0201,
  kCFStringEncodingISOLatin2 = 0x0202,
  kCFStringEncodingISOLatinCyrillic = 0x0205,
  kCFStringEncodingISOLatinArabic = 0x0206,
  kCFStringEncodingISOLatinGreek = 0x0207,
  kCFStringEncodingISOLatinHebrew = 0x0208,
  kCFStringEncodingISOLatin5 = 0x0209,
  kCFStringEncodingWindowsLatin1 = 0x0500,
  kCFStringEncodingWindowsLatin2 = 0x0501,
  kCFStringEncodingWindowsCyrillic = 0x0502,
  kCFStringEncodingWindowsGreek = 0x0503,
  kCFStringEncodingWindowsLatin5 = 0x0504,
  kCFStringEncodingWindowsHebrew = 0x0505,
  kCFStringEncodingWindowsArabic = 0x0506,
  kCFStringEncodingASCII = 0x0600,
  kCFStringEncodingGB_18030_2000 = 0x0632,
  kCFStringEncodingISO_2022_JP = 0x0820,
  kCFStringEncodingISO_2022_CN = 0x0830,
  kCFStringEncodingISO_2022_KR = 0x0840,
  kCFStringEncodingEUC_JP = 0x0920,
  kCFStringEncodingEUC_KR = 0x0940,
  kCFStringEncodingShiftJIS = 0x0A01,
  kCFStringEncodingKOI8_R = 0x0A02,
  kCFStringEncodingBig5 = 0x0A03,
  kCFStringEncodingUTF8 = 0x08000100,
  kCFStringEncodingUTF16BE = 0x10000100,
  kCFStringEncodingUTF16LE = 0x14000100,
  kCFStringEncodingUTF32BE = 0x18000100,
  kCFStringEncodingUTF32LE = 0x1C000100,
};

using CFStringCompareFlags = CFOptionFlags;
enum : CFStringCompareFlags {
  kCFCompareCaseInsensitive = 1,
  kCFCompareBackwards = 4,  // finds the last occurrence; comparisons do not look at it
  // By the collation rules of the user's locale (LC_ALL, LC_COLLATE, LANG, as they stand at the first comparison).
  // "C", "POSIX" and locales without rules of their own collate by the root rules of Unicode.
  kCFCompareLocalized = 32,
};

// A constant: made once for each text (in UTF-8), never destroyed, not owned by the caller.
TARN_EXPORT CFStringRef CFSTR(const char* text);

// Null when the text is null, is not valid in the encoding, or the encoding is none of the above.
TARN_EXPORT CFStringRef CFStringCreateWithCString(CFAllocatorRef allocator, const char* text,
                                                  CFStringEncoding encoding);
TARN_EXPORT CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const std::uint8_t* bytes, CFIndex count,
                                                CFStringEncoding encoding);
TARN_EXPORT CFStringRef CFStringCreateWithCharacters(CFAllocatorRef allocator, const UniChar* units, CFIndex count);
// An immutable string of the same text; an immutable string is itself its copy.
TARN_EXPORT CFStringRef CFStringCreateCopy(CFAllocatorRef allocator, CFStringRef string);
// `capacity` is the greatest length that the string may reach, 0 for no such limit.
TARN_EXPORT CFMutableStringRef CFStringCreateMutable(CFAllocatorRef allocator, CFIndex capacity);
TARN_EXPORT CFMutableStringRef CFStringCreateMutableCopy(CFAllocatorRef allocator, CFIndex capacity,
                                                         CFStringRef string);
// Null for a range out of bounds; a range of length 0 holds nothing wherever it lies, and gives the empty string.
TARN_EXPORT CFStringRef CFStringCreateWithSubstring(CFAllocatorRef allocator, CFStringRef string, CFRange range);
// The strings of the array with the separator between each two. Null strings count as empty.
TARN_EXPORT CFStringRef CFStringCreateByCombiningStrings(CFAllocatorRef allocator, CFArrayRef strings,
                                                         CFStringRef separator);

// In UTF-16 units; 0 for null.
TARN_EXPORT CFIndex CFStringGetLength(CFStringRef string);
TARN_EXPORT UniChar CFStringGetCharacterAtIndex(CFStringRef string, CFIndex index);  // 0 when out of bounds
// `buffer` takes range.length units and no terminator.
TARN_EXPORT void CFStringGetCharacters(CFStringRef string, CFRange range, UniChar* buffer);
// The storage itself, CFStringGetLength() units without a terminator, valid until the string is edited or destroyed.
// Null when there is none, as for a string that is empty.
TARN_EXPORT const UniChar* CFStringGetCharactersPtr(CFStringRef string);
// Writes the text and a terminating 0. False when the text cannot be expressed in the encoding or does not fit into
// `bufferSize` bytes with its terminator; the buffer then holds the empty C string.
TARN_EXPORT bool CFStringGetCString(CFStringRef string, char* buffer, CFIndex bufferSize, CFStringEncoding encoding);

// Edit the string in place.
TARN_EXPORT void CFStringInsert(CFMutableStringRef string, CFIndex position, CFStringRef inserted);
TARN_EXPORT void CFStringAppend(CFMutableStringRef string, CFStringRef appended);
// Does nothing when the text is not valid in the encoding.
TARN_EXPORT void CFStringAppendCString(CFMutableStringRef string, const char* text, CFStringEncoding encoding);
TARN_EXPORT void CFStringDelete(CFMutableStringRef string, CFRange range);
TARN_EXPORT void CFStringReplace(CFMutableStringRef string, CFRange range, CFStringRef replacement);

// Without options unit by unit; with kCFCompareCaseInsensitive by Unicode's default case folding. A null string comes
// before every other.
TARN_EXPORT CFComparisonResult CFStringCompare(CFStringRef a, CFStringRef b, CFStringCompareFlags options);
// Compares a range of `a` with the whole of `b`. A range out of bounds counts as an empty one.
TARN_EXPORT CFComparisonResult CFStringCompareWithOptions(CFStringRef a, CFStringRef b, CFRange range,
                                                          CFStringCompareFlags options);
// The first occurrence, unit by unit; (kCFNotFound, 0) when there is none, as for an empty or null `wanted`. Of the
// options only kCFCompareBackwards counts.
TARN_EXPORT CFRange CFStringFind(CFStringRef string, CFStringRef wanted, CFStringCompareFlags options);

// The text in UTF-8 for people to read: a lone surrogate becomes U+FFFD. Empty for null.
TARN_EXPORT std::string CFStringCopyUTF8(CFStringRef string);
