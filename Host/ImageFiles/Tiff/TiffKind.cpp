// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Tiff/TiffKind.h"

#include <algorithm>
#include <iterator>

namespace host::tiff {
namespace {

constexpr std::uint16_t kCompressions[] = {COMPRESSION_NONE,    COMPRESSION_LZW,  COMPRESSION_ADOBE_DEFLATE,
                                           COMPRESSION_DEFLATE, COMPRESSION_ZSTD, COMPRESSION_LZMA,
                                           COMPRESSION_PACKBITS};

bool findSamples(const TiffFile& file, Stored* stored) {
  const auto bits = file.field<std::uint16_t>(TIFFTAG_BITSPERSAMPLE);
  const auto format = file.field<std::uint16_t>(TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
  if (format == SAMPLEFORMAT_UINT && (bits == 8 || bits == 16)) {
    *stored = bits == 8 ? Stored::UInt8 : Stored::UInt16;
    return true;
  }
  *stored = bits == 16 ? Stored::Half : Stored::Float;
  return format == SAMPLEFORMAT_IEEEFP && (bits == 16 || bits == 32);
}

bool findChannels(const TiffFile& file, Kind* kind) {
  std::uint16_t photometric = 0;
  if (TIFFGetField(file.get(), TIFFTAG_PHOTOMETRIC, &photometric) != 1) return false;
  const bool isGray = photometric == PHOTOMETRIC_MINISBLACK;
  if (!isGray && photometric != PHOTOMETRIC_RGB) return false;
  const unsigned samples = file.field<std::uint16_t>(TIFFTAG_SAMPLESPERPIXEL, 1);
  const unsigned colors = isGray ? 1 : 3;
  std::uint16_t extraCount = 0;
  std::uint16_t* extras = nullptr;
  TIFFGetFieldDefaulted(file.get(), TIFFTAG_EXTRASAMPLES, &extraCount, &extras);
  kind->channels = isGray ? Channels::Gray : Channels::RGB;
  if (samples == colors) return extraCount == 0;
  if (samples != colors + 1 || extraCount != 1) return false;
  kind->channels = isGray ? Channels::GrayAlpha : Channels::RGBA;
  kind->alpha = extras[0] == EXTRASAMPLE_ASSOCALPHA ? AlphaKind::Premultiplied : AlphaKind::Straight;
  return extras[0] == EXTRASAMPLE_ASSOCALPHA || extras[0] == EXTRASAMPLE_UNASSALPHA;
}

// Fields by which a picture is part of a larger one, or more than a picture.
bool isPlain(const TiffFile& file) {
  float position = 0;
  for (const std::uint32_t tag : {TIFFTAG_XPOSITION, TIFFTAG_YPOSITION}) {
    if (TIFFGetField(file.get(), tag, &position) == 1 && position != 0) return false;
  }
  std::uint32_t size = 0;
  for (const std::uint32_t tag : {TIFFTAG_PIXAR_IMAGEFULLWIDTH, TIFFTAG_PIXAR_IMAGEFULLLENGTH}) {
    if (TIFFGetField(file.get(), tag, &size) == 1) return false;
  }
  return file.field<std::uint32_t>(TIFFTAG_IMAGEDEPTH, 1) == 1 &&
         file.field<std::uint16_t>(TIFFTAG_FILLORDER, FILLORDER_MSB2LSB) == FILLORDER_MSB2LSB;
}

}  // namespace

bool findKind(const TiffFile& file, Kind* kind) {
  kind->width = file.field<std::uint32_t>(TIFFTAG_IMAGEWIDTH);
  kind->height = file.field<std::uint32_t>(TIFFTAG_IMAGELENGTH);
  kind->isPlanar = file.field<std::uint16_t>(TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) == PLANARCONFIG_SEPARATE;
  kind->isTiled = TIFFIsTiled(file.get()) != 0;
  if (kind->isTiled) {
    kind->tileWidth = file.field<std::uint32_t>(TIFFTAG_TILEWIDTH);
    kind->tileHeight = file.field<std::uint32_t>(TIFFTAG_TILELENGTH);
    if (kind->tileWidth == 0 || kind->tileHeight == 0) return false;
  }
  const auto compression = file.field<std::uint16_t>(TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  return kind->width > 0 && kind->height > 0 &&
         std::find(std::begin(kCompressions), std::end(kCompressions), compression) != std::end(kCompressions) &&
         findSamples(file, &kind->stored) && findChannels(file, kind) && isPlain(file);
}

}  // namespace host::tiff
