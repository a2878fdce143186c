// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

namespace host {

// Multiplies straight colors with their alpha, in place. Colors stay as they are where alpha is full and become 0 where
// it is 0; integers are rounded to the nearest. Images without alpha are opaque: nothing changes but their kind.
void premultiply(ImagePixels& image);

// The inverse, for integer samples: premultiplied colors that came from straight ones and back again are the same.
// Where alpha is 0 colors become 0, and a color above its alpha becomes full.
void unpremultiply(ImagePixels& image);

// The same picture in samples of another type. Integers widen to their whole range and narrow to the nearest value;
// floats are cut to 0 to 1 first, NaN to 0. Floats from integers are value / maximum.
ImagePixels converted(ImagePixels image, SampleType sample);

}  // namespace host
