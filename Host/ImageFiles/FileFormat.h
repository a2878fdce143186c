// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace host {

enum class FileFormat {
  Png,
  Jpeg,
  Tiff,
  Exr,
  WebP,
  Bmp,
  Targa,
  Dpx,
  Hdr,
  Jpeg2000,
  Heif,
  Ppm,
  Pnm,
  Pfm,
  Clip,  // a frame of one, whatever the container and the codec
};

}  // namespace host
