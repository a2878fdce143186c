// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Drawing.h"

#include "Platform/Foundation/NSReason.h"

#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>

namespace host {
namespace {

// An image buffer of the library over our own pixels.
OIIO::ImageBuf wrapped(const ImagePixels& image) {
  const OIIO::TypeDesc type = image.sample == SampleType::UInt8    ? OIIO::TypeDesc::UINT8
                              : image.sample == SampleType::UInt16 ? OIIO::TypeDesc::UINT16
                                                                   : OIIO::TypeDesc::FLOAT;
  OIIO::ImageSpec spec(static_cast<int>(image.width), static_cast<int>(image.height), 4, type);
  spec.alpha_channel = 3;
  return OIIO::ImageBuf(spec, image.bytes.get());
}

}  // namespace

bool resizeImage(const ImagePixels& source, ImagePixels* target, std::string* reason) {
  allocatePixels(*target);
  const OIIO::ImageBuf from = wrapped(source);
  OIIO::ImageBuf to = wrapped(*target);
  if (!OIIO::ImageBufAlgo::resize(to, from, "lanczos3")) {
    return NSRefuse(reason, to.geterror());
  }
  return true;
}

bool drawTextInImage(ImagePixels* image, int x, int baseline, const std::string& text, const TextStyle& style,
                     std::string* reason) {
  OIIO::ImageBuf buffer = wrapped(*image);
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
