// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Writing.h"

#include "Platform/Foundation/NSReason.h"

#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>

namespace host {
namespace {

OIIO::TypeDesc typeOf(SampleType sample) {
  switch (sample) {
    case SampleType::UInt8:
      return OIIO::TypeDesc::UINT8;
    case SampleType::UInt16:
      return OIIO::TypeDesc::UINT16;
    case SampleType::Float:
      break;
  }
  return OIIO::TypeDesc::FLOAT;
}

const char* libraryName(FileFormat format) {
  switch (format) {
    case FileFormat::Png:
      return "png";
    case FileFormat::Jpeg:
      return "jpeg";
    case FileFormat::Tiff:
      return "tiff";
    case FileFormat::Exr:
      break;
  }
  return "openexr";
}

void setFormatAttributes(FileFormat format, OIIO::ImageSpec* spec) {
  // The library stamps TIFF and EXR files with the time unless they have one. One that is no text is not written: equal
  // pictures make equal files.
  spec->attribute("DateTime", 0);
  switch (format) {
    case FileFormat::Png:
      spec->attribute("oiio:UnassociatedAlpha", 1);
      break;
    case FileFormat::Jpeg:
      spec->attribute("Compression", "jpeg:95");
      spec->attribute("jpeg:subsampling", "4:4:4");
      break;
    case FileFormat::Tiff:
      spec->attribute("compression", "none");  // what every program reads, and fast; float samples hardly shrink
      break;
    case FileFormat::Exr:
      spec->attribute("compression", "zip");
      break;
  }
}

}  // namespace

bool writeImage(const ImagePixels& image, FileFormat format, Depth depth, std::vector<std::uint8_t>* file,
                std::string* reason) {
  const OIIO::TypeDesc stored = depth == Depth::Half ? OIIO::TypeDesc::HALF : typeOf(image.sample);
  const bool hasAlpha = format != FileFormat::Jpeg;
  OIIO::ImageSpec spec(static_cast<int>(image.width), static_cast<int>(image.height), hasAlpha ? 4 : 3, stored);
  setFormatAttributes(format, &spec);

  const auto output = OIIO::ImageOutput::create(libraryName(format));
  if (!output) {
    return NSRefuse(reason, OIIO::geterror());
  }
  OIIO::Filesystem::IOVecOutput proxy;
  output->set_ioproxy(&proxy);
  const auto pixelSize = static_cast<OIIO::stride_t>(4 * bytesPerSample(image.sample));
  // No short cut: each of the steps may fail, and the file is complete only after the last.
  if (!output->open("image", spec) || !output->write_image(typeOf(image.sample), image.bytes.get(), pixelSize) ||
      !output->close()) {
    return NSRefuse(reason, output->geterror());
  }
  file->assign(proxy.buffer().begin(), proxy.buffer().end());
  return true;
}

}  // namespace host
