// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Commands/SheetLayout.h"

#include <string>

class VortoBitmap;

namespace host {

// Draws a caption in DejaVu Sans, cut off with an ellipsis where it is wider than the cell. Without the font there is a
// warning on standard error, once, and no caption.
void drawCaption(const std::string& text, const SheetLayout::Cell& cell, VortoBitmap& sheet);

}  // namespace host
