// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/In/ForeignEffect.h"
#include "Bindings/Frei0r/In/SharedFrames.h"

#include <cstdint>

class VortoBitmap;

namespace vorto::frei0r {

// The smallest frame that an image of this size fits into and plug-ins take: its edges are multiples of 8. The image
// lies in the middle, half a pixel to the left and above where that is no whole number.
FrameSize frameSizeFor(std::uint32_t width, std::uint32_t height);

// Pixels of an image (premultiplied, in one of the layouts that flow between patches; not empty) as a plug-in takes
// them: straight, at 8 bits, in the order of its color model, where Packed counts as RGBA. Numbers of 16 bits become
// the nearest ones; floats are cut to 0 to 1 first. What the image leaves of the frame continues its edges.
void toFrame(const VortoBitmap& image, ColorModel colors, const FrameSize& size, std::uint32_t* frame);

// The way back, into the whole of an image of the same size as above.
void fromFrame(const std::uint32_t* frame, ColorModel colors, const FrameSize& size, VortoBitmap& image);

}  // namespace vorto::frei0r
