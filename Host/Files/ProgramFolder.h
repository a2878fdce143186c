// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace host {

// For who is no program of this system but runs inside another one: the folder in which the program vorto is, or would
// be, taken for that of this program from here on. Called before other threads begin.
void setProgramFolder(const std::string& folder);

// Where the program's own libraries and helpers may be: the installed place first, then that of the build tree, then
// beside the program, for a helper that is installed among the libraries itself.
std::vector<std::string> libraryFolders();

// Where the package vorto of Python may be, besides the interpreter's own places: under the same prefix, and in the
// build tree.
std::vector<std::string> pythonFolders();

// The path of the program vorto, of which this one may be a helper; empty when it is not there.
std::string hostProgram();
// The folder share/vorto that is installed with the program or was built beside it; empty when there is none.
std::string dataFolder();

// The folder of plug-ins that is installed or was built beside the program; empty when there is none.
std::string plugInFolderBesideProgram();

}  // namespace host
