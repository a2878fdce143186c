// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Pixels/Bitmaps.h"
#include "Host/Processes/Message.h"

namespace host {

// Bitmaps as parts of messages between two processes: small ones with their pixels, others as memory entries, which go
// through a connection of their own (`entries`, a connected Unix stream socket) before the message does, and in its
// order. Both processes then have the same memory mapped, for as long as each wants it.

// Throws Failure when it cannot be handed over.
void putBitmap(MessageWriter& message, const VortoBitmap& bitmap, int entries);

// Throws Failure for what is no bitmap that flows between patches, with its pixels. Nothing is read of those.
BitmapRef takeBitmap(MessageReader& message, int entries);

}  // namespace host
