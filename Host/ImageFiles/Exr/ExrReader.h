// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"

#include <memory>

namespace host::exr {

std::unique_ptr<ImageReader> openExr(const ReadRequest& request, std::string* reason);

}  // namespace host::exr
