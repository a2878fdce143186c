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

// A path with the bytes of its file.
struct PictureFile {
  PicturePath place;
  FileContents contents;
  std::string name;

  ReadRequest request() const {
    return {contents.bytes(), place.layer, std::filesystem::path(place.file).extension().string()};
  }
};

PictureFile pictureFile(const std::string& path) {
  PicturePath place = picturePath(path);
  FileContents contents = FileContents::ofFile(place.file);
  return {std::move(place), std::move(contents), path == "-" ? "the standard input" : path};
}

[[noreturn]] void refuse(const std::string& name, const std::string& reason) {
  throw Failure(ExitCode::Input, "cannot read " + name + ": " + reason);
}

// A reader of a picture that fits into memory.
std::unique_ptr<ImageReader> readerOf(const ReadRequest& request, const std::string& name) {
  std::string reason;
  auto reader = opened(request, &reason);
  if (!reader) refuse(name, reason);
  const PictureInfo& info = reader->info();
  if (!fitsBitmap(info.width, info.height, 4 * bytesPerSample(info.sample))) {
    refuse(name, "its " + std::to_string(info.width) + " x " + std::to_string(info.height) +
                     " pixels are more than a bitmap can hold");
  }
  return reader;
}

}  // namespace

FilePicture readPicture(const std::string& path) {
  const PictureFile file = pictureFile(path);
  return decodedPicture(file.request(), file.name);
}

PictureInfo readPictureInfo(const std::string& path) {
  const PictureFile file = pictureFile(path);
  return readerOf(file.request(), file.name)->info();
}

FilePicture decodedPicture(const ReadRequest& request, const std::string& name) {
  const auto reader = readerOf(request, name);
  const PictureInfo& info = reader->info();
  FilePicture picture;
  picture.bitmap = newUnsetBitmap(info.width, info.height, formatCodeOf(info.sample), name);
  std::string reason;
  if (!reader->readPixels(reinterpret_cast<std::byte*>(picture.bitmap->data), bytesPerRow(*picture.bitmap), &reason)) {
    refuse(name, reason);
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
