// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Clips/Program/AvObjects.h"

#include <string>

namespace host {

enum class Wanted { Clip, Audio };

// A file of one of the kinds that hold clips, with what its streams are. For audio it may hold nothing else.
// Nothing but this file is opened, whatever it names. Throws Failure, whose message is only the reason.
AvInput openInput(const std::string& path, Wanted wanted = Wanted::Clip);

}  // namespace host
