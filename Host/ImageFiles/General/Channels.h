// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

#include <OpenImageIO/imageio.h>
#include <array>

namespace host {

// Which channels of a file make red, green, blue and alpha; -1 for an alpha that the file does not have. A gray file
// names one channel three times.
struct ColorChannels {
  std::array<int, 4> index{-1, -1, -1, -1};
  int first = 0;  // the range that has to be read
  int end = 0;
  Depth depth = Depth::Bits8;
  SampleType sample = SampleType::UInt8;
  AlphaKind alpha = AlphaKind::None;
};

// False, with the cause, when the file holds no picture of a kind that is rendered.
bool findColorChannels(const OIIO::ImageSpec& spec, ColorChannels* channels, std::string* reason);

}  // namespace host
