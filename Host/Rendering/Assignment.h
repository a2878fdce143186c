// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <string>

namespace host {

// What an option like "--set angle=30" takes: a name, which is not empty, and what stands after the first '='.
struct Assignment {
  std::string name;
  std::string value;
};

// Throw Failure, with what would have been right, when there is no '=' or nothing before it.
Assignment valueAssignment(const std::string& text);  // --set port=value
Assignment stateAssignment(const std::string& text);  // --state port=FILE
Assignment kindAssignment(const std::string& text);   // --state kind=FILE

}  // namespace host
