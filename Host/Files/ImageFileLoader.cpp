// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/ImageFileLoader.h"

#include "Host/Files/ProgramFolder.h"
#include "Host/Messages/Failure.h"

#include <dlfcn.h>

#include <filesystem>

namespace host {
namespace {

// What a module's entry gives.
template <class Function>
auto& loaded(const std::string& module, const char* entryName) {
  std::string reason = "it is not installed";
  for (const std::string& folder : libraryFolders()) {
    const std::string path = folder + "/" + module + ".so";
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored)) continue;
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    const auto entry = library ? reinterpret_cast<Function>(dlsym(library, entryName)) : nullptr;
    if (entry) return *entry();
    const char* error = dlerror();
    reason = error ? error : "it has no entry point";
    break;
  }
  throw Failure(ExitCode::Unexpected, "the module " + module + " could not be loaded: " + reason);
}

ImageFileModule& loadedFormat(const char* name) {
  return loaded<ImageFileModuleFunction>(std::string("vorto-image-") + name, kImageFileModuleEntry);
}

}  // namespace

ImageFileModule& generalImageFileModule() {
  static ImageFileModule& module = loadedFormat("general");
  return module;
}

ImageFileModule& imageFileModule(FileFormat format) {
  switch (format) {
    case FileFormat::Png: {
      static ImageFileModule& module = loadedFormat("png");
      return module;
    }
    case FileFormat::Jpeg: {
      static ImageFileModule& module = loadedFormat("jpeg");
      return module;
    }
    case FileFormat::Tiff: {
      static ImageFileModule& module = loadedFormat("tiff");
      return module;
    }
    case FileFormat::Exr: {
      static ImageFileModule& module = loadedFormat("exr");
      return module;
    }
    default:
      return generalImageFileModule();
  }
}

DrawingModule& drawingModule() {
  static DrawingModule& module = loaded<DrawingModuleFunction>("vorto-image-general", kDrawingModuleEntry);
  return module;
}

}  // namespace host
