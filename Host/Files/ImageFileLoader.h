// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

#include <string>

namespace host {

// The module for image files, loaded on the first call. Throws Failure when it is not there.
ImageFileModule& imageFiles();

// Throws Failure naming the file and the cause.
ImagePixels readImageFile(const std::string& path);

// Stores premultiplied pixels of any sample type, rendered at `depth`, in the format that the extension says. The file
// that is there is replaced only once the new one is complete.
void writeImageFile(const std::string& path, ImagePixels image, Depth depth);

}  // namespace host
