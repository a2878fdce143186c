// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCPlugIn.h"

// Inside this room only.

// Loads the binary of a bundle, for good, and returns its description; null, with the cause, when the bundle is
// broken or was built for another interface. The description's function is there. `survives`, which may be null, is
// called with the bundle and its binary before the binary is loaded, and refuses it as QCSurvivesLoading() does.
using QCPlugInTrial = bool (*)(const std::string& bundle, const std::string& binary, std::string* reason);
const QCPlugInDescription* QCLoadPlugInBundle(const std::string& path, QCPlugInTrial survives, std::string* reason);
