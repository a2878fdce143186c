// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/States/StateFile.h"

#include <optional>
#include <string>

namespace host {

// What a dictionary is the state of; nothing when it is neither's.
std::optional<StateKind> kindOfDictionary(const PropertyList& state);

// Why a state cannot be used, or an empty text. States that programs wrote are complete groups of finite numbers; the
// value objects themselves would take anything.
std::string faultOfState(StateKind kind, const PropertyList& state);

}  // namespace host
