// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

namespace host {

bool resizeImage(const ImagePixels& source, ImagePixels* target, std::string* reason);
bool drawTextInImage(ImagePixels* image, int x, int baseline, const std::string& text, const TextStyle& style,
                     std::string* reason);
int widthOfText(const std::string& text, const TextStyle& style);  // negative when the font cannot be used

}  // namespace host
