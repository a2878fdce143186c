// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

class VortoBitmap;

// Hands a bitmap to another process over a connected Unix stream socket: its descriptor, its allocation size and its
// memory entry. Both processes then see the same pixels, and each keeps them for as long as it wants; the sender's stay
// at their address. Nobody may write to a bitmap while it is sent for the first time. Neither call raises SIGPIPE; both
// wait as long as the socket's own timeouts say.
//
// The results are those of mach_send_memory_entry and mach_receive_memory_entry (Platform/Mach/mach.h), 0 for success;
// a bitmap without an entry cannot be sent (KERN_INVALID_NAME). A descriptor that names no format that bitmaps are made
// of, or claims more pixels than its memory holds, is refused with KERN_INVALID_VALUE on either side, before anything
// is sent: so is 4:2:2 of more than 204,800 bytes with padded rows, whose reserved size leaves the padding out.
//
// Two bitmaps of one process may have the same entry mapped, each at an address of its own. They are the same pixels,
// and operations do not see it: what an operation between the two does is undefined (it reads what it has written).
TARN_EXPORT int TCSendBitmap(const VortoBitmap& bitmap, int socket);

// A new bitmap, which the caller deletes, mapped into memory; null on failure, with the cause in *result (which may be
// null).
TARN_EXPORT VortoBitmap* TCReceiveBitmap(int socket, int* result);
