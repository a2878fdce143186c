// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/DisplayPicture.h"

#include "Host/Color/BitmapColors.h"
#include "Host/Color/ColorModuleLoader.h"
#include "Host/Color/ColorPlan.h"
#include "Host/Color/FileSpace.h"
#include "Host/Files/PictureReading.h"
#include "Host/Pixels/Alpha.h"
#include "Host/Pixels/Layouts.h"

namespace host {

BitmapRef readForDisplay(const std::string& path) {
  FilePicture picture = readPicture(path);
  const ColorSpace shown = knownSpace(KnownSpace::SRgb, ColorSpace::Origin::Assumed);
  ColorSpace space = spaceOfFile(*picture.info, !userConfiguration().empty()).space;
  const bool isStated = space.kind == ColorSpace::Kind::Stated;
  if (isStated || (space.kind == ColorSpace::Kind::Profile && !colorModule().checkProfile(space, nullptr))) {
    space = assumedSpace(picture.info->depth);
  }
  if (!needsConversion(space, shown)) {
    MutableBitmapRef bitmap = inDepth(picture.bitmap, SampleType::Float, path);
    if (picture.info->alpha == AlphaKind::Straight) premultiply(*bitmap);
    return bitmap;
  }
  ColorConversion conversion(space, shown);
  return convertedBitmap(conversion, *picture.bitmap, picture.info->alpha, path);
}

}  // namespace host
