// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/PictureTypes.h"

#include <OpenImageIO/imageio.h>
#include <array>
#include <string>
#include <vector>

namespace host {

// Which channels of a file, or of a layer of it, make red, green, blue and alpha; -1 for an alpha that the file does
// not have. A gray file names one channel three times.
struct ColorChannels {
  std::array<int, 4> index{-1, -1, -1, -1};
  int first = 0;  // the range that has to be read
  int end = 0;
  Depth depth = Depth::Bits8;
  SampleType sample = SampleType::UInt8;
  AlphaKind alpha = AlphaKind::None;

  bool isGray() const { return index[0] == index[1]; }
};

// False, with the cause, when the file holds no picture of a kind that is rendered.
// A layer names what stands before the last dot in the names of its channels; empty for those without a dot.
bool findColorChannels(const OIIO::ImageSpec& spec, const std::string& layer, ColorChannels* channels,
                       std::string* reason);

// The layers that the channels' names tell of, in their order.
std::vector<std::string> layersOf(const OIIO::ImageSpec& spec);

}  // namespace host
