// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/ImageFileLoader.h"

#include "Host/Files/FileFormat.h"
#include "Host/Files/OutputFile.h"
#include "Host/Files/ProgramFolder.h"
#include "Host/Messages/Failure.h"
#include "Host/Pixels/Bitmaps.h"
#include "Host/Pixels/Pixels.h"
#include "Platform/Foundation/NSFiles.h"
#include "Platform/Foundation/PropertyList.h"

#include <dlfcn.h>

#include <filesystem>
#include <utility>

namespace host {
namespace {

ImageFileModule& loadModule() {
  std::string reason = "it is not installed";
  for (const std::string& folder : libraryFolders()) {
    const std::string path = folder + "/vorto-image-files.so";
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored)) continue;
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    const auto entry =
        library ? reinterpret_cast<ImageFileModuleFunction>(dlsym(library, kImageFileModuleEntry)) : nullptr;
    if (entry) return *entry();
    const char* error = dlerror();
    reason = error ? error : "it has no entry point";
    break;
  }
  throw Failure(ExitCode::Unexpected, "the module for image files could not be loaded: " + reason);
}

PropertyList::Bytes readWhole(const std::string& path) {
  std::string reason;
  auto bytes = NSReadFile(path, &reason);
  if (!bytes) throw Failure(ExitCode::Input, "cannot read " + path + ": " + reason);
  return std::move(*bytes);
}

}  // namespace

ImageFileModule& imageFiles() {
  static ImageFileModule& module = loadModule();
  return module;
}

ImagePixels readImageFile(const std::string& path) {
  ImagePixels image;
  std::string reason;
  if (!imageFiles().read(readWhole(path), kLargestBitmapBytes, &image, &reason)) {
    throw Failure(ExitCode::Input, "cannot read " + path + ": " + reason);
  }
  return image;
}

void writeImageFile(const std::string& path, ImagePixels image, Depth depth) {
  const FileFormat format = fileFormatOf(path);
  const Depth stored = storedDepth(format, depth);
  image = converted(std::move(image), sampleTypeOf(stored));
  if (format == FileFormat::Png) unpremultiply(image);
  std::vector<std::uint8_t> file;
  std::string reason;
  if (!imageFiles().write(image, format, stored, &file, &reason)) {
    throw Failure(ExitCode::Output, "cannot write " + path + ": " + reason);
  }
  replaceFile(path, file);
}

}  // namespace host
