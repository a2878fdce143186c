// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Guidance/Completion.h"

#include <string>
#include <string_view>

namespace host {

// What stands before a value on the command line, as far as values depend on it.
struct ValueContext {
  std::string command;  // "render"
  std::string effect;   // its name; empty where none was given
};

// What a value of an option can become. `name` is what the help calls the value (valueName), which says what is meant:
// "FILE", "FOLDER", "EFFECT", "PORT=VALUE", "PORT=FILE", "[FILE=]NAME". Nothing for other names.
Completions valueCompletions(const std::string& name, const ValueContext& context, std::string_view typed);

}  // namespace host
