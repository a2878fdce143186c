// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/ImageFiles/ImageFileModule.h"
#include "Host/Pixels/Bitmaps.h"

#include <memory>
#include <string>

namespace host {

// A picture as it was in its file, upright: RGBA8, RGBA16 or RGBAFloat, with alpha as `info` says.
struct FilePicture {
  MutableBitmapRef bitmap;
  std::shared_ptr<const PictureInfo> info;
};

// Reads a file, "-" for the standard input, or FILE:LAYER for a layer or part of a file. Throws Failure naming the file
// and the cause.
FilePicture readPicture(const std::string& path);

// What a file says, without its pixels: what readPicture() gives as info. Throws Failure in the same way.
PictureInfo readPictureInfo(const std::string& path);

// A picture from the bytes of a file that is known by that name.
FilePicture decodedPicture(const ReadRequest& request, const std::string& name);

// What flows between patches, in the depth of the file: premultiplied, without what else the file says.
BitmapRef readImage(const std::string& path);

}  // namespace host
