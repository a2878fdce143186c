// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/CoreFoundation/CFString.h"

// Ranks the encodings that a run of bytes may be in. Encodings are those of CFStringEncoding.
using OSStatus = std::int32_t;
using ItemCount = std::uint32_t;
using TextEncoding = std::uint32_t;
using TECSnifferObjectRef = struct TECSnifferObject*;

inline constexpr OSStatus noErr = 0;
inline constexpr OSStatus paramErr = -50;
inline constexpr OSStatus memFullErr = -108;
inline constexpr OSStatus kTextUnsupportedEncodingErr = -8738;

// How many encodings have a sniffer.
TARN_EXPORT OSStatus TECCountAvailableSniffers(ItemCount* count);
// At most `capacity` encodings; how many were written in *count.
TARN_EXPORT OSStatus TECGetAvailableSniffers(TextEncoding* encodings, ItemCount capacity, ItemCount* count);
// Owned by the caller, who disposes of it. Fails when one of the encodings has no sniffer.
TARN_EXPORT OSStatus TECCreateSniffer(TECSnifferObjectRef* sniffer, const TextEncoding* encodings, ItemCount count);
// Reorders `encodings` (some or all of those of the sniffer) from most to least likely; those that nothing speaks for
// keep their order, behind. errorCounts[i] is how many malformed sequences the bytes hold in encodings[i],
// featureCounts[i] how much speaks for it, 0 to 100; each is filled up to its own capacity and may be null with a
// capacity of 0.
TARN_EXPORT OSStatus TECSniffTextEncoding(TECSnifferObjectRef sniffer, const std::uint8_t* bytes, ItemCount byteCount,
                                          TextEncoding* encodings, ItemCount count, ItemCount* errorCounts,
                                          ItemCount errorCapacity, ItemCount* featureCounts, ItemCount featureCapacity);
TARN_EXPORT OSStatus TECDisposeSniffer(TECSnifferObjectRef sniffer);
