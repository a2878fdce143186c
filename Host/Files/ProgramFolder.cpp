// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Files/ProgramFolder.h"

#include <filesystem>

namespace host {
namespace {

namespace fs = std::filesystem;

fs::path namedFolder;

fs::path programFolder() {
  if (!namedFolder.empty()) return namedFolder;
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  return error ? fs::path(".") : program.parent_path();
}

}  // namespace

void setProgramFolder(const std::string& folder) {
  namedFolder = folder;
}

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

std::vector<std::string> pythonFolders() {
  const fs::path program = programFolder();
  return {(program / "../lib/python3/dist-packages").lexically_normal().string(),
          (program / "../python").lexically_normal().string()};
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
