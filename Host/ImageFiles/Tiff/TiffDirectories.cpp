// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Tiff/TiffDirectories.h"

#include "Host/ImageFiles/ByteWriter.h"
#include "Host/ImageFiles/IccModel.h"
#include "Host/ImageFiles/Tiff/TiffMetadata.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace host::tiff {
namespace {

enum Type : std::uint16_t { kShort = 3, kLong = 4, kRational = 5, kUndefined = 7 };

// The directories of an Exif block besides the picture's own.
constexpr ExifDirectory kOwnDirectories[] = {ExifDirectory::Interoperability, ExifDirectory::Photo, ExifDirectory::Gps};
constexpr std::uint16_t kInteroperabilityTag = 0xA005;

bool isUsable(double number) {
  return std::isfinite(number) && number > 0 && number < std::numeric_limits<std::uint32_t>::max();
}

Field fieldOf(const ExifEntry& entry) {
  return {entry.tag, static_cast<std::uint16_t>(entry.type), entry.count(), entry.value};
}

void addResolution(const FileMetadata& metadata, std::vector<Field>* fields) {
  double x = 1;
  double y = metadata.pixelAspect.value_or(1);
  std::uint16_t unit = RESUNIT_NONE;
  if (const auto& resolution = metadata.resolution; resolution && isUsable(resolution->x) && isUsable(resolution->y)) {
    x = resolution->x;
    y = resolution->y;
    unit = resolution->unit == Resolution::Unit::Inch ? RESUNIT_INCH : RESUNIT_CENTIMETER;
  } else if (y == 1 || !isUsable(y)) {
    return;
  }
  fields->push_back(rationalField(TIFFTAG_XRESOLUTION, x));
  fields->push_back(rationalField(TIFFTAG_YRESOLUTION, y));
  fields->push_back(shortField(TIFFTAG_RESOLUTIONUNIT, {unit}));
}

// Directories and what their fields point to, one behind the other at even places.
class DirectoryWriter {
 public:
  DirectoryWriter(std::uint64_t offset, bool isBig) : offset_(offset), isBig_(isBig) { align(); }

  // Returns where it lies.
  std::uint64_t write(std::vector<Field> fields) {
    std::stable_sort(fields.begin(), fields.end(), [](const Field& a, const Field& b) { return a.tag < b.tag; });
    const unsigned wordSize = isBig_ ? 8 : 4;
    ByteWriter entries;
    entries.number(fields.size(), isBig_ ? 8 : 2);
    for (const Field& field : fields) {
      entries.number(field.tag, 2);
      entries.number(field.type, 2);
      entries.number(field.count, wordSize);
      if (field.value.size() > wordSize) {
        entries.number(put(field.value), wordSize);
      } else {
        entries.bytes(field.value);
        entries.number(0, static_cast<unsigned>(wordSize - field.value.size()));
      }
    }
    entries.number(0, wordSize);  // none follows
    return put(entries.take());
  }

  Bytes take() { return bytes_.take(); }

 private:
  std::uint64_t put(const Bytes& bytes) {
    const std::uint64_t place = offset_ + bytes_.size();
    bytes_.bytes(bytes);
    align();
    return place;
  }
  void align() {
    if ((offset_ + bytes_.size()) % 2 != 0) bytes_.number(0, 1);
  }

  std::uint64_t offset_;
  bool isBig_;
  ByteWriter bytes_;
};

std::vector<Field> fieldsOf(const ExifBlock& block, ExifDirectory directory) {
  std::vector<Field> fields;
  for (const ExifEntry& entry : block.entries()) {
    if (entry.directory == directory) fields.push_back(fieldOf(entry));
  }
  return fields;
}

}  // namespace

Field shortField(std::uint16_t tag, const std::vector<std::uint16_t>& values) {
  ByteWriter bytes;
  for (const std::uint16_t value : values) bytes.number(value, 2);
  return {tag, kShort, values.size(), bytes.take()};
}

Field longField(std::uint16_t tag, const std::vector<std::uint64_t>& values, bool isBig) {
  ByteWriter bytes;
  for (const std::uint64_t value : values) bytes.number(value, isBig ? 8 : 4);
  return {tag, isBig ? kLong8 : static_cast<std::uint16_t>(kLong), values.size(), bytes.take()};
}

Field rationalField(std::uint16_t tag, double value) {
  constexpr double kLargest = std::numeric_limits<std::uint32_t>::max();
  double denominator = 1;
  const auto isExact = [&] { return std::abs(std::round(value * denominator) / denominator - value) <= value * 1e-9; };
  while (!isExact() && value * denominator * 10 < kLargest && denominator < 1e9) denominator *= 10;
  ByteWriter bytes;
  bytes.number(static_cast<std::uint64_t>(std::llround(value * denominator)), 4);
  bytes.number(static_cast<std::uint64_t>(denominator), 4);
  return {tag, kRational, 1, bytes.take()};
}

Field bytesField(std::uint16_t tag, const Bytes& value) {
  return {tag, kUndefined, value.size(), value};
}

std::vector<Field> descriptiveFields(const FileMetadata& metadata, Channels channels) {
  std::vector<Field> fields;
  addResolution(metadata, &fields);
  if (const Bytes& profile = metadata.color.iccProfile; isProfileFor(profile, channels)) {
    fields.push_back(bytesField(TIFFTAG_ICCPROFILE, profile));
  }
  const auto block = ExifBlock::parse(metadata.exif);
  if (!block) return fields;
  for (const ExifEntry& entry : block->entries()) {
    if (entry.directory == ExifDirectory::Image && isDescriptive(entry.tag)) fields.push_back(fieldOf(entry));
  }
  return fields;
}

Directories directoriesAt(std::uint64_t offset, std::vector<Field> fields, const FileMetadata& metadata, bool isBig) {
  DirectoryWriter writer(offset, isBig);
  const auto block = ExifBlock::parse(metadata.exif);
  std::uint64_t interoperability = 0;
  for (const ExifDirectory directory : kOwnDirectories) {
    std::vector<Field> own = block ? fieldsOf(*block, directory) : std::vector<Field>();
    const bool isPhoto = directory == ExifDirectory::Photo;
    if (isPhoto && interoperability > 0) own.push_back(longField(kInteroperabilityTag, {interoperability}, isBig));
    if (own.empty()) continue;
    const std::uint64_t place = writer.write(std::move(own));
    if (directory == ExifDirectory::Interoperability) {
      interoperability = place;
    } else {
      fields.push_back(longField(isPhoto ? TIFFTAG_EXIFIFD : TIFFTAG_GPSIFD, {place}, isBig));
    }
  }
  Directories directories;
  directories.first = writer.write(std::move(fields));
  directories.bytes = writer.take();
  return directories;
}

}  // namespace host::tiff
