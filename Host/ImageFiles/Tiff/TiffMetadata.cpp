// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Tiff/TiffMetadata.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

namespace host::tiff {
namespace {

// Name, page, description, maker, model, program, time, artist, computer, rating, copyright, and the texts that one
// system adds.
constexpr std::uint16_t kDescriptive[] = {269,   270,   271,   272,   285,   305,   306,   315,  316,
                                          18246, 18249, 33432, 40091, 40092, 40093, 40094, 40095};

bool isUsable(double number) {
  return std::isfinite(number) && number > 0;
}

Bytes profileOf(const TiffFile& file) {
  std::uint32_t size = 0;
  const std::uint8_t* profile = nullptr;
  if (TIFFGetField(file.get(), TIFFTAG_ICCPROFILE, &size, &profile) != 1 || !profile) return {};
  return Bytes(profile, profile + size);
}

// The library has numbers as floats; fields of files with 32-bit places are read here.
double resolutionOf(const TiffFile& file, const std::optional<ExifBlock>& block, std::uint16_t tag) {
  float value = 0;
  if (TIFFGetField(file.get(), tag, &value) != 1) return 0;
  return (block ? block->number(ExifDirectory::Image, tag) : std::nullopt).value_or(value);
}

void takeResolution(const TiffFile& file, const std::optional<ExifBlock>& block, FileMetadata* metadata) {
  const double x = resolutionOf(file, block, TIFFTAG_XRESOLUTION);
  const double y = resolutionOf(file, block, TIFFTAG_YRESOLUTION);
  if (!isUsable(x) || !isUsable(y)) return;
  const auto unit = file.field<std::uint16_t>(TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
  if (unit == RESUNIT_NONE) {
    if (x != y) metadata->pixelAspect = y / x;
  } else if (unit == RESUNIT_INCH || unit == RESUNIT_CENTIMETER) {
    metadata->resolution =
        Resolution{x, y, unit == RESUNIT_INCH ? Resolution::Unit::Inch : Resolution::Unit::Centimeter};
  }
}

// What is not about the stored pixels.
Bytes describing(ExifBlock block) {
  std::vector<std::uint16_t> others;
  for (const ExifEntry& entry : block.entries()) {
    if (entry.directory == ExifDirectory::Image && !isDescriptive(entry.tag)) others.push_back(entry.tag);
  }
  for (const std::uint16_t tag : others) block.remove(ExifDirectory::Image, tag);
  return block.serialized();
}

}  // namespace

bool isDescriptive(std::uint16_t tag) {
  return std::find(std::begin(kDescriptive), std::end(kDescriptive), tag) != std::end(kDescriptive);
}

FileMetadata metadataOf(const TiffFile& file, std::span<const std::uint8_t> bytes) {
  FileMetadata metadata;
  metadata.color.iccProfile = profileOf(file);
  // A file with 32-bit places is itself such a block.
  auto block = ExifBlock::parse(bytes);
  takeResolution(file, block, &metadata);
  if (block) metadata.exif = describing(std::move(*block));
  return metadata;
}

}  // namespace host::tiff
