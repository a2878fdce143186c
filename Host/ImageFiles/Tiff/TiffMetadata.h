// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Exif.h"
#include "Host/ImageFiles/FileMetadata.h"
#include "Host/ImageFiles/Tiff/TiffFile.h"

#include <cstdint>
#include <span>

namespace host::tiff {

// What the fields of the first picture say besides how it is stored.
FileMetadata metadataOf(const TiffFile& file, std::span<const std::uint8_t> bytes);

// Whether a field of the picture's own directory describes it, and does not say how it is stored.
bool isDescriptive(std::uint16_t tag);

}  // namespace host::tiff
