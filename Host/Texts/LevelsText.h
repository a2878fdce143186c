// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/PropertyList.h"

#include <optional>
#include <string>
#include <string_view>

namespace host {

// Levels as people write them: assignments apart by commas, of which later ones win.
//
//   gamma=1.2, red.blackIn=10%, alpha.whiteOut=0.5, selectedChannel=green
//
// In front of the equals sign stand the channel (RGB, red, green, blue or alpha; RGB where there is none) and the value
// (blackIn, whiteIn, gamma, blackOut or whiteOut), or the key of both in the state, as gammaRed; without regard to case
// and spaces. Gammas are 0 to 5, the others 0 to 1 or 0% to 100%, as the editor has them.

// The key of the state that such a name stands for. Throws TextFault for an unknown one, with what there is.
std::string levelsKeyOfName(std::string_view name);
// Sets what stands under a key. Throws TextFault at a place in the value.
void setLevelsValue(PropertyList& state, const std::string& key, std::string_view value);

bool looksLikeLevels(std::string_view text);  // comments, then an equals sign behind letters, dots and spaces

// The defaults with these values. Throws TextFault.
PropertyList levelsOfText(std::string_view text);
PropertyList defaultLevels();

// What differs from the defaults, so that read again it is the same state; nothing, with the reason, when there is a
// number beyond its range.
std::optional<std::string> textOfLevels(const PropertyList& state, std::string* reason);

}  // namespace host
