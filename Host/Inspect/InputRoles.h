// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Rendering/Effects.h"

#include <QStringList>
#include <cstddef>

namespace host {

// What pictures an effect takes, and what they are to it.
struct InputRoles {
  EffectKind kind = EffectKind::Filter;
  QStringList names;  // of the inputs in their order, in the language of the windows; none of a generator
};

// Of an effect of several kinds the one that takes most of the pictures that there are; where each takes more, the one
// that takes the fewest.
InputRoles inputRolesFor(const QCPatch& patch, std::size_t available);

}  // namespace host
