// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <string>
#include <string_view>
#include <vector>

// The names among `known` that a person who wrote `name` may have meant: at most three, the nearest first, those at the
// same distance in the given order. Distance is the number of letters to insert, delete or replace, upper and lower
// case of ASCII counting as the same; a name further away than a third of its length (at least two) is not close.
// Names above 256 bytes are not compared, nor are those that come after so many long ones that it would take long.
TARN_EXPORT std::vector<std::string> QCCloseNames(std::string_view name, const std::vector<std::string>& known);

// What follows a message about an unknown name: "; did you mean "A" or "B"?", or nothing when none is close.
TARN_EXPORT std::string QCCloseNamesHint(std::string_view name, const std::vector<std::string>& known);
