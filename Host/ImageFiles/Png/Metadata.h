// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"
#include "Host/ImageFiles/PictureTypes.h"
#include "Host/ImageFiles/Png/Chunks.h"

namespace host {

// Takes over what an ancillary chunk says; of several that say the same the first counts. One that is not as it must be
// is passed over. False for a chunk that says nothing of the kind.
bool readPngMetadata(const PngChunk& chunk, FileMetadata* metadata, int* orientation);

// Appends the chunks that stand in front of the pixels. A profile is left out when it is not for such pixels (gray, or
// RGB), and sRGB's chunk where there is a profile.
void appendPngMetadata(const FileMetadata& metadata, Channels channels, std::vector<std::uint8_t>* file);

}  // namespace host
