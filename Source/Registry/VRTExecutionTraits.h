// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

class QCPatch;

// What else than its ports a patch's results depend on, as it declares it by booleans of those names in its attributes.
// A patch that does not declare one, or gives it no boolean, counts as if it were true: a host that relies on false is
// never wrong about an effect that knows nothing of it. A composition is what any of its nodes is.

// On the time at which it is executed, or, as transitions, on that which the host sets on one of its ports.
TARN_EXPORT bool dependsOnTime(const QCPatch& patch);

// On what was executed before: frames must be executed one after another, by the same instance.
TARN_EXPORT bool keepsState(const QCPatch& patch);
