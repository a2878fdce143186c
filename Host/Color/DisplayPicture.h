// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Pixels/Bitmaps.h"

#include <string>

namespace host {

// A picture's file to be looked at: sRGB, premultiplied, RGBAFloat. A profile that cannot be used counts as none, and
// so does HDR. Throws Failure naming the file and the cause.
BitmapRef readForDisplay(const std::string& path);

}  // namespace host
