// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

// The block in which cameras and programs tell of a picture: a TIFF header and directories of entries, as it stands
// behind "Exif\0\0" in a JPEG, in PNG's eXIf chunk, and elsewhere.
namespace host {

// Those that are kept. The second directory of the chain tells of a thumbnail, which no longer shows a changed picture.
enum class ExifDirectory { Image, Photo, Gps, Interoperability };

// The numbers of TIFF's types of values.
enum class ExifType : std::uint16_t {
  Byte = 1,
  Ascii,
  Short,
  Long,
  Rational,
  SignedByte,
  Undefined,
  SignedShort,
  SignedLong,
  SignedRational,
  Float,
  Double
};

// The bytes of one value; 0 of a type that is none of these.
std::size_t exifTypeSize(ExifType type);

struct ExifEntry {
  ExifDirectory directory = ExifDirectory::Image;
  std::uint16_t tag = 0;
  ExifType type = ExifType::Undefined;
  Bytes value;  // whole values, one after the other, in this machine's byte order

  std::size_t count() const { return exifTypeSize(type) == 0 ? 0 : value.size() / exifTypeSize(type); }
  bool operator==(const ExifEntry&) const = default;
};

// The entries of a block. Where directories and thumbnail lie is not among them: serialized() sees to that.
class ExifBlock {
 public:
  // Nothing for a block that is damaged: one of whose directories or values is not all inside, or that leads in a
  // circle, or whose values are more than it has room for. Of entries with the same tag the first counts; those of
  // types that nobody knows are left out.
  static std::optional<ExifBlock> parse(std::span<const std::uint8_t> block);

  const std::vector<ExifEntry>& entries() const { return entries_; }  // by directory and tag
  const ExifEntry* find(ExifDirectory directory, std::uint16_t tag) const;
  // The first value as a number; nothing where there is none, or it is text.
  std::optional<double> number(ExifDirectory directory, std::uint16_t tag) const;

  // In place of one with the same directory and tag. Left out: those of unknown types, of parts of values, and those
  // that say where a directory lies.
  void set(ExifEntry entry);
  void remove(ExifDirectory directory, std::uint16_t tag);

  // 1 to 8; 1 where the block does not tell.
  int orientation() const;
  void setOrientation(int orientation);

  // The entries as a new block in the byte order of the parsed one; empty without entries. Values lie elsewhere than
  // they did: a maker's note that holds places in the block loses what it points to. uprightExif() moves nothing.
  Bytes serialized() const;

 private:
  std::vector<ExifEntry> entries_;
  bool isBigEndian_ = false;
};

// What a block says of its picture's orientation, 1 to 8, also where the rest of it is damaged; 1 where it does not
// tell.
int exifOrientation(std::span<const std::uint8_t> block);

// Takes over the resolution that a block tells, and the pixels' aspect where they are no squares, unless the metadata
// have either already. Nothing from a damaged block.
void takeExifResolution(std::span<const std::uint8_t> block, FileMetadata* metadata);

// The block for a picture that was turned upright: the orientation is 1, the thumbnail is gone, and everything else
// lies where it did, so that places in the block that a maker's note holds stay right. Empty for a damaged block.
Bytes uprightExif(std::span<const std::uint8_t> block);

// The block for a picture of this size: where it tells a size it tells this one. Everything lies where it did; empty
// for a damaged block.
Bytes exifOfSize(std::span<const std::uint8_t> block, std::uint32_t width, std::uint32_t height);

// The block for a picture whose colors were converted: white point, primaries, transfer function, gamma, a profile and
// the interoperability index are gone, and a color space that it states is sRGB or, of any other, uncalibrated. All
// values lie where they did. Empty for a damaged block.
Bytes recoloredExif(std::span<const std::uint8_t> block, bool isSRgb);

}  // namespace host
