// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/Exr/ExrPart.h"
#include "Host/ImageFiles/FileMetadata.h"

#include <vector>

namespace host::exr {

// What a header says besides how pixels are stored. Attributes that tell about the stored pixels only (their layout, a
// small preview of them) are left out.
FileMetadata metadataOf(const Part& part);

// As TIFF numbers it; 1 unless an attribute of converted files says otherwise.
int orientationOf(const Part& part);

// The other way round; without those that a header has anyway (the aspect of pixels is by the function below).
std::vector<HeaderAttribute> attributesOf(const FileMetadata& metadata);
float pixelAspectOf(const FileMetadata& metadata);

}  // namespace host::exr
