// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace vorto::frei0r {

// The foreign plug-ins of the folders in FREI0R_PATH (separated by colons; none when it is empty), or without it of
//   ~/.frei0r-1/lib, /usr/local/lib/frei0r-1, /usr/lib/frei0r-1, /usr/lib/MULTIARCH/frei0r-1
// and of the folders right below them: absolute paths of files "NAME.so", by folder and name. Of one file name the
// first stays. Passed over is what begins with "vorto_", our own effects as plug-ins for others.
std::vector<std::string> foreignPlugIns();

}  // namespace vorto::frei0r
