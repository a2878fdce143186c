// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Viewer/ViewSettings.h"

#include <QRgb>
#include <cstddef>

class VortoBitmap;

// The loops of the display over rows of pixels: premultiplied floats in, the bytes of the screen out.
namespace host {

// Pixels of a bitmap that effects exchange, from column `x` on, as red, green, blue and alpha; integers by their
// maximum.
void loadRow(const VortoBitmap& bitmap, std::uint32_t y, std::uint32_t x, std::size_t pixels, float* target);

// target += weight x source, of so many floats; or target = weight x source.
void addRow(const float* source, float weight, std::size_t floats, float* target, bool isFirst);

// One channel as opaque gray; of Luminance the colors without alpha. Color leaves the row.
void isolateChannel(ChannelView channels, float* row, std::size_t pixels);

// To premultiplied bytes. True when all are opaque.
bool roundRow(const float* row, std::size_t pixels, QRgb* target);

// The same for pixels of 8 bits, one channel or all of them.
bool copyRow(const VortoBitmap& bitmap, std::uint32_t y, std::uint32_t x, std::size_t pixels, ChannelView channels,
             QRgb* target);

}  // namespace host
