// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Color/ColorSpace.h"

#include <string>

namespace host {

// The space that an option names: raw, a known space, or one of the user's configuration. Throws Failure, naming the
// option, when there is none.
ColorSpace spaceOfOption(const std::string& option, const std::string& name);

}  // namespace host
