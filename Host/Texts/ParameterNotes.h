// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace host {

// What is to be said of a conversion that went well: sentences without a full stop.
using Notes = std::vector<std::string>;

// That stops were added to stay near a curve; nothing for none.
void noteAddedStops(Notes& notes, std::size_t count, const char* source);

}  // namespace host
