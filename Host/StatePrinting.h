#pragma once

#include "Host/StateFile.h"

#include <string>

namespace host {

std::string stateAsText(const StateFile& file);
std::string stateAsJson(const StateFile& file);

}  // namespace host
