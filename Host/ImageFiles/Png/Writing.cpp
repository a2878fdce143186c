// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Png/Writing.h"

#include "Host/ImageFiles/Png/Deflate.h"
#include "Host/ImageFiles/Png/DeflateStream.h"
#include "Host/ImageFiles/Png/Filters.h"
#include "Host/ImageFiles/Png/Header.h"
#include "Host/ImageFiles/Png/Metadata.h"
#include "Platform/Foundation/NSReason.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace host {
namespace {

constexpr std::size_t kChunkSize = std::size_t{1} << 18;  // about how many compressed bytes make a chunk
constexpr std::size_t kLargestChunk = std::size_t{1} << 30;
constexpr int kHighestLevel = 12;

PngColor colorOf(Channels channels) {
  switch (channels) {
    case Channels::Gray:
      return PngColor::Gray;
    case Channels::GrayAlpha:
      return PngColor::GrayAlpha;
    case Channels::RGB:
      return PngColor::RGB;
    case Channels::RGBA:
      break;
  }
  return PngColor::RGBA;
}

bool isPossible(const WriteRequest& request, std::string* reason) {
  constexpr std::uint32_t kLargestSize = 0x7FFFFFFF;
  const WriteSettings& settings = request.settings;
  if (request.sample == SampleType::Float) return NSRefuse(reason, "PNG holds samples of 8 and 16 bits");
  if (request.alpha == AlphaKind::Premultiplied) return NSRefuse(reason, "PNG holds straight alpha");
  if (std::min(request.width, request.height) == 0 || std::max(request.width, request.height) > kLargestSize) {
    return NSRefuse(reason, "PNG holds 1 to 2147483647 rows and columns");
  }
  if (!settings.compression.empty() && settings.compression != "deflate" && settings.compression != "none") {
    return NSRefuse(reason, "PNG has no compression \"" + settings.compression + "\"; it has deflate and none");
  }
  if (settings.level < -1 || settings.level > kHighestLevel) {
    return NSRefuse(reason, "the levels of deflate are 0 to 12");
  }
  return true;
}

class PngWriter {
 public:
  PngWriter(const WriteRequest& request, PixelRows& rows, OutputBytes& output)
      : request_(request),
        rows_(rows),
        output_(output),
        header_{request.width, request.height, request.sample == SampleType::UInt16 ? 16u : 8u,
                colorOf(request.channels), false},
        rowSize_(static_cast<std::size_t>(header_.rowBytes(request.width))),
        isStored_(request.settings.compression == "none" || request.settings.level == 0),
        filter_(rowSize_, header_.pixelBytes()) {}

  bool write() {
    Bytes start(std::begin(kPngSignature), std::end(kPngSignature));
    appendPngHeader(header_, &start);
    if (request_.metadata != nullptr) appendPngMetadata(*request_.metadata, request_.channels, &start);
    const bool isWhole = !isStored_ && request_.settings.level > 0;
    if (!put(start) || !(isWhole ? writeWhole() : writeAsItComes())) return false;
    Bytes end;
    appendPngChunk(pngType("IEND"), {}, &end);
    return put(end);
  }

 private:
  bool writeAsItComes() {
    DeflateStream stream(isStored_ ? DeflateStream::Method::Stored : DeflateStream::Method::Compressed);
    Bytes filtered(1 + rowSize_);
    for (std::uint32_t y = 0; y < header_.height; ++y) {
      filterRow(y, filtered.data());
      stream.append(filtered);
      if (y + 1 == header_.height) stream.finish();
      if (stream.made().size() < kChunkSize && y + 1 < header_.height) continue;
      if (!putPixels(stream.made())) return false;
      stream.clearMade();
    }
    return true;
  }

  bool writeWhole() {
    Bytes filtered((1 + rowSize_) * header_.height);
    for (std::uint32_t y = 0; y < header_.height; ++y) filterRow(y, &filtered[(1 + rowSize_) * y]);
    return putPixels(deflated(filtered, request_.settings.level));
  }

  void filterRow(std::uint32_t y, std::uint8_t* filtered) {
    const std::byte* row = rows_.row(y);
    if (header_.bitDepth == 16 && std::endian::native == std::endian::little) {
      swapped_.resize(rowSize_);
      for (std::size_t i = 0; i < rowSize_; i += 2) {
        swapped_[i] = row[i + 1];
        swapped_[i + 1] = row[i];
      }
      row = swapped_.data();
    }
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(row);
    if (isStored_) {
      filtered[0] = static_cast<std::uint8_t>(PngFilter::None);
      std::memcpy(filtered + 1, bytes, rowSize_);
    } else {
      filter_.filter(bytes, filtered);
    }
  }

  bool putPixels(std::span<const std::uint8_t> compressed) {
    while (!compressed.empty()) {
      const auto part = compressed.first(std::min(compressed.size(), kLargestChunk));
      chunk_.clear();
      appendPngChunk(pngType("IDAT"), part, &chunk_);
      if (!put(chunk_)) return false;
      compressed = compressed.subspan(part.size());
    }
    return true;
  }

  bool put(std::span<const std::uint8_t> bytes) {
    const std::uint64_t offset = written_;
    written_ += bytes.size();
    return output_.write(offset, bytes);
  }

  const WriteRequest& request_;
  PixelRows& rows_;
  OutputBytes& output_;
  PngHeader header_;
  std::size_t rowSize_;
  bool isStored_;
  PngRowFilter filter_;
  std::vector<std::byte> swapped_;
  Bytes chunk_;
  std::uint64_t written_ = 0;
};

}  // namespace

bool writePng(const WriteRequest& request, PixelRows& rows, OutputBytes& output, std::string* reason) {
  if (!isPossible(request, reason)) return false;
  return PngWriter(request, rows, output).write() || NSRefuse(reason, "it could not be written");
}

}  // namespace host
