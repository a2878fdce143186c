// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/General/DrawingModule.h"
#include "Host/ImageFiles/ImageFileModule.h"

#include <optional>

namespace host {

// The module for files of a format, loaded on the first call. Throws Failure when it is not there.
ImageFileModule& imageFileModule(FileFormat format);
ImageFileModule& generalImageFileModule();

DrawingModule& drawingModule();

}  // namespace host
