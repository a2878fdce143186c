// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace host {

using Bytes = std::vector<std::uint8_t>;

// The CIE 1931 x and y of a color.
struct Chromaticity {
  double x = 0;
  double y = 0;
  bool operator==(const Chromaticity&) const = default;
};
struct Primaries {
  Chromaticity red, green, blue, white;
  bool operator==(const Primaries&) const = default;
};

// The code points of ITU-T H.273 as a PNG's cICP chunk states them.
struct CodePoints {
  std::uint8_t primaries = 2;
  std::uint8_t transfer = 2;
  std::uint8_t matrix = 0;  // 0: the file holds RGB
  bool isFullRange = true;
  bool operator==(const CodePoints&) const = default;
};

// What a file says about its colors. All that it says is here, also where one thing overrides another.
struct ColorTag {
  Bytes iccProfile;  // empty when there is none
  std::optional<CodePoints> codePoints;
  std::optional<std::uint8_t> sRGBIntent;  // it states sRGB, with this rendering intent (ICC.1, 0 to 3)
  std::optional<double> gamma;             // samples are light to this power (PNG's gAMA; 1 is linear)
  std::optional<Primaries> primaries;      // PNG's cHRM, EXR's chromaticities
  std::string name;                        // of a color space: EXR's colorInteropID, what other formats tell
  bool operator==(const ColorTag&) const = default;
};

// How many pixels lie on a unit of length.
struct Resolution {
  double x = 0;
  double y = 0;
  enum class Unit { Inch, Centimeter } unit = Unit::Inch;
  bool operator==(const Resolution&) const = default;
};

struct Rational {
  std::int32_t numerator = 0;
  std::uint32_t denominator = 1;
  bool operator==(const Rational&) const = default;
};

// SMPTE 12M, packed as in EXR's attribute: the time with its flags in binary coded decimals, and the user bits.
struct TimeCode {
  std::uint32_t timeAndFlags = 0;
  std::uint32_t userData = 0;
  bool operator==(const TimeCode&) const = default;
};

// An attribute of an EXR header that none of the other members holds, as it stands in the file.
struct HeaderAttribute {
  std::string name;
  std::string type;  // "string", "float", "box2i", ...
  Bytes value;
  bool operator==(const HeaderAttribute&) const = default;
};

// What a file says about itself besides its pixels.
struct FileMetadata {
  ColorTag color;
  // A TIFF header and its directories, as behind "Exif\0\0" in a JPEG; empty when there is none. The orientation in it
  // is 1: pictures are read upright.
  Bytes exif;
  std::optional<Resolution> resolution;
  std::optional<double> pixelAspect;  // width of a pixel by its height; nothing where they are equal or not told
  std::optional<Rational> frameRate;  // frames per second
  std::optional<TimeCode> timeCode;
  std::vector<HeaderAttribute> attributes;
  bool operator==(const FileMetadata&) const = default;
};

}  // namespace host
