// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCPlugIn.h"

// Inside this room only.

// Loads the binary of a bundle, for good, and returns its description; null, with the cause, when the bundle is
// broken or was built for another interface. The description's function is there.
const QCPlugInDescription* QCLoadPlugInBundle(const std::string& path, std::string* reason);
