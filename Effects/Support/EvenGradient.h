// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Ports/VRTObjects.h"

#include <memory>

namespace vorto::effects {

// Black to white in a straight line, opaque: a wipe that moves evenly, a map that leaves greys as they are.
std::shared_ptr<VRTGradient> evenGradient();

}  // namespace vorto::effects
