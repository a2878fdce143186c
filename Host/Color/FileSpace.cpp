// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/FileSpace.h"

#include "Host/Color/IccProfile.h"
#include "Host/Color/KnownSpaces.h"

#include <cmath>
#include <optional>

namespace host {
namespace {

using Origin = ColorSpace::Origin;

bool isFloat(Depth depth) {
  return depth == Depth::Half || depth == Depth::Float;
}

void addRemark(std::string& remark, const std::string& text) {
  remark += (remark.empty() ? "" : "; ") + text;
}

constexpr Chromaticity kD65{0.3127, 0.3290};

// Table 2 of ITU-T H.273.
std::optional<Primaries> primariesOfCode(std::uint8_t code) {
  switch (code) {
    case 1:
      return factsOf(KnownSpace::SRgb).primaries;
    case 4:  // BT.470, system M, with white C
      return Primaries{{0.67, 0.33}, {0.21, 0.71}, {0.14, 0.08}, {0.310, 0.316}};
    case 5:  // BT.601 of 625 lines
      return Primaries{{0.64, 0.33}, {0.29, 0.60}, {0.15, 0.06}, kD65};
    case 6:  // BT.601 of 525 lines
    case 7:  // SMPTE ST 240
      return Primaries{{0.630, 0.340}, {0.310, 0.595}, {0.155, 0.070}, kD65};
    case 9:
      return factsOf(KnownSpace::Rec2020).primaries;
    case 11:  // P3 with the white of cinemas
      return Primaries{{0.680, 0.320}, {0.265, 0.690}, {0.150, 0.060}, {0.314, 0.351}};
    case 12:
      return factsOf(KnownSpace::DisplayP3).primaries;
    default:
      return std::nullopt;
  }
}

// Table 3, of curves without an absolute brightness. Video's curves count as the displays that show them.
std::optional<TransferCurve> curveOfCode(std::uint8_t code) {
  switch (code) {
    case 1:
    case 6:
    case 7:
    case 11:
    case 14:
    case 15:
      return TransferCurve{TransferCurve::Kind::Power, 2.4};
    case 4:
      return TransferCurve{TransferCurve::Kind::Power, 2.2};
    case 5:
      return TransferCurve{TransferCurve::Kind::Power, 2.8};
    case 8:
      return TransferCurve{};
    case 13:
      return TransferCurve{TransferCurve::Kind::SRgb, 1};
    default:
      return std::nullopt;
  }
}

std::optional<ColorSpace> spaceOfCodePoints(const CodePoints& codes) {
  const auto primaries = primariesOfCode(codes.primaries);
  const auto curve = curveOfCode(codes.transfer);
  if (!primaries || !curve || codes.matrix != 0 || !codes.isFullRange) return std::nullopt;
  return describedSpace(*primaries, *curve, Origin::Tagged);
}

// The curves of ITU-R BT.2100, of pictures that are brighter than displays of sRGB are.
bool isHdr(const CodePoints& codes) {
  return (codes.transfer == 16 || codes.transfer == 18) && codes.matrix == 0 && codes.isFullRange;
}

std::optional<ColorSpace> spaceOfProfile(const Bytes& profile, std::string& remark) {
  std::string reason;
  const auto summary = readIccProfile(profile, &reason);
  if (!summary) {
    addRemark(remark, "its ICC profile is not used: " + reason);
    return std::nullopt;
  }
  if (summary->isSRgb) return knownSpace(KnownSpace::SRgb, Origin::Tagged);
  return profileSpace(profile, summary->description, summary->isGray);
}

std::optional<ColorSpace> spaceOfName(const std::string& name, bool isLinear, bool hasConfiguration,
                                      std::string& remark) {
  if (const auto known = knownSpaceNamed(name)) return knownSpace(*known, Origin::Tagged);
  if (equalIgnoringCase(name, "data") || equalIgnoringCase(name, "raw")) return rawSpace(Origin::Tagged);
  if (equalIgnoringCase(name, "unknown")) return std::nullopt;
  if (hasConfiguration) return namedSpace(name, isLinear, !isLinear, Origin::Tagged);
  addRemark(remark, "nothing is known of its color space \"" + name + "\"");
  return std::nullopt;
}

// Whether they make colors at all: finite, and the primaries a triangle that is no line.
bool makeColors(const Primaries& primaries) {
  for (const Chromaticity& point : {primaries.red, primaries.green, primaries.blue, primaries.white}) {
    if (!(std::abs(point.x) <= 10) || !(std::abs(point.y) <= 10) || std::abs(point.y) < 1e-6) return false;
  }
  const auto area = [](const Chromaticity& a, const Chromaticity& b, const Chromaticity& c) {
    return (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
  };
  const double whole = area(primaries.red, primaries.green, primaries.blue);
  const auto share = [&](const Chromaticity& a, const Chromaticity& b) { return area(a, b, primaries.white) / whole; };
  // White inside keeps every primary's light above zero.
  return std::abs(whole) > 1e-4 && share(primaries.red, primaries.green) > 1e-3 &&
         share(primaries.green, primaries.blue) > 1e-3 && share(primaries.blue, primaries.red) > 1e-3;
}

TransferCurve curveOfGamma(double gamma) {
  if (std::abs(gamma - 1) < 1e-3) return {};
  return {TransferCurve::Kind::Power, 1 / gamma};
}

// PNG's gAMA and cHRM, EXR's chromaticities. Gamma 1/2.2 with the primaries of sRGB is what writers put for sRGB.
std::optional<ColorSpace> spaceOfNumbers(const ColorTag& tag, bool isLinear, std::string& remark) {
  const Primaries& rec709 = factsOf(KnownSpace::SRgb).primaries;
  const Primaries primaries = tag.primaries.value_or(rec709);
  if (tag.gamma && !(*tag.gamma >= 0.05 && *tag.gamma <= 20)) {
    addRemark(remark, "its gamma makes no sense");
    return std::nullopt;
  }
  if (!makeColors(primaries)) {
    addRemark(remark, "its chromaticities are not used: they make no range of colors");
    return std::nullopt;
  }
  const TransferCurve sRgb{TransferCurve::Kind::SRgb, 1};
  if (!tag.gamma) return describedSpace(primaries, isLinear ? TransferCurve{} : sRgb, Origin::Tagged);
  const bool isOfSRgb = knownSpaceWith(primaries, sRgb) == KnownSpace::SRgb;
  if (isOfSRgb && std::abs(*tag.gamma - 0.45455) < 1e-3) return knownSpace(KnownSpace::SRgb, Origin::Tagged);
  return describedSpace(primaries, curveOfGamma(*tag.gamma), Origin::Tagged);
}

std::optional<ColorSpace> spaceOfTag(const ColorTag& tag, bool isLinear, bool hasConfiguration, std::string& remark) {
  std::optional<ColorSpace> space;
  if (tag.codePoints) {
    space = spaceOfCodePoints(*tag.codePoints);
    if (!space) addRemark(remark, "its color code points are not used: they state a space that is not known here");
  }
  if (!space && !tag.iccProfile.empty()) space = spaceOfProfile(tag.iccProfile, remark);
  if (!space && tag.sRGBIntent) space = knownSpace(KnownSpace::SRgb, Origin::Tagged);
  if (!space && !tag.name.empty()) space = spaceOfName(tag.name, isLinear, hasConfiguration, remark);
  if (!space && (tag.gamma || tag.primaries)) space = spaceOfNumbers(tag, isLinear, remark);
  if (!space && tag.codePoints && isHdr(*tag.codePoints)) {
    space = statedSpace(*tag.codePoints);
    remark.clear();
  }
  return space;
}

}  // namespace

ColorSpace assumedSpace(Depth depth) {
  return knownSpace(isFloat(depth) ? KnownSpace::LinearRec709 : KnownSpace::SRgb, Origin::Assumed);
}

FileSpace spaceOfFile(const PictureInfo& info, bool hasConfiguration) {
  FileSpace result;
  const auto stated = spaceOfTag(info.metadata.color, isFloat(info.depth), hasConfiguration, result.remark);
  result.space = stated.value_or(assumedSpace(info.depth));
  if (!stated && !result.remark.empty()) result.remark += "; it counts as untagged";
  // Samples of red, green and blue are none of a gray profile.
  if (result.space.isGray && !isGray(info.channels)) {
    result.space = assumedSpace(info.depth);
    result.remark = "its ICC profile is not used: it is for gray pictures; it counts as untagged";
  }
  return result;
}

}  // namespace host
