// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCColor.h"

namespace {

void finishOutput(VortoBitmap& bitmap, bool opaque, bool alphaToGray) {
  if (alphaToGray) {
    bitmap.duplicateAlphaToRGB();
  } else if (opaque) {
    bitmap.setConstantAlpha(1.0);
  }
}

}  // namespace

void VortoBitmap::copyWithOutputConversion(const VortoBitmap& source, bool unpremultiplied, bool opaque,
                                           bool alphaToGray, const VortoColor& background) {
  if (unpremultiplied) {
    copyWithUnPreMult(source, background);
  } else {
    clone(source);
  }
  finishOutput(*this, opaque, alphaToGray);
}

void VortoBitmap::doOutputConversion(bool unpremultiplied, bool opaque, bool alphaToGray,
                                     const VortoColor& background) {
  if (unpremultiplied) unpremultiply(background);
  finishOutput(*this, opaque, alphaToGray);
}
