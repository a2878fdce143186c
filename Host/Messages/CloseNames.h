// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>
#include <vector>

namespace host {

// What follows an unknown name in a message: "; did you mean "Levels"?" when some known names are close to it (as
// QCCloseNames has it), otherwise "; " and the given hint.
std::string closeNamesHint(const std::string& unknown, const std::vector<std::string>& known,
                           const std::string& otherwise);

// "a, b and c"
std::string joinedNames(const std::vector<std::string>& names, const std::string& lastSeparator = " and ");

}  // namespace host
