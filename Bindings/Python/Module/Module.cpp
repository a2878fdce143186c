// SPDX-License-Identifier: BSD-3-Clause
#include "Module.h"

#include "Host/Files/ProgramFolder.h"

#include <dlfcn.h>

#include <filesystem>
#include <string>

namespace vorto::python {
namespace {

namespace fs = std::filesystem;

// Effects, modules for files and presets lie where the program vorto finds them: installed with this module, inside the
// package (a wheel is laid out as an installation below vorto/installed), or in the build tree.
void findInstallation() {
  Dl_info place{};
  if (::dladdr(reinterpret_cast<const void*>(&findInstallation), &place) == 0 || !place.dli_fname) return;
  std::error_code error;
  const fs::path folder = fs::weakly_canonical(place.dli_fname, error).parent_path();
  for (const char* programs : {"installed/bin", VORTO_PROGRAMS_FROM_MODULE, "../../bin"}) {
    const fs::path candidate = (folder / programs).lexically_normal();
    if (!fs::exists(candidate / "vorto", error)) continue;
    host::setProgramFolder(candidate.string());
    return;
  }
}

// Every name that is public is in the package's list.
void listNames(py::module_& module) {
  py::list names;
  for (const auto& [name, value] : py::dict(module.attr("__dict__"))) {
    if (!py::cast<std::string>(name).starts_with("_")) names.append(name);
  }
  names.attr("sort")();
  module.attr("__all__") = names;
}

}  // namespace
}  // namespace vorto::python

PYBIND11_MODULE(_vorto, module) {
  using namespace vorto::python;
  module.doc() = "The compiled part of the package vorto, which has all of its names.";
  module.attr("__version__") = VORTO_VERSION;
  findInstallation();
  bindErrors(module);
  bindValues(module);
  bindColors(module);
  bindBitmaps(module);
  bindChannels(module);
  bindRegistry(module);
  bindFiles(module);
  bindClips(module);
  bindDocuments(module);
  bindPythonEffects(module);
  listNames(module);
}
