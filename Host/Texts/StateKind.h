// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace host {

// What a saved parameter is.
enum class StateKind { Gradient, Levels, Opaque };

const char* stateKindName(StateKind kind);  // "gradient", "levels", "opaque"

}  // namespace host
