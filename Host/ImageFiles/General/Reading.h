// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

namespace host {

// Any picture that the library reads, videos excepted; of a file with several the first, or the one that the layer
// names.
std::unique_ptr<ImageReader> openImage(const ReadRequest& request, std::string* reason);

}  // namespace host
