// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/States/StateFile.h"

#include <optional>
#include <string>

namespace host {

// What a dictionary is the state of; nothing when it is neither's. One that has no key by which to tell is of the kind
// `mayBeBare` when it is legal there.
std::optional<StateKind> kindOfDictionary(const PropertyList& state, std::optional<StateKind> mayBeBare);

// Why a state cannot be used, or an empty text. States that programs wrote are complete groups of finite numbers, or of
// texts that begin with one; the value objects themselves would take anything.
std::string faultOfState(StateKind kind, const PropertyList& state);

}  // namespace host
