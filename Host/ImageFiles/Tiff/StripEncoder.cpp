// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Tiff/StripEncoder.h"

#include "Host/ImageFiles/Tiff/TiffFile.h"
#include "Platform/Foundation/NSReason.h"

#include <algorithm>
#include <iterator>
#include <new>
#include <string_view>

namespace host::tiff {
namespace {

struct Compression {
  std::string_view name;
  std::uint16_t number;
  bool takesDifferences;
  std::uint32_t levelTag;  // 0 without levels
  int lowestLevel;
  int highestLevel;
};
constexpr Compression kCompressions[] = {
    {"none", COMPRESSION_NONE, false, 0, 0, 0},
    {"lzw", COMPRESSION_LZW, true, 0, 0, 0},
    {"deflate", COMPRESSION_ADOBE_DEFLATE, true, TIFFTAG_ZIPQUALITY, 1, 12},
    {"packbits", COMPRESSION_PACKBITS, false, 0, 0, 0},
    {"zstd", COMPRESSION_ZSTD, true, TIFFTAG_ZSTD_LEVEL, 1, 22},
};

constexpr int kDefaultDeflateLevel = 4;

}  // namespace

bool methodOf(const WriteRequest& request, Method* method, std::string* reason) {
  const std::string_view name =
      request.settings.compression.empty() ? "none" : std::string_view(request.settings.compression);
  const auto* const found = std::find_if(std::begin(kCompressions), std::end(kCompressions),
                                         [name](const Compression& compression) { return compression.name == name; });
  if (found == std::end(kCompressions)) {
    std::string list;
    for (const Compression& known : kCompressions) list += (list.empty() ? "" : ", ") + std::string(known.name);
    return NSRefuse(reason, "TIFF has no compression \"" + std::string(name) + "\"; it has " + list);
  }
  method->compression = found->number;
  if (found->takesDifferences) {
    method->predictor = request.sample == SampleType::Float ? PREDICTOR_FLOATINGPOINT : PREDICTOR_HORIZONTAL;
  }
  method->level = request.settings.level;
  if (method->level >= 0 && found->levelTag == 0) {
    return NSRefuse(reason, "the compression \"" + std::string(name) + "\" has no levels");
  }
  if (method->level >= 0 && (method->level < found->lowestLevel || method->level > found->highestLevel)) {
    return NSRefuse(reason, "the compression \"" + std::string(name) + "\" has no level " +
                                std::to_string(method->level) + "; its levels are " +
                                std::to_string(found->lowestLevel) + " to " + std::to_string(found->highestLevel));
  }
  if (method->level < 0 && found->number == COMPRESSION_ADOBE_DEFLATE) method->level = kDefaultDeflateLevel;
  return true;
}

// The library writes files, not strips: each is the only one of a file in memory.
bool encodeStrip(const Strip& strip, const Method& method, std::span<std::uint8_t> samples,
                 std::vector<std::uint8_t>* stored, std::string* reason) {
  TiffFile file;
  TIFF* const tiff = file.get();
  if (!tiff) throw std::bad_alloc();
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, strip.width);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, strip.rows);
  TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, strip.rows);
  TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, strip.samplesPerPixel);
  TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, strip.bitsPerSample);
  TIFFSetField(tiff, TIFFTAG_SAMPLEFORMAT, strip.isFloat ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_UINT);
  TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
  TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
  bool isSet = TIFFSetField(tiff, TIFFTAG_COMPRESSION, method.compression) == 1;
  if (method.predictor != 1) isSet = isSet && TIFFSetField(tiff, TIFFTAG_PREDICTOR, method.predictor) == 1;
  for (const Compression& known : kCompressions) {
    if (known.number == method.compression && known.levelTag != 0 && method.level >= 0) {
      TIFFSetField(tiff, known.levelTag, method.level);
    }
  }
  const auto size = static_cast<tmsize_t>(samples.size());
  if (!isSet || TIFFWriteEncodedStrip(tiff, 0, samples.data(), size) != size || file.hasFailed()) {
    return NSRefuse(reason, file.error().empty() ? "it could not be compressed" : file.error());
  }
  const auto start = file.written().begin() + static_cast<std::ptrdiff_t>(TIFFGetStrileOffset(tiff, 0));
  stored->assign(start, start + static_cast<std::ptrdiff_t>(TIFFGetStrileByteCount(tiff, 0)));
  return true;
}

}  // namespace host::tiff
