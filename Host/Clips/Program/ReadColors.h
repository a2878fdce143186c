// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/Program/AvObjects.h"
#include "Host/ImageFiles/FileMetadata.h"

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <optional>
#include <string>

namespace host {

// Whether a frame's samples are red, green and blue (or gray) and not luma and chroma.
bool isRgb(const AVPixFmtDescriptor& layout);

// How luma and chroma become RGB.
struct YuvCoding {
  AVColorSpace matrix;  // one that is known
  bool isFullRange;
  bool operator==(const YuvCoding&) const = default;
};

// By what a frame says. Where that is nothing, pictures of less than 720 lines are coded by BT.601, others by BT.709,
// with the range of video.
YuvCoding codingOf(const AVFrame& frame);

// The colors of a frame that has become RGB of full range. Where YUV says nothing they are those that are broadcast in
// its coding; nothing of RGB that says nothing.
std::optional<CodePoints> codePointsOf(const AVFrame& frame);

// Of a matrix that is stated and not known; empty when all is well.
std::string matrixRemark(const AVFrame& frame);

}  // namespace host
