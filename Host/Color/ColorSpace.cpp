// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/ColorSpace.h"

#include "Host/Color/KnownSpaces.h"

#include <utility>

namespace host {

ColorSpace rawSpace(ColorSpace::Origin origin) {
  ColorSpace space;
  space.origin = origin;
  return space;
}

ColorSpace knownSpace(KnownSpace known, ColorSpace::Origin origin) {
  const KnownSpaceFacts& facts = factsOf(known);
  ColorSpace space;
  space.kind = ColorSpace::Kind::Known;
  space.origin = origin;
  space.known = known;
  space.name = facts.name;
  space.primaries = facts.primaries;
  space.curve = facts.curve;
  space.isLinear = facts.curve.kind == TransferCurve::Kind::Linear;
  space.isDisplay = !space.isLinear;
  return space;
}

ColorSpace namedSpace(std::string name, bool isLinear, bool isDisplay, ColorSpace::Origin origin) {
  ColorSpace space;
  space.kind = ColorSpace::Kind::Named;
  space.origin = origin;
  space.name = std::move(name);
  space.isLinear = isLinear;
  space.isDisplay = isDisplay;
  return space;
}

ColorSpace profileSpace(Bytes profile, std::string description, bool isGray) {
  ColorSpace space;
  space.kind = ColorSpace::Kind::Profile;
  space.origin = ColorSpace::Origin::Tagged;
  space.name = std::move(description);
  space.profile = std::make_shared<const Bytes>(std::move(profile));
  space.isDisplay = !isGray;
  space.isGray = isGray;
  return space;
}

ColorSpace describedSpace(const Primaries& primaries, const TransferCurve& curve, ColorSpace::Origin origin) {
  if (const auto known = knownSpaceWith(primaries, curve)) return knownSpace(*known, origin);
  ColorSpace space;
  space.kind = ColorSpace::Kind::Described;
  space.origin = origin;
  space.primaries = primaries;
  space.curve = curve;
  space.isLinear = curve.kind == TransferCurve::Kind::Linear;
  space.isDisplay = !space.isLinear;
  return space;
}

ColorSpace statedSpace(const CodePoints& codes) {
  ColorSpace space;
  space.kind = ColorSpace::Kind::Stated;
  space.origin = ColorSpace::Origin::Tagged;
  space.name = codes.transfer == 16 ? "PQ" : "HLG";
  space.codes = codes;
  space.isDisplay = true;
  return space;
}

bool isSameSpace(const ColorSpace& a, const ColorSpace& b) {
  if (a.kind != b.kind) return false;
  switch (a.kind) {
    case ColorSpace::Kind::Raw:
      return true;
    case ColorSpace::Kind::Known:
      return a.known == b.known;
    case ColorSpace::Kind::Named:
      return equalIgnoringCase(a.name, b.name);
    case ColorSpace::Kind::Profile:
      return *a.profile == *b.profile;
    case ColorSpace::Kind::Stated:
      return a.codes == b.codes;
    case ColorSpace::Kind::Described:
      break;
  }
  return a.primaries == b.primaries && a.curve == b.curve;
}

std::string spaceText(const ColorSpace& space) {
  switch (space.kind) {
    case ColorSpace::Kind::Raw:
      return "raw";
    case ColorSpace::Kind::Known:
    case ColorSpace::Kind::Stated:
      return space.name;
    case ColorSpace::Kind::Named:
      return "\"" + space.name + "\"";
    case ColorSpace::Kind::Profile:
      return space.name.empty() ? "its ICC profile" : "the profile \"" + space.name + "\"";
    case ColorSpace::Kind::Described:
      break;
  }
  return space.isLinear ? "linear light of the primaries that it states" : "the gamma and primaries that it states";
}

}  // namespace host
