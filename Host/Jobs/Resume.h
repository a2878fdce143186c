// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Files/FrameFiles.h"
#include "Host/ImageFiles/FileFormat.h"
#include "Host/Rendering/FrameList.h"
#include "Host/Rendering/RenderPlan.h"

#include <string>

namespace host {

// Whether there is a picture of that format: a file whose header can be read as one. Files are replaced as a whole, so
// that the rest of it is there as well.
bool isPictureThere(const std::string& path, FileFormat format);

// Of frames of a plan those whose files are missing.
FrameList missingFrames(const RenderPlan& plan, const FrameList& frames, const FramePattern& output, FileFormat format);

}  // namespace host
