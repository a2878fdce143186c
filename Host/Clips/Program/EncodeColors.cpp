// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Clips/Program/EncodeColors.h"

namespace host {
namespace {

constexpr std::uint8_t kUnspecified = 2;

CodePoints statedCodePoints(const ColorTag& tag) {
  CodePoints stated;
  if (tag.codePoints) {
    stated = *tag.codePoints;
  } else if (tag.sRGBIntent) {
    stated = {AVCOL_PRI_BT709, AVCOL_TRC_IEC61966_2_1, 0, true};
  }
  if (stated.primaries == kUnspecified) stated.primaries = AVCOL_PRI_BT709;
  if (stated.transfer == kUnspecified) stated.transfer = AVCOL_TRC_BT709;
  return stated;
}

AVColorSpace matrixOf(std::uint8_t primaries) {
  switch (primaries) {
    case AVCOL_PRI_BT470BG:
      return AVCOL_SPC_BT470BG;
    case AVCOL_PRI_SMPTE170M:
      return AVCOL_SPC_SMPTE170M;
    case AVCOL_PRI_BT2020:
      return AVCOL_SPC_BT2020_NCL;
    default:
      return AVCOL_SPC_BT709;
  }
}

}  // namespace

EncodeColors encodeColors(const ColorTag& tag, const ClipStorage& storage) {
  const CodePoints stated = statedCodePoints(tag);
  const bool isRgb = storage.sampling == "rgb";
  return {static_cast<AVColorPrimaries>(stated.primaries), static_cast<AVColorTransferCharacteristic>(stated.transfer),
          isRgb ? AVCOL_SPC_RGB : matrixOf(stated.primaries), isRgb ? AVCOL_RANGE_JPEG : AVCOL_RANGE_MPEG};
}

}  // namespace host
