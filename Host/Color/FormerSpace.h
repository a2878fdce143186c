// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorSpace.h"

namespace host {

// What a picture's metadata besides its color tag say of its colors, for one that is in another space now: they no
// longer say it. Exif that told of a space says sRGB, or a space that it has no number for.
void forgetFormerSpace(FileMetadata* metadata, const ColorSpace& space);

}  // namespace host
