// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"

#include <memory>
#include <string>

namespace host {

// The spaces that every configuration is taken to have (KnownSpaces.h says what they are).
enum class KnownSpace {
  SRgb,
  LinearRec709,
  Rec709,
  Rec2020,
  LinearRec2020,
  DisplayP3,
  LinearP3,
  AcesCg,
  Aces2065,
};

// How samples stand for light: as they are, by the curve of sRGB (IEC 61966-2-1), or as its root.
struct TransferCurve {
  enum class Kind { Linear, SRgb, Power } kind = Kind::Linear;
  double exponent = 1;  // of Power: light is the sample to this power
  bool operator==(const TransferCurve&) const = default;
};

// What the samples of a picture mean.
struct ColorSpace {
  enum class Kind {
    Raw,        // nothing is known, and nothing is converted
    Known,      // `known`
    Named,      // `name`, a space of the configuration that the user has
    Profile,    // `profile`
    Described,  // `primaries` and `curve`, which a file states
    Stated,     // `codes`, which a file states and nothing here can convert: an absolute or relative brightness
  };
  enum class Origin { Assumed, Tagged, Told };  // by nobody, by the file, by the user

  Kind kind = Kind::Raw;
  Origin origin = Origin::Assumed;
  KnownSpace known = KnownSpace::SRgb;
  std::string name;  // of Profile its description, which may be empty
  std::shared_ptr<const Bytes> profile;
  Primaries primaries;
  TransferCurve curve;
  CodePoints codes;
  bool isLinear = false;
  bool isDisplay = false;  // values as displays take them: what integer files hold
  bool isGray = false;     // a profile for gray pictures, which colors cannot be held in
};

ColorSpace rawSpace(ColorSpace::Origin origin);
ColorSpace knownSpace(KnownSpace known, ColorSpace::Origin origin);
ColorSpace namedSpace(std::string name, bool isLinear, bool isDisplay, ColorSpace::Origin origin);
ColorSpace profileSpace(Bytes profile, std::string description, bool isGray);

// HDR's brightness by ITU-R BT.2100, as displays for it take it: called by its curve.
ColorSpace statedSpace(const CodePoints& codes);

// A known space where the primaries and the curve are those of one.
ColorSpace describedSpace(const Primaries& primaries, const TransferCurve& curve, ColorSpace::Origin origin);

// Whether samples of the one are samples of the other, however that is known. Two names of one space are not found out.
bool isSameSpace(const ColorSpace& a, const ColorSpace& b);

// As sentences name it: sRGB; the profile "A98"; ...
std::string spaceText(const ColorSpace& space);

}  // namespace host
