// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/States/StateFile.h"

#include <string>

namespace host {

std::string stateAsText(const StateFile& file);
std::string stateAsJson(const StateFile& file);

}  // namespace host
