// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

namespace host {

bool writeImage(const ImagePixels& image, FileFormat format, Depth depth, std::vector<std::uint8_t>* file,
                std::string* reason);

}  // namespace host
