// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Exif.h"
#include "Host/ImageFiles/FileMetadata.h"

#include <cstdint>
#include <vector>

namespace host::tiff {

// The numbers of types that only files with 64-bit places have.
inline constexpr std::uint16_t kLong8 = 16;

// A field of a directory, with its values in the byte order of the files written here, the lowest first.
struct Field {
  std::uint16_t tag = 0;
  std::uint16_t type = 0;
  std::uint64_t count = 0;
  Bytes value;
};

Field shortField(std::uint16_t tag, const std::vector<std::uint16_t>& values);
Field longField(std::uint16_t tag, const std::vector<std::uint64_t>& values, bool isBig);
Field rationalField(std::uint16_t tag, double value);  // of a number above 0
Field bytesField(std::uint16_t tag, const Bytes& value);

// What the metadata says, as fields of the picture's own directory. A profile is left out when it is not for such
// pixels (gray, or RGB).
std::vector<Field> descriptiveFields(const FileMetadata& metadata, Channels channels);

// The picture's directory and those of its Exif block, as they follow a file's pixels.
struct Directories {
  Bytes bytes;
  std::uint64_t first = 0;  // where in the file the picture's own lies
};
Directories directoriesAt(std::uint64_t offset, std::vector<Field> fields, const FileMetadata& metadata, bool isBig);

}  // namespace host::tiff
