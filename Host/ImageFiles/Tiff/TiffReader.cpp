// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Tiff/TiffReader.h"

#include "Host/ImageFiles/Damaged.h"
#include "Host/ImageFiles/Guarded.h"
#include "Host/ImageFiles/Tiff/Inflater.h"
#include "Host/ImageFiles/Tiff/TiffMetadata.h"
#include "Host/ImageFiles/Tiff/TiffSamples.h"
#include "Host/ImageFiles/TiffStructure.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace host::tiff {
namespace {

constexpr std::size_t kLargestStrip = std::size_t{1} << 22;  // of those that are inflated at once
constexpr std::uint64_t kLargestTile = std::uint64_t{1} << 31;

SampleType sampleOf(Stored stored) {
  return stored == Stored::UInt8    ? SampleType::UInt8
         : stored == Stored::UInt16 ? SampleType::UInt16
                                    : SampleType::Float;
}
Depth depthOf(Stored stored) {
  switch (stored) {
    case Stored::UInt8:
      return Depth::Bits8;
    case Stored::UInt16:
      return Depth::Bits16;
    case Stored::Half:
      return Depth::Half;
    case Stored::Float:
      break;
  }
  return Depth::Float;
}

bool refuseDamaged(const TiffFile& file, std::string* reason) {
  return NSRefuse(reason, file.error().empty() ? kDamaged : std::string(kDamaged) + " (" + file.error() + ")");
}

class TiffReader : public ImageReader {
 public:
  TiffReader(std::unique_ptr<TiffFile> file, const Kind& kind, std::span<const std::uint8_t> bytes)
      : file_(std::move(file)), kind_(kind), bytes_(bytes) {
    info_.width = kind.width;
    info_.height = kind.height;
    info_.sample = sampleOf(kind.stored);
    info_.depth = depthOf(kind.stored);
    info_.alpha = kind.alpha;
    info_.channels = kind.channels;
    const auto orientation = file_->field<std::uint16_t>(TIFFTAG_ORIENTATION, 1);
    info_.orientation = orientation >= 1 && orientation <= 8 ? orientation : 1;
    info_.metadata = metadataOf(*file_, bytes);
  }

  bool readPixels(std::byte* pixels, std::size_t rowBytes, std::string* reason) override {
    return guarded(reason, [&] {
      pixels_ = pixels;
      rowBytes_ = rowBytes;
      const bool isRead = kind_.isTiled ? readTiles() : readStrips();
      return (isRead && !file_->hasFailed()) || refuseDamaged(*file_, reason);
    });
  }

 private:
  std::uint16_t planeCount() const {
    return static_cast<std::uint16_t>(kind_.isPlanar ? channelCount(kind_.channels) : 1);
  }
  std::size_t storedPixelSize() const {
    return sizeOf(kind_.stored) * (kind_.isPlanar ? 1 : channelCount(kind_.channels));
  }
  std::byte* pixelAt(std::uint32_t x, std::uint32_t y) const {
    return pixels_ + y * rowBytes_ + std::size_t{4} * x * bytesPerSample(info_.sample);
  }
  void expand(std::size_t plane, const std::uint8_t* stored, std::size_t count, std::byte* to) const {
    kind_.isPlanar ? expandPlane(kind_, plane, stored, count, to) : expandPixels(kind_, stored, count, to);
  }

  bool readStrips() {
    const std::size_t rowSize = storedPixelSize() * kind_.width;
    if (TIFFScanlineSize64(file_->get()) != rowSize) return false;
    Inflater inflater(*file_, kind_, bytes_);
    const auto stated = file_->field<std::uint32_t>(TIFFTAG_ROWSPERSTRIP);
    const std::uint32_t rowsOfStrip = std::clamp<std::uint32_t>(stated, 1, kind_.height);
    for (std::uint16_t plane = 0; plane < planeCount(); ++plane) {
      for (std::uint32_t top = 0, rows = 0; top < kind_.height; top += rows) {
        rows = std::min(rowsOfStrip, kind_.height - top);
        const bool isAtOnce = inflater.isUsed() && (rows == 1 || rowSize * rows <= kLargestStrip);
        if (!(isAtOnce ? inflateStrip(&inflater, plane, top, rows) : readRows(plane, top, rows))) return false;
      }
    }
    return true;
  }

  bool inflateStrip(Inflater* inflater, std::uint16_t plane, std::uint32_t top, std::uint32_t rows) {
    const std::size_t rowSize = storedPixelSize() * kind_.width;
    if (stored_.size() < rowSize * rows) stored_.resize(rowSize * rows);
    const std::uint32_t number = TIFFComputeStrip(file_->get(), top, plane);
    if (!inflater->inflate(number, rowSize, std::span(stored_).first(rowSize * rows))) return false;
    for (std::uint32_t row = 0; row < rows; ++row) {
      expand(plane, stored_.data() + row * rowSize, kind_.width, pixelAt(0, top + row));
    }
    return true;
  }

  // Row by row the library says which strip fails, and needs no memory for a whole one.
  bool readRows(std::uint16_t plane, std::uint32_t top, std::uint32_t rows) {
    const bool isStoredAlike = !kind_.isPlanar && kind_.channels == Channels::RGBA && kind_.stored != Stored::Half;
    if (!isStoredAlike && stored_.empty()) stored_.resize(storedPixelSize() * kind_.width);
    for (std::uint32_t y = top; y < top + rows; ++y) {
      void* const to = isStoredAlike ? static_cast<void*>(pixelAt(0, y)) : stored_.data();
      if (TIFFReadScanline(file_->get(), to, y, plane) != 1) return false;
      if (!isStoredAlike) expand(plane, stored_.data(), kind_.width, pixelAt(0, y));
    }
    return true;
  }

  bool readTiles() {
    const std::size_t rowSize = storedPixelSize() * kind_.tileWidth;
    const std::uint64_t tileSize = std::uint64_t{rowSize} * kind_.tileHeight;
    if (TIFFTileSize64(file_->get()) != tileSize || tileSize > kLargestTile) return false;
    Inflater inflater(*file_, kind_, bytes_);
    stored_.resize(static_cast<std::size_t>(tileSize));
    for (std::uint16_t plane = 0; plane < planeCount(); ++plane) {
      for (std::uint64_t top = 0; top < kind_.height; top += kind_.tileHeight) {
        for (std::uint64_t left = 0; left < kind_.width; left += kind_.tileWidth) {
          const auto x = static_cast<std::uint32_t>(left);
          const auto y = static_cast<std::uint32_t>(top);
          const std::uint32_t number = TIFFComputeTile(file_->get(), x, y, 0, plane);
          const auto size = static_cast<tmsize_t>(tileSize);
          if (inflater.isUsed() ? !inflater.inflate(number, rowSize, stored_)
                                : TIFFReadEncodedTile(file_->get(), number, stored_.data(), size) != size) {
            return false;
          }
          placeTile(plane, stored_.data(), x, y);
        }
      }
    }
    return true;
  }

  void placeTile(std::uint16_t plane, const std::uint8_t* tile, std::uint32_t left, std::uint32_t top) const {
    const std::size_t count = std::min(kind_.tileWidth, kind_.width - left);
    const std::uint32_t rows = std::min(kind_.tileHeight, kind_.height - top);
    for (std::uint32_t row = 0; row < rows; ++row) {
      expand(plane, tile + row * storedPixelSize() * kind_.tileWidth, count, pixelAt(left, top + row));
    }
  }

  std::unique_ptr<TiffFile> file_;
  Kind kind_;
  std::span<const std::uint8_t> bytes_;
  std::vector<std::uint8_t> stored_;  // rows, a strip or a tile
  std::byte* pixels_ = nullptr;
  std::size_t rowBytes_ = 0;
};

}  // namespace

std::unique_ptr<ImageReader> openTiff(const ReadRequest& request, bool* isOtherKind, std::string* reason) {
  if (!isWholeTiff(request.file, DeflatedTiles::Later)) {
    NSRefuse(reason, kDamaged);
    return nullptr;
  }
  auto file = std::make_unique<TiffFile>(request.file);
  if (!file->get()) {
    refuseDamaged(*file, reason);
    return nullptr;
  }
  Kind kind;
  if (!findKind(*file, &kind)) {
    *isOtherKind = true;
    NSRefuse(reason, "its samples are stored in a rarer way");
    return nullptr;
  }
  return std::make_unique<TiffReader>(std::move(file), kind, request.file);
}

}  // namespace host::tiff
