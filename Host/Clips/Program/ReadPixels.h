// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/Program/AvObjects.h"
#include "Host/Clips/Program/ReadColors.h"
#include "Host/Clips/Program/ReadRows.h"
#include "Host/ImageFiles/PictureTypes.h"

#include <cstddef>
#include <optional>
#include <vector>

namespace host {

// What a kind of frames holds.
struct PixelKind {
  SampleType sample = SampleType::UInt8;  // that loses nothing
  Channels channels = Channels::RGB;
};
PixelKind pixelKindOf(const AVFrame& frame);

// How pixels are to become.
struct PixelTarget {
  SampleType sample = SampleType::UInt8;
  bool hasAlpha = false;  // else it is full
  int orientation = 1;    // as Exif numbers them; it is undone
};

// Turns decoded frames into RGBA, upright, packed, with straight alpha.
class PixelReader {
 public:
  // Throws Failure, whose message is only the reason, when frames of the kind cannot be converted.
  void read(const AVFrame& frame, const PixelTarget& target, std::byte* pixels);

 private:
  struct Conversion {
    int format, width, height;
    YuvCoding coding;
    SampleType sample;
    bool operator==(const Conversion&) const = default;
  };
  void readRows(const AVFrame& frame, const PixelTarget& target, std::byte* pixels);
  void sourcesOfRgb(const AVFrame& frame, const PixelTarget& target);
  void sourcesOfYuv(const AVFrame& frame, const PixelTarget& target);
  void unpackBits(const AVFrame& frame);
  void prepareScaler(const Conversion& conversion);

  SampleSource sources_[4];
  AvScaler scaler_;
  std::optional<Conversion> conversion_;  // of the scaler
  AvFrame planes_;                        // what it makes
  std::vector<std::uint8_t> bits_;        // samples of formats with several in a byte
  std::vector<std::byte> turned_;         // rows before they are turned upright
};

}  // namespace host
