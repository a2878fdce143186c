// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/Program/AvObjects.h"

#include <string>

namespace host {

// A file of one of the kinds that hold clips, with what its streams are. Nothing but this file is opened, whatever it
// names. Throws Failure, whose message is only the reason.
AvInput openInput(const std::string& path);

}  // namespace host
