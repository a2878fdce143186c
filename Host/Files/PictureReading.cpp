// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/PictureReading.h"

#include "Host/Files/FileContents.h"
#include "Host/Files/FileFormat.h"
#include "Host/Files/ImageFileLoader.h"
#include "Host/Messages/Failure.h"
#include "Host/Pixels/Alpha.h"
#include "Host/Pixels/Upright.h"
#include "TarnCore/TCBitmap.h"

#include <filesystem>
#include <utility>

namespace host {
namespace {

struct PicturePath {
  std::string file;
  std::string layer;
};

// What stands after the last colon is a layer, unless there is a file of the whole name.
PicturePath picturePath(const std::string& path) {
  const std::size_t colon = path.rfind(':');
  std::error_code error;
  const bool isWhole = colon == std::string::npos || path.find('/', colon) != std::string::npos || colon == 0 ||
                       std::filesystem::exists(path, error) || !std::filesystem::exists(path.substr(0, colon), error);
  return isWhole ? PicturePath{path, ""} : PicturePath{path.substr(0, colon), path.substr(colon + 1)};
}

std::unique_ptr<ImageReader> opened(const ReadRequest& request, std::string* reason) {
  const auto format = formatOfBytes(request.file);
  bool isOtherKind = !format;
  std::unique_ptr<ImageReader> reader;
  if (format) reader = imageFileModule(*format).open(request, &isOtherKind, reason);
  if (isOtherKind) reader = generalImageFileModule().open(request, &isOtherKind, reason);
  return reader;
}

}  // namespace

FilePicture readPicture(const std::string& path) {
  const PicturePath place = picturePath(path);
  const FileContents contents = FileContents::ofFile(place.file);
  return decodedPicture({contents.bytes(), place.layer, std::filesystem::path(place.file).extension().string()},
                        path == "-" ? "the standard input" : path);
}

FilePicture decodedPicture(const ReadRequest& request, const std::string& name) {
  const auto refuse = [&](const std::string& reason) {
    throw Failure(ExitCode::Input, "cannot read " + name + ": " + reason);
  };
  std::string reason;
  const auto reader = opened(request, &reason);
  if (!reader) refuse(reason);
  const PictureInfo& info = reader->info();
  if (!fitsBitmap(info.width, info.height, 4 * bytesPerSample(info.sample))) {
    refuse("its " + std::to_string(info.width) + " x " + std::to_string(info.height) +
           " pixels are more than a bitmap can hold");
  }
  FilePicture picture;
  picture.bitmap = newUnsetBitmap(info.width, info.height, formatCodeOf(info.sample), name);
  if (!reader->readPixels(reinterpret_cast<std::byte*>(picture.bitmap->data), bytesPerRow(*picture.bitmap), &reason)) {
    refuse(reason);
  }
  picture.bitmap = upright(picture.bitmap, info.orientation, name);
  picture.info = std::make_shared<const PictureInfo>(info);
  return picture;
}

BitmapRef readImage(const std::string& path) {
  const FilePicture picture = readPicture(path);
  if (picture.info->alpha == AlphaKind::Straight) premultiply(*picture.bitmap);
  return picture.bitmap;
}

}  // namespace host
