// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <string>

// Inside this room only, but for QCPlugInProbeMain().
//
// Some faults of a plug-in end the process that loads it, and nothing in that process can prevent it: damage that the
// dynamic linker trusts, an exception out of the constructor of a static object, a crash. Each bundle is therefore
// first loaded by a program of its own, vorto-plug-in-probe, that stands in the folder "vorto" beside the library. What
// it survives is loaded here, where everything else that can be wrong with a bundle is found and named. Without the
// program nothing is tried beforehand.

// False, with the cause, when loading the bundle ended the probe or took too long. `binary` is the file that the bundle
// loads; as long as it stays the same file the outcome is taken from the user's cache folder.
bool QCSurvivesLoading(const std::string& bundle, const std::string& binary, std::string* reason);

// What the probe does: loads the bundle argv[1], registers its nodes, makes each of them once, and writes one byte to
// the descriptor argv[2]. Then it ends as every program does, which a binary can still prevent.
extern "C" TARN_EXPORT int QCPlugInProbeMain(int argc, char** argv);
