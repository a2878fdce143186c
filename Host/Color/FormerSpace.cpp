// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/FormerSpace.h"

#include "Host/ImageFiles/Exif.h"

#include <algorithm>
#include <string_view>

namespace host {
namespace {

// Attributes of EXR headers that hold for one space only.
constexpr std::string_view kOfSpaces[] = {"acesImageContainerFlag", "adoptedNeutral", "oiio:ColorSpace"};

}  // namespace

void forgetFormerSpace(FileMetadata* metadata, const ColorSpace& space) {
  const bool isSRgb = space.kind == ColorSpace::Kind::Known && space.known == KnownSpace::SRgb;
  if (!metadata->exif.empty()) metadata->exif = recoloredExif(metadata->exif, isSRgb);
  std::erase_if(metadata->attributes, [](const HeaderAttribute& attribute) {
    return std::ranges::find(kOfSpaces, attribute.name) != std::end(kOfSpaces);
  });
}

}  // namespace host
