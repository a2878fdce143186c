// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/ClipFormats.h"
#include "Host/ImageFiles/FileMetadata.h"

extern "C" {
#include <libavutil/pixfmt.h>
}

namespace host {

// How a clip states its colors, by ITU-T H.273.
struct EncodeColors {
  AVColorPrimaries primaries = AVCOL_PRI_BT709;
  AVColorTransferCharacteristic transfer = AVCOL_TRC_BT709;
  AVColorSpace matrix = AVCOL_SPC_BT709;
  AVColorRange range = AVCOL_RANGE_MPEG;
};

// Rec. 709 where the metadata says nothing. What is stored as YUV has the matrix that goes with the primaries and
// limited range, RGB has no matrix and its whole range.
EncodeColors encodeColors(const ColorTag& tag, const ClipStorage& storage);

}  // namespace host
