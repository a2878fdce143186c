// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/OutputTag.h"

#include "Host/Color/IccProfile.h"
#include "Host/Color/KnownSpaces.h"
#include "Host/Files/FileFormat.h"

namespace host {
namespace {

bool isKnown(const ColorSpace& space, KnownSpace known) {
  return space.kind == ColorSpace::Kind::Known && space.known == known;
}

OutputTag exrTag(const ColorSpace& space) {
  OutputTag result;
  if (space.kind == ColorSpace::Kind::Known) {
    const KnownSpaceFacts& facts = factsOf(space.known);
    if (facts.interopId) result.tag.name = facts.interopId;
    if (space.isLinear || facts.interopId) result.tag.primaries = facts.primaries;
    result.isComplete = result.tag.primaries.has_value();
  } else if (space.kind == ColorSpace::Kind::Described && space.isLinear) {
    result.tag.primaries = space.primaries;
  } else {
    result.isComplete = false;
  }
  return result;
}

// Code points alone: what a codec's bitstream and a container hold.
OutputTag clipTag(const ColorSpace& space) {
  OutputTag result;
  if (space.kind == ColorSpace::Kind::Known) result.tag.codePoints = factsOf(space.known).codePoints;
  if (space.kind == ColorSpace::Kind::Stated) result.tag.codePoints = space.codes;
  result.isComplete = result.tag.codePoints.has_value();
  return result;
}

ColorTag pngSRgbTag() {
  ColorTag tag;
  tag.sRGBIntent = 0;  // perceptual
  tag.gamma = 0.45455;
  tag.primaries = factsOf(KnownSpace::SRgb).primaries;
  return tag;
}

}  // namespace

OutputTag tagOfSpace(const ColorSpace& space, FileFormat format, std::optional<bool> isGray) {
  OutputTag result;
  if (space.kind == ColorSpace::Kind::Raw) return result;
  if (format == FileFormat::Exr) return exrTag(space);
  if (format == FileFormat::Clip) return clipTag(space);
  if (isKnown(space, KnownSpace::SRgb)) {
    if (format == FileFormat::Png) result.tag = pngSRgbTag();
    return result;
  }
  if (format == FileFormat::Png && space.kind == ColorSpace::Kind::Known) {
    result.tag.codePoints = factsOf(space.known).codePoints;
  }
  const bool isStated = space.kind == ColorSpace::Kind::Stated;
  if (format == FileFormat::Png && isStated) result.tag.codePoints = space.codes;
  const bool hasProfile = !isStated && space.kind != ColorSpace::Kind::Named;
  const bool takesProfile = hasProfile && traitsOf(format).holdsProfiles && isGray.value_or(false) == space.isGray;
  if (takesProfile && space.kind == ColorSpace::Kind::Profile) {
    result.tag.iccProfile = *space.profile;
  } else {
    result.needsProfile = takesProfile;
  }
  result.isComplete = takesProfile || result.tag.codePoints;
  return result;
}

bool dropForeignProfile(ColorTag* tag, std::optional<bool> isGray) {
  if (tag->iccProfile.empty()) return false;
  const auto summary = readIccProfile(tag->iccProfile, nullptr);
  if (summary && summary->isGray == isGray.value_or(summary->isGray)) return false;
  if (summary && !tag->codePoints) *tag = {};
  tag->iccProfile.clear();
  return true;
}

std::optional<ColorTag> keptTag(const ColorTag& stated, const ColorSpace& space, FileFormat format,
                                std::optional<bool> isGray) {
  ColorTag tag = stated;
  dropForeignProfile(&tag, isGray);
  const bool isOfPng = tag.codePoints || !tag.iccProfile.empty() || tag.sRGBIntent || tag.gamma;
  ColorTag kept;
  if (format == FileFormat::Png) {
    // Primaries alone mean light in an EXR file, and display values here.
    if (!isOfPng && (space.isLinear || !tag.primaries)) return std::nullopt;
    tag.name.clear();
    return tag;
  }
  if (format == FileFormat::Exr) {
    if (isOfPng || (!tag.primaries && tag.name.empty())) return std::nullopt;
    kept.primaries = tag.primaries;
    kept.name = tag.name;
    return kept;
  }
  if (format == FileFormat::Clip) {
    if (!tag.codePoints) return std::nullopt;
    kept.codePoints = tag.codePoints;
    return kept;
  }
  if (tag.iccProfile.empty() || !traitsOf(format).holdsProfiles) return std::nullopt;
  kept.iccProfile = tag.iccProfile;
  return kept;
}

}  // namespace host
