// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

// What the program and its module for effects that are written in Python say to each other. The module holds the
// interpreter, so that nothing else needs it.
namespace host {

class PythonModule {
 public:
  virtual ~PythonModule() = default;
  // Runs a file, from which on its effects are in the registry. False when it could not be read or raised an exception:
  // its traceback has then gone to standard error, and *reason has its last line.
  virtual bool run(const std::string& path, std::string* reason) = 0;
};

// The module's one exported function: starts the interpreter, once, and gives an object that lives as long as the
// process; null, with the cause in *reason, when the package vorto cannot be imported. It is looked for in `folders`
// before the interpreter's own places.
inline constexpr const char* kPythonModuleEntry = "VortoPythonModule";
using PythonModuleFunction = PythonModule* (*)(const std::vector<std::string>& folders, std::string* reason);

}  // namespace host
