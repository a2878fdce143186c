// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Png/Reading.h"

#include "Host/ImageFiles/Damaged.h"
#include "Host/ImageFiles/Exif.h"
#include "Host/ImageFiles/Guarded.h"
#include "Host/ImageFiles/Png/Deflate.h"
#include "Host/ImageFiles/Png/Filters.h"
#include "Host/ImageFiles/Png/Metadata.h"
#include "Host/ImageFiles/Png/Samples.h"

#include <cstring>
#include <utility>

namespace host {
namespace {

constexpr std::uint64_t kLargestExpansion = 1032;  // of deflate: 258 bytes for two bits

constexpr std::size_t kLargestExcess = std::size_t{1} << 16;

class PngReader : public ImageReader {
 public:
  bool open(std::span<const std::uint8_t> file, std::string* reason) {
    if (file.size() < sizeof kPngSignature || std::memcmp(file.data(), kPngSignature, sizeof kPngSignature) != 0) {
      return NSRefuse(reason, "it is not a PNG file");
    }
    if (!readChunks(file) || !isEnoughStored()) return NSRefuse(reason, kDamaged);
    takeExifResolution(info_.metadata.exif, &info_.metadata);
    expander_.emplace(header_, palette_, transparency_);
    info_.width = header_.width;
    info_.height = header_.height;
    const bool is16 = header_.bitDepth == 16;
    info_.sample = is16 ? SampleType::UInt16 : SampleType::UInt8;
    info_.depth = is16 ? Depth::Bits16 : Depth::Bits8;
    info_.alpha = expander_->hasAlpha() ? AlphaKind::Straight : AlphaKind::None;
    const bool isGray = header_.color == PngColor::Gray || header_.color == PngColor::GrayAlpha;
    info_.channels = isGray ? (expander_->hasAlpha() ? Channels::GrayAlpha : Channels::Gray)
                            : (expander_->hasAlpha() ? Channels::RGBA : Channels::RGB);
    return true;
  }

  bool readPixels(std::byte* pixels, std::size_t rowBytes, std::string* reason) override {
    return guarded(reason, [&] { return decode(pixels, rowBytes) || NSRefuse(reason, kDamaged); });
  }

 private:
  bool decode(std::byte* pixels, std::size_t rowBytes) const {
    const Bytes joined = joinedStream();
    const auto stream = parts_.size() == 1 ? parts_[0] : std::span<const std::uint8_t>(joined);
    switch (isInflatedInPlace(rowBytes) ? readInPlace(stream, pixels, rowBytes)
                                        : readThroughMemory(stream, pixels, rowBytes)) {
      case Inflated::Whole:
        return true;
      case Inflated::TooMuch:
        return readBeginning(stream, pixels, rowBytes);
      case Inflated::Damaged:
        break;
    }
    return false;
  }

  // False when a chunk that is needed is damaged, missing, or not known.
  bool readChunks(std::span<const std::uint8_t> file) {
    PngChunks chunks(file);
    PngChunk chunk;
    if (!chunks.next(&chunk)) return false;
    const auto header = readPngHeader(chunk);
    if (!header) return false;
    header_ = *header;
    std::uint32_t before = chunk.type;
    for (; chunks.next(&chunk); before = chunk.type) {
      if (chunk.type == pngType("IEND")) return isComplete();
      if (!readChunk(chunk, before == pngType("IDAT"))) return false;
    }
    return false;
  }

  bool readChunk(const PngChunk& chunk, bool isBehindPixels) {
    switch (chunk.type) {
      case pngType("IDAT"):
        if (parts_.empty() || isBehindPixels) parts_.push_back(chunk.data);  // others belong to nothing
        return true;
      case pngType("PLTE"):
        return readPalette(chunk);
      case pngType("tRNS"):
        if (parts_.empty() && transparency_.empty() && isTransparency(chunk)) transparency_ = chunk.data;
        return true;
      case pngType("iCCP"):  // each may be inflated to much: one alone is looked at, also where it is of no use
        if (std::exchange(hasProfile_, true)) return true;
        break;
      default:
        break;
    }
    const bool isInPlace = parts_.empty() || chunk.type == pngType("eXIf");
    return (isInPlace && readPngMetadata(chunk, &info_.metadata, &info_.orientation)) || !chunk.isCritical();
  }

  // Where it is only a suggestion it is passed over.
  bool readPalette(const PngChunk& chunk) {
    if (header_.color != PngColor::Palette) return true;
    if (!palette_.empty() || chunk.data.empty() || chunk.data.size() > 768 || chunk.data.size() % 3 != 0) return false;
    palette_ = chunk.data;
    return true;
  }

  bool isTransparency(const PngChunk& chunk) const {
    switch (header_.color) {
      case PngColor::Palette:
        return !palette_.empty() && chunk.data.size() <= palette_.size() / 3;
      case PngColor::Gray:
        return chunk.data.size() == 2;
      case PngColor::RGB:
        return chunk.data.size() == 6;
      default:
        return false;
    }
  }

  bool isComplete() const { return !parts_.empty() && (header_.color != PngColor::Palette || !palette_.empty()); }

  std::uint64_t inflatedBytes() const {
    std::uint64_t bytes = 0;
    for (const PngPass& pass : pngPasses(header_)) bytes += pass.storedBytes(header_);
    return bytes;
  }

  bool isEnoughStored() const {
    std::uint64_t stored = 0;
    for (const auto& part : parts_) stored += part.size();
    return inflatedBytes() / kLargestExpansion <= stored;
  }

  // The compressed bytes in one piece; empty when they are in one already.
  Bytes joinedStream() const {
    Bytes joined;
    if (parts_.size() == 1) return joined;
    std::size_t size = 0;
    for (const auto& part : parts_) size += part.size();
    joined.reserve(size);
    for (const auto& part : parts_) joined.insert(joined.end(), part.begin(), part.end());
    return joined;
  }

  std::size_t targetPixelBytes() const { return 4 * bytesPerSample(info_.sample); }

  // Stored rows that are no longer than the picture's own are inflated to the end of these: a row is read before what
  // becomes of it is written, which never reaches the rows still to be read. What lies between rows is not ours.
  bool isInflatedInPlace(std::size_t rowBytes) const {
    return !header_.isInterlaced && 1 + header_.rowBytes(header_.width) <= rowBytes &&
           rowBytes == header_.width * targetPixelBytes();
  }

  Inflated readInPlace(std::span<const std::uint8_t> stream, std::byte* pixels, std::size_t rowBytes) const {
    const std::size_t size = header_.height * rowBytes;
    const auto stored = static_cast<std::size_t>(inflatedBytes());
    std::uint8_t* const rows = reinterpret_cast<std::uint8_t*>(pixels) + (size - stored);
    const Inflated inflated = inflateInto(stream, {rows, stored});
    return inflated == Inflated::Whole ? restore(rows, pixels, rowBytes) : inflated;
  }

  Inflated readThroughMemory(std::span<const std::uint8_t> stream, std::byte* pixels, std::size_t rowBytes) const {
    const auto size = static_cast<std::size_t>(inflatedBytes());
    const auto rows = std::make_unique_for_overwrite<std::uint8_t[]>(size);
    const Inflated inflated = inflateInto(stream, {rows.get(), size});
    return inflated == Inflated::Whole ? restore(rows.get(), pixels, rowBytes) : inflated;
  }

  // Some programs write a little more than the rows. The library inflates a stream whole or not at all; what it does
  // not touch of the room takes no memory.
  bool readBeginning(std::span<const std::uint8_t> stream, std::byte* pixels, std::size_t rowBytes) const {
    const auto size = static_cast<std::size_t>(inflatedBytes());
    const std::size_t room = 2 * size + kLargestExcess;
    const auto rows = std::make_unique_for_overwrite<std::uint8_t[]>(room);
    const auto held = inflateUpTo(stream, {rows.get(), room});
    return held && *held > size && restore(rows.get(), pixels, rowBytes) == Inflated::Whole;
  }

  Inflated restore(const std::uint8_t* stored, std::byte* pixels, std::size_t rowBytes) const {
    for (const PngPass& pass : pngPasses(header_)) {
      if (!restorePass(pass, stored, pixels, rowBytes)) return Inflated::Damaged;
      stored += pass.storedBytes(header_);
    }
    return Inflated::Whole;
  }

  bool restorePass(const PngPass& pass, const std::uint8_t* stored, std::byte* pixels, std::size_t rowBytes) const {
    const std::size_t width = pass.width(header_);
    const std::size_t height = width == 0 ? 0 : pass.height(header_);
    const auto storedRow = static_cast<std::size_t>(header_.rowBytes(pass.width(header_)));
    Bytes above(storedRow);
    Bytes row(storedRow);
    std::vector<std::byte> expanded(pass.columnStep == 1 ? 0 : width * targetPixelBytes());
    for (std::size_t y = 0; y < height; ++y, stored += 1 + storedRow) {
      if (!unfilterPngRow(stored[0], stored + 1, above.data(), storedRow, header_.pixelBytes(), row.data()))
        return false;
      std::byte* const target = pixels + (pass.firstRow + y * pass.rowStep) * rowBytes;
      if (pass.columnStep == 1) {
        expander_->expand(row.data(), width, target);
      } else {
        expander_->expand(row.data(), width, expanded.data());
        scatter(expanded.data(), width, pass, target);
      }
      std::swap(above, row);
    }
    return true;
  }

  void scatter(const std::byte* row, std::size_t width, const PngPass& pass, std::byte* target) const {
    const std::size_t size = targetPixelBytes();
    for (std::size_t x = 0; x < width; ++x) {
      std::memcpy(target + (pass.firstColumn + x * pass.columnStep) * size, row + x * size, size);
    }
  }

  PngHeader header_;
  bool hasProfile_ = false;
  std::span<const std::uint8_t> palette_;
  std::span<const std::uint8_t> transparency_;
  std::vector<std::span<const std::uint8_t>> parts_;  // of the compressed pixels
  std::optional<PngExpander> expander_;
};

}  // namespace

std::unique_ptr<ImageReader> openPng(std::span<const std::uint8_t> file, std::string* reason) {
  auto reader = std::make_unique<PngReader>();
  return reader->open(file, reason) ? std::move(reader) : nullptr;
}

}  // namespace host
