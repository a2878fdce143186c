// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Exr/ExrPart.h"
#include "Host/ImageFiles/PictureTypes.h"

#include <array>
#include <cstddef>
#include <string>

namespace host::exr {

// The picture that is read of a file: one of its parts, and which of its channels make red, green, blue and alpha; -1
// for an alpha that there is none of. A gray picture names one channel three times.
struct Selection {
  std::size_t part = 0;
  std::array<int, 4> channels{-1, -1, -1, -1};
  Channels kind = Channels::RGBA;
  Depth depth = Depth::Half;
};

// Without a layer it is that of the first part.
bool selectPicture(const File& file, const std::string& layer, Selection* selection, std::string* reason);

}  // namespace host::exr
