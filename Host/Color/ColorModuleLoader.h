// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorModule.h"

#include <memory>
#include <string>

namespace host {

// The configuration that the environment names ($OCIO); empty when there is none.
std::string userConfiguration();

// The module for that configuration, loaded on the first call. Throws Failure when it is not there.
ColorModule& colorModule();

// A new one, for a configuration's path, or with an empty one for the module's own.
std::unique_ptr<ColorModule> newColorModule(const std::string& configuration);

}  // namespace host
