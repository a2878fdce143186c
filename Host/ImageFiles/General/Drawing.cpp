// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/General/Drawing.h"

#include "Platform/Foundation/NSReason.h"

#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>

namespace host {

bool drawTextInImage(const DrawingSurface& surface, int x, int baseline, const std::string& text,
                     const TextStyle& style, std::string* reason) {
  OIIO::ImageSpec spec(static_cast<int>(surface.width), static_cast<int>(surface.height), 4, OIIO::TypeDesc::UINT8);
  spec.alpha_channel = 3;
  OIIO::ImageBuf buffer(spec, surface.pixels);
  const float color[] = {style.gray, style.gray, style.gray, 1.0f};
  const bool drawn =
      OIIO::ImageBufAlgo::render_text(buffer, x, baseline, text, style.pixelSize, style.fontFile, color,
                                      OIIO::ImageBufAlgo::TextAlignX::Center, OIIO::ImageBufAlgo::TextAlignY::Baseline);
  return drawn || NSRefuse(reason, buffer.geterror());
}

int widthOfText(const std::string& text, const TextStyle& style) {
  const OIIO::ROI extent = OIIO::ImageBufAlgo::text_size(text, style.pixelSize, style.fontFile);
  return extent.defined() ? extent.width() : -1;
}

}  // namespace host
