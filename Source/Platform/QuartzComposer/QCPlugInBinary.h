// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

// Inside this room only.

// Whether a file is a whole shared object for this machine, as far as its headers tell. The dynamic linker maps what a
// header promises without comparing it with the size of the file, and a file that ends early then kills the process at
// the first touch; half-copied files have to be found out before it sees them.
bool QCCheckPlugInBinary(const std::string& path, std::string* reason);
