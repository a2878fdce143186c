// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Files/FrameFiles.h"
#include "Host/ImageFiles/FileFormat.h"
#include "Host/Pixels/Resampling.h"
#include "Host/Rendering/FrameList.h"
#include "Host/Rendering/RenderPlan.h"

#include <optional>
#include <string>

namespace host {

// Whether there is a whole picture of that format, and of that size where one is given. Of PNG, TIFF and EXR the
// headers of all their parts are read and must fit into the file; files of other formats are decoded.
bool isPictureThere(const std::string& path, FileFormat format, std::optional<PictureSize> size = {});

// Of frames of a plan those whose files are missing.
FrameList missingFrames(const RenderPlan& plan, const FrameList& frames, const FramePattern& output, FileFormat format,
                        std::optional<PictureSize> size = {});

}  // namespace host
