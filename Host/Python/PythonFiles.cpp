// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Python/PythonFiles.h"

#include "Host/Files/ProgramFolder.h"
#include "Host/Messages/Failure.h"
#include "Host/Python/PythonModule.h"

#include <dlfcn.h>

#include <filesystem>

namespace host {
namespace {

[[noreturn]] void refuse(const std::string& reason) {
  throw Failure(ExitCode::Unexpected, "effects in Python need the packages python3-vorto and libpython3.11: " + reason);
}

PythonModuleFunction loadedEntry() {
  for (const std::string& folder : libraryFolders()) {
    const std::string path = folder + "/vorto-python.so";
    std::error_code ignored;
    if (!std::filesystem::exists(path, ignored)) continue;
    // Extension modules expect the interpreter among the symbols that all see.
    void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_GLOBAL);
    const auto entry = library ? reinterpret_cast<PythonModuleFunction>(dlsym(library, kPythonModuleEntry)) : nullptr;
    if (entry) return entry;
    const char* error = dlerror();
    refuse(error ? error : "the module has no entry point");
  }
  refuse("the module vorto-python is not installed");
}

PythonModule& pythonModule() {
  static PythonModule& module = []() -> PythonModule& {
    std::string reason;
    PythonModule* started = loadedEntry()(pythonFolders(), &reason);
    if (!started) refuse(reason);
    return *started;
  }();
  return module;
}

}  // namespace

void runPythonFiles(const std::vector<std::string>& files) {
  for (const std::string& file : files) {
    std::string reason;
    if (!pythonModule().run(file, &reason)) throw Failure(ExitCode::Input, "cannot run " + file + ": " + reason);
  }
}

}  // namespace host
