// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileFormat.h"
#include "Host/ImageFiles/PictureTypes.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace host {

// What pictures of a format can hold when they are written.
struct FormatTraits {
  FileFormat format;
  const char* name;        // "PNG"
  const char* extensions;  // in small letters, the usual one first, separated by spaces
  bool holds8;
  bool holds16;
  bool holdsHalf;
  bool holdsFloat;
  AlphaKind alpha;  // how alpha is stored; None where it cannot be
  bool holdsGray;
  bool holdsProfiles;  // ICC profiles
};
const FormatTraits& traitsOf(FileFormat format);

// Throws Failure for a name that no format has.
FileFormat fileFormatOf(const std::string& path);          // by the extension, in any case
FileFormat fileFormatNamed(const std::string& extension);  // of --format

// What the first bytes of a file tell; nothing when the general module has to find out.
std::optional<FileFormat> formatOfBytes(std::span<const std::uint8_t> file);

// The depth in which a format stores pixels that were rendered at a depth: the smallest that holds every value exactly,
// or else the deepest that it knows. PNG takes 8 and 16 bits, JPEG 8, TIFF 8, 16 and float, EXR half and float.
Depth storedDepth(FileFormat format, Depth depth);

// What pixels of a depth are held in.
SampleType sampleTypeOf(Depth depth);

// "8", "16", "half", "float"
std::optional<Depth> depthNamed(const std::string& name);

}  // namespace host
