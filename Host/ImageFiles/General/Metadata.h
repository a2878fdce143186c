// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/FileMetadata.h"

#include <OpenImageIO/imageio.h>

namespace host {

// Between what the library tells of a file and what the host keeps.
FileMetadata metadataOf(const OIIO::ImageSpec& spec);
void setMetadata(const FileMetadata& metadata, OIIO::ImageSpec* spec);

}  // namespace host
