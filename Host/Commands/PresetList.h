// SPDX-License-Identifier: BSD-3-Clause
#pragma once

namespace host {

// Prints all presets with where they come from, as a table or as JSON; files among the user's that are none are said on
// standard error, in JSON in the list.
void printPresets(bool isJson);

}  // namespace host
