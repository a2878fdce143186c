// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

#include <memory>

namespace host::tiff {

std::unique_ptr<ImageReader> openTiff(const ReadRequest& request, bool* isOtherKind, std::string* reason);

}  // namespace host::tiff
