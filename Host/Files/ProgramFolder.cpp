// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/ProgramFolder.h"

#include "TarnCore/TCBitmap.h"

#include <dlfcn.h>

#include <filesystem>

namespace host {
namespace {

namespace fs = std::filesystem;

// Empty: that of this program.
fs::path& toldFolder() {
  static fs::path folder;
  return folder;
}

fs::path programFolder() {
  if (!toldFolder().empty()) return toldFolder();
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  return error ? fs::path(".") : program.parent_path();
}

}  // namespace

std::vector<std::string> libraryFolders() {
  const fs::path program = programFolder();
  return {(program / VORTO_INSTALLED_LIBRARIES).lexically_normal().string(),
          (program / "../lib").lexically_normal().string(), program.string()};
}

std::string hostProgram() {
  const fs::path folder = programFolder();
  for (const fs::path& place : {fs::path("."), fs::path(VORTO_PROGRAMS_FROM_LIBRARIES)}) {
    const fs::path candidate = (folder / place / "vorto").lexically_normal();
    std::error_code error;
    if (fs::is_regular_file(candidate, error)) return candidate.string();
  }
  return "";
}

void useProgramOfFramework() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&TCCreateBitmap), &info) == 0 || !info.dli_fname) return;
  std::error_code error;
  const fs::path library = fs::canonical(info.dli_fname, error);
  if (error) return;
  const fs::path folder = library.parent_path() / "vorto" / VORTO_PROGRAMS_FROM_LIBRARIES;
  toldFolder() = folder.lexically_normal();
}

std::vector<std::string> pythonFolders() {
  return {(programFolder() / "../python").lexically_normal().string()};
}

// Of a helper too, which is installed among the libraries.
std::string dataFolder() {
  const fs::path program = programFolder();
  for (const fs::path& folder : {fs::path(VORTO_DATA_FROM_PROGRAM), fs::path(VORTO_DATA_FROM_LIBRARIES)}) {
    const fs::path candidate = (program / folder).lexically_normal();
    std::error_code error;
    if (fs::is_directory(candidate, error)) return candidate.string();
  }
  return "";
}

std::string plugInFolderBesideProgram() {
  const fs::path program = programFolder();
  for (const fs::path& folder :
       {fs::path(VORTO_INSTALLED_LIBRARIES) / "PlugIns", fs::path("../PlugIns"), fs::path("PlugIns")}) {
    const fs::path candidate = (program / folder).lexically_normal();
    std::error_code error;
    if (fs::is_directory(candidate, error)) return candidate.string();
  }
  return "";
}

}  // namespace host
