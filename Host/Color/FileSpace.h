// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorSpace.h"
#include "Host/ImageFiles/ImageFileModule.h"

#include <string>

namespace host {

struct FileSpace {
  ColorSpace space;
  std::string remark;  // what of the tags was not used, and why; empty when all was well
};

// What an untagged picture is taken to hold: linear Rec. 709 in halves and floats, else sRGB.
ColorSpace assumedSpace(Depth depth);

// The space of a picture by what its file says. Of several statements the first that is understood counts: code points,
// a profile, sRGB, a name, gamma and primaries; last code points that are known but cannot be converted. Names that
// nobody knows count where the user has a configuration, which may know them.
FileSpace spaceOfFile(const PictureInfo& info, bool hasConfiguration);

}  // namespace host
