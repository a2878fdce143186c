// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Tiff/TiffWriter.h"

#include "Host/ImageFiles/ByteWriter.h"
#include "Host/ImageFiles/HalfFloat.h"
#include "Host/ImageFiles/Tiff/StripEncoder.h"
#include "Host/ImageFiles/Tiff/TiffDirectories.h"
#include "Platform/Foundation/NSReason.h"

#include <tiff.h>

#include <algorithm>
#include <cstring>

namespace host::tiff {
namespace {

constexpr std::size_t kBytesOfStrip = 1 << 18;
constexpr const char* kNotWritten = "it could not be written";

class TiffWriter {
 public:
  TiffWriter(const WriteRequest& request, const Method& method, PixelRows& rows, OutputBytes& output,
             const Reach& reach)
      : request_(request), method_(method), rows_(rows), output_(output), reach_(reach) {
    strip_.width = request.width;
    strip_.samplesPerPixel = static_cast<std::uint16_t>(channelCount(request.channels));
    strip_.bitsPerSample = static_cast<std::uint16_t>(8 * sampleSize());
    strip_.isFloat = request.sample == SampleType::Float;
    rowSize_ = std::size_t{request.width} * strip_.samplesPerPixel * sampleSize();
    rowsOfStrip_ = static_cast<std::uint32_t>(std::clamp<std::size_t>(kBytesOfStrip / rowSize_, 1, request.height));
    isBig_ = largestSize() > reach.farthest;
  }

  bool write(std::string* reason) {
    at_ = isBig_ ? 16 : 8;
    for (std::uint32_t top = 0; top < request_.height; top += strip_.rows) {
      strip_.rows = std::min(rowsOfStrip_, request_.height - top);
      if (!writeStrip(top, reason)) return false;
    }
    static const FileMetadata none;
    const FileMetadata& metadata = request_.metadata ? *request_.metadata : none;
    std::vector<Field> fields = descriptiveFields(metadata, request_.channels);
    addStructure(&fields);
    const Directories directories = directoriesAt(at_, std::move(fields), metadata, isBig_);
    if (!isInReach(directories.bytes.size(), reason)) return false;
    return (output_.write(at_, directories.bytes) && output_.write(0, header(directories.first))) ||
           NSRefuse(reason, kNotWritten);
  }

 private:
  std::size_t sampleSize() const { return request_.depth == Depth::Half ? 2 : bytesPerSample(request_.sample); }

  // With room for what compression may add: LZW's codes have up to twelve bits, most of them for single bytes in noise.
  std::uint64_t largestSize() const {
    const std::uint64_t pixels = std::uint64_t{rowSize_} * request_.height;
    return pixels + pixels / (method_.compression == COMPRESSION_LZW ? 2 : 16) + reach_.margin;
  }

  bool isInReach(std::uint64_t size, std::string* reason) const {
    return isBig_ || at_ + size <= reach_.farthest ||
           NSRefuse(reason, "it became larger than its 32-bit places reach, which are up to " +
                                std::to_string(reach_.farthest) + " bytes");
  }

  bool writeStrip(std::uint32_t top, std::string* reason) {
    samples_.resize(rowSize_ * strip_.rows);
    std::uint8_t* to = samples_.data();
    for (std::uint32_t y = top; y < top + strip_.rows; ++y, to += rowSize_) storeRow(rows_.row(y), to);
    std::span<const std::uint8_t> stored = samples_;
    if (method_.compression != COMPRESSION_NONE) {
      if (!encodeStrip(strip_, method_, samples_, &stored_, reason)) return false;
      stored = stored_;
    }
    if (!isInReach(stored.size(), reason)) return false;
    offsets_.push_back(at_);
    sizes_.push_back(stored.size());
    if (!output_.write(at_, stored)) return NSRefuse(reason, kNotWritten);
    at_ += stored.size();
    return true;
  }

  void storeRow(const std::byte* row, std::uint8_t* to) {
    if (request_.depth != Depth::Half) {
      std::memcpy(to, row, rowSize_);
      return;
    }
    halves_.resize(rowSize_ / 2);
    floatsToHalves(reinterpret_cast<const float*>(row), halves_.size(), halves_.data());
    std::memcpy(to, halves_.data(), rowSize_);
  }

  void addStructure(std::vector<Field>* fields) const {
    const std::uint16_t samples = strip_.samplesPerPixel;
    const std::uint16_t format = strip_.isFloat ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_UINT;
    const std::uint16_t photometric = isGray(request_.channels) ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
    fields->push_back(longField(TIFFTAG_IMAGEWIDTH, {request_.width}, false));
    fields->push_back(longField(TIFFTAG_IMAGELENGTH, {request_.height}, false));
    fields->push_back(shortField(TIFFTAG_BITSPERSAMPLE, std::vector<std::uint16_t>(samples, strip_.bitsPerSample)));
    fields->push_back(shortField(TIFFTAG_COMPRESSION, {method_.compression}));
    fields->push_back(shortField(TIFFTAG_PHOTOMETRIC, {photometric}));
    fields->push_back(longField(TIFFTAG_STRIPOFFSETS, offsets_, isBig_));
    fields->push_back(shortField(TIFFTAG_ORIENTATION, {ORIENTATION_TOPLEFT}));
    fields->push_back(shortField(TIFFTAG_SAMPLESPERPIXEL, {samples}));
    fields->push_back(longField(TIFFTAG_ROWSPERSTRIP, {rowsOfStrip_}, false));
    fields->push_back(longField(TIFFTAG_STRIPBYTECOUNTS, sizes_, isBig_));
    fields->push_back(shortField(TIFFTAG_PLANARCONFIG, {PLANARCONFIG_CONTIG}));
    fields->push_back(shortField(TIFFTAG_SAMPLEFORMAT, std::vector<std::uint16_t>(samples, format)));
    if (method_.predictor != PREDICTOR_NONE) fields->push_back(shortField(TIFFTAG_PREDICTOR, {method_.predictor}));
    if (hasAlpha(request_.channels)) {
      const bool isPremultiplied = request_.alpha == AlphaKind::Premultiplied;
      const std::uint16_t kind = isPremultiplied ? EXTRASAMPLE_ASSOCALPHA : EXTRASAMPLE_UNASSALPHA;
      fields->push_back(shortField(TIFFTAG_EXTRASAMPLES, {kind}));
    }
  }

  Bytes header(std::uint64_t firstDirectory) const {
    ByteWriter header;
    header.number('I', 1);
    header.number('I', 1);
    header.number(isBig_ ? 43 : 42, 2);
    if (isBig_) {
      header.number(8, 2);  // bytes of a place
      header.number(0, 2);
    }
    header.number(firstDirectory, isBig_ ? 8 : 4);
    return header.take();
  }

  const WriteRequest& request_;
  Method method_;
  PixelRows& rows_;
  OutputBytes& output_;
  Reach reach_;
  Strip strip_;
  std::size_t rowSize_ = 0;
  std::uint32_t rowsOfStrip_ = 1;
  bool isBig_ = false;
  std::uint64_t at_ = 0;
  std::vector<std::uint64_t> offsets_;
  std::vector<std::uint64_t> sizes_;
  std::vector<std::uint8_t> samples_;
  std::vector<std::uint16_t> halves_;
  std::vector<std::uint8_t> stored_;
};

}  // namespace

bool writeTiff(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason,
               const Reach& reach) {
  Method method;
  if (!methodOf(request, &method, reason)) return false;
  if (request.width == 0 || request.height == 0 || request.width > std::uint32_t{1} << 27) {
    return NSRefuse(reason, "TIFF does not hold pictures of " + std::to_string(request.width) + " x " +
                                std::to_string(request.height) + " pixels");
  }
  return TiffWriter(request, method, rows, output, reach).write(reason);
}

}  // namespace host::tiff
