// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Color/ColorModuleLoader.h"

#include "Host/Files/ProgramFolder.h"
#include "Host/Messages/Failure.h"

#include <dlfcn.h>

#include <cstdlib>
#include <filesystem>

namespace host {
namespace {

ColorModuleFunction loadModule() {
  std::string reason = "it is not installed";
  for (const std::string& folder : libraryFolders()) {
    const std::string path = folder + "/vorto-color.so";
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored)) continue;
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    const auto entry = library ? reinterpret_cast<ColorModuleFunction>(dlsym(library, kColorModuleEntry)) : nullptr;
    if (entry) return entry;
    const char* error = dlerror();
    reason = error ? error : "it has no entry point";
    break;
  }
  throw Failure(ExitCode::Unexpected, "the module for color could not be loaded: " + reason);
}

}  // namespace

std::string userConfiguration() {
  const char* path = std::getenv("OCIO");
  return path ? path : "";
}

ColorModule& colorModule() {
  static const std::unique_ptr<ColorModule> module = newColorModule(userConfiguration());
  return *module;
}

std::unique_ptr<ColorModule> newColorModule(const std::string& configuration) {
  static const ColorModuleFunction entry = loadModule();
  return std::unique_ptr<ColorModule>(entry(configuration.empty() ? nullptr : configuration.c_str()));
}

}  // namespace host
