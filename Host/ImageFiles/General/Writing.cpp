// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/General/Writing.h"

#include "Host/ImageFiles/General/LibraryFile.h"
#include "Host/ImageFiles/General/Metadata.h"
#include "Host/ImageFiles/General/PortableAnymap.h"
#include "Platform/Foundation/NSReason.h"

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace host {
namespace {

const char* libraryName(FileFormat format) {
  switch (format) {
    case FileFormat::WebP:
      return "webp";
    case FileFormat::Bmp:
      return "bmp";
    case FileFormat::Targa:
      return "targa";
    case FileFormat::Dpx:
      return "dpx";
    case FileFormat::Hdr:
      return "hdr";
    case FileFormat::Jpeg2000:
      return "jpeg2000";
    default:
      return "heif";
  }
}

std::string withQuality(const std::string& method, int quality) {
  return quality < 0 ? method : method + ":" + std::to_string(quality);
}

void setFormatAttributes(const WriteRequest& request, OIIO::ImageSpec* spec) {
  // The library stamps files with the time unless they have one. One that is no text is not written: equal pictures
  // make equal files.
  spec->attribute("DateTime", 0);
  spec->attribute("oiio:UnassociatedAlpha", request.alpha == AlphaKind::Straight ? 1 : 0);
  const WriteSettings& settings = request.settings;
  if (!settings.compression.empty()) {
    spec->attribute("compression", withQuality(settings.compression, settings.quality));
  } else if (request.format == FileFormat::WebP) {
    spec->attribute("compression", withQuality("webp", settings.quality < 0 ? 95 : settings.quality));
  } else if (request.format == FileFormat::Heif) {
    spec->attribute("compression", withQuality("heic", settings.quality < 0 ? 90 : settings.quality));
  } else if (request.format == FileFormat::Targa) {
    spec->attribute("compression", "rle");
  }
}

// Where the library writes: through its own interface where the format takes that, into a file in memory otherwise.
class LibraryTarget {
 public:
  ~LibraryTarget() {
    if (descriptor_ >= 0) close(descriptor_);
  }

  // The name to open; empty when there is no memory.
  std::string prepare(OIIO::ImageOutput& output) {
    // The name's extension decides what a JPEG 2000 becomes.
    if (output.supports("ioproxy") && output.set_ioproxy(&proxy_)) return "image.jp2";
    descriptor_ = memfd_create("image", MFD_CLOEXEC);
    return descriptor_ < 0 ? "" : "/proc/self/fd/" + std::to_string(descriptor_);
  }

  bool copyTo(OutputBytes& output) {
    if (descriptor_ < 0) return output.write(0, proxy_.buffer());
    std::vector<std::uint8_t> block(std::size_t{1} << 20);
    for (std::uint64_t offset = 0;;) {
      const ssize_t count = pread(descriptor_, block.data(), block.size(), static_cast<off_t>(offset));
      if (count < 0) return false;
      if (count == 0) return true;
      if (!output.write(offset, std::span(block).first(static_cast<std::size_t>(count)))) return false;
      offset += static_cast<std::uint64_t>(count);
    }
  }

 private:
  OIIO::Filesystem::IOVecOutput proxy_;
  int descriptor_ = -1;
};

bool writeRows(const WriteRequest& request, PixelRows& rows, OIIO::ImageOutput& output) {
  constexpr std::size_t room = 4096;  // HEIF is written from rows as long as the encoder's own, which has them padded
  const OIIO::TypeDesc type = typeOf(request.sample);
  const std::size_t size = channelCount(request.channels) * bytesPerSample(request.sample) * request.width;
  std::vector<std::byte> row(size + room);
  for (std::uint32_t y = 0; y < request.height; ++y) {
    std::memcpy(row.data(), rows.row(y), size);
    if (!output.write_scanline(static_cast<int>(y), 0, type, row.data())) return false;
  }
  return true;
}

}  // namespace

bool writeImage(const WriteRequest& request, PixelRows& rows, OutputBytes& bytes, std::string* reason) {
  if (isPortableAnymap(request.format)) return writePortableAnymap(request, rows, bytes, reason);
  const OIIO::TypeDesc stored = request.depth == Depth::Half ? OIIO::TypeDesc::HALF : typeOf(request.sample);
  OIIO::ImageSpec spec(static_cast<int>(request.width), static_cast<int>(request.height),
                       static_cast<int>(channelCount(request.channels)), stored);
  if (request.metadata) setMetadata(*request.metadata, &spec);
  setFormatAttributes(request, &spec);
  const auto output = OIIO::ImageOutput::create(libraryName(request.format));
  if (!output) return NSRefuse(reason, OIIO::geterror());
  LibraryTarget target;
  const std::string name = target.prepare(*output);
  // No short cut: each of the steps may fail, and the file is complete only after the last.
  if (name.empty() || !output->open(name, spec) || !writeRows(request, rows, *output) || !output->close()) {
    return NSRefuse(reason, cleanedMessage(output->geterror()));
  }
  return target.copyTo(bytes) || NSRefuse(reason, "not all of it could be written");
}

}  // namespace host
