// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Pixels/Resampling.h"

#include <optional>
#include <string>
#include <vector>

namespace host {

// How a picture of another size comes to lie on a canvas.
struct Place {
  // Of what is left over (negative: of what stands out), how much is at the left and above: 0, 1/2 or 1.
  double left = 0.5;
  double top = 0.5;
  std::optional<Placement> offset;  // instead: pixels from the upper left corner
  std::optional<ScalingFit> fit;    // instead: scaled to the canvas
};

// "center", "top-left", "top", ..., "X,Y", or "fit", "fill", "stretch". Nothing for any other.
std::optional<Place> placeNamed(const std::string& name);

// The sizes of what flows into an effect and of what comes out.
struct Framing {
  std::optional<PictureSize> size;
  Scaling scaling;
  std::optional<Place>
      place;  // of all inputs but the first; without one they are centred, or scaled where there is a size
};

// The inputs of a blend mode or transition on one canvas: that of the wanted size, to which the first is scaled, or
// that of the first.
std::vector<BitmapRef> onOneCanvas(std::vector<BitmapRef> inputs, const Framing& framing);

}  // namespace host
