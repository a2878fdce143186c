// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/States/StateFile.h"

#include <optional>
#include <string>
#include <vector>

class QCPort;

namespace host {

class EffectRendering;
struct EffectRoles;

// What a state file for the port holds; nothing when the port takes no states.
std::optional<StateKind> stateKindOf(const QCPort& port);

// Whether the port carries an image that is none of those that are given with --input: one that the effect can do
// without, and that is set like a value.
bool takesPicture(const QCPort& port, const EffectRoles& roles);

// The same assignments with the files of the presets that they name (Host/Presets/PresetReference.h): what other
// processes, at other times, are to be given. Throws Failure for unknown ports and presets.
std::vector<std::string> statesWithFiles(const EffectRendering& rendering, const std::vector<std::string>& states);

// Sets the effect's ports from "port=FILE" (a state file, or preset:NAME), then from "port=value", each in order; the
// value of a port that takesPicture() is a file, and "port.part=value" sets one value of levels. What is to be said of
// a file that was read goes to standard error. Throws Failure for the first that does not fit.
void setParameters(EffectRendering& rendering, const std::vector<std::string>& values,
                   const std::vector<std::string>& states);

}  // namespace host
