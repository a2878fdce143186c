// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/InspectCommand.h"

#include "Host/Files/ProgramFolder.h"
#include "Host/Messages/Failure.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace host {

void executeInspector(char** argv) {
  std::string reason = "it is not installed beside the program (vorto-inspect, which needs Qt)";
  for (const std::string& folder : libraryFolders()) {
    const std::string path = folder + "/vorto-inspect";
    if (access(path.c_str(), F_OK) != 0) continue;
    execv(path.c_str(), argv);
    reason = path + ": " + std::strerror(errno);
    break;
  }
  throw Failure(ExitCode::Unexpected, "the inspector could not be started: " + reason);
}

}  // namespace host
