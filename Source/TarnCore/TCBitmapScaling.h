// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "TarnCore/TCPixel.h"

// Nearest-neighbour scaling over the typed views. Destination column i takes source column floor(i x source width /
// destination width + 1e-7), and rows alike. Row padding is ignored on both sides. Nothing is read or written outside
// either allocation; a null or empty bitmap is left alone. The views need only have the layout that is named: a bitmap
// of another one is read as if it had it, up to its end.

// Copies stored pixels unchanged; 4:2:2 pixels too, whichever of U and V they hold.
// One for each typed view: RGBA8, ARGB8, YUV8, RGBA16, RGB16, LuminanceAlpha16, Luminance16, RGBAHalfFloat, RGBAFloat.
template <class View, class Pixel>
TARN_EXPORT void scaleBitmap(View* destination, View* source);

// Also convert the depth, channel by channel through floats (TCPixel.h). The source comes first here. For sources of
// RGBA8, ARGB8, RGBA16, RGBAHalfFloat and RGBAFloat.
template <class View, class Pixel>
TARN_EXPORT void scaleAndDepthConvertBitmapToARGB8(View* source, VortoBitmapARGB8* destination);
template <class View, class Pixel>
TARN_EXPORT void scaleAndDepthConvertBitmaptoRGBA16(View* source, VortoBitmapRGBA16* destination);
template <class View, class Pixel>
TARN_EXPORT void scaleAndDepthConvertBitmaptoRGBAFloat(View* source, VortoBitmapRGBAFloat* destination);
