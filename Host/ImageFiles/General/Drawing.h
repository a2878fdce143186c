// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/General/DrawingModule.h"

namespace host {

bool drawTextInImage(const DrawingSurface& surface, int x, int baseline, const std::string& text,
                     const TextStyle& style, std::string* reason);
int widthOfText(const std::string& text, const TextStyle& style);  // negative when the font cannot be used

}  // namespace host
