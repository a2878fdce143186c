// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/Assignment.h"

#include "Host/Messages/Failure.h"

namespace host {
namespace {

Assignment parsed(const std::string& option, const std::string& text, const std::string& wanted) {
  const std::size_t equals = text.find('=');
  if (equals == std::string::npos || equals == 0) {
    throw Failure(ExitCode::Usage, option + " " + text + ": give " + wanted);
  }
  return {text.substr(0, equals), text.substr(equals + 1)};
}

}  // namespace

Assignment valueAssignment(const std::string& text) {
  return parsed("--set", text, "a port and its value, as in --set port=value");
}

Assignment stateAssignment(const std::string& text) {
  return parsed("--state", text, "a port and its value, as in --state port=FILE");
}

Assignment kindAssignment(const std::string& text) {
  return parsed("--state", text, "a kind and a file, as in --state gradient=FILE");
}

}  // namespace host
