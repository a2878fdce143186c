// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Guidance/GuidanceCommands.h"

#include "Host/Files/OutputFile.h"
#include "Host/Guidance/CompletionScripts.h"
#include "Host/Guidance/ManualPages.h"
#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/StandardOutput.h"

#include <filesystem>

namespace host {
namespace {

void writeAll(const std::vector<ManualPage>& pages, const std::string& folder) {
  for (const ManualPage& page : pages) {
    const auto* const bytes = reinterpret_cast<const std::uint8_t*>(page.text.data());
    replaceFile((std::filesystem::path(folder) / page.file).string(), {bytes, page.text.size()});
  }
}

}  // namespace

void runManual(const CLI::App& app, const ManualOptions& options) {
  if (options.page.empty() == options.folder.empty()) {
    throw Failure(ExitCode::Usage, "manual prints one page, or writes all with --output FOLDER: give one of both");
  }
  const std::vector<ManualPage> pages = manualPages(app);
  if (!options.folder.empty()) return writeAll(pages, options.folder);
  for (const ManualPage& page : pages) {
    if (page.file == options.page + ".1" || page.file == "vorto-" + options.page + ".1") return printText(page.text);
  }
  throw Failure(ExitCode::Usage, "there is no manual page \"" + options.page + "\"");
}

void runCompletion(const CompletionOptions& options) {
  const char* const script = completionScript(options.shell);
  if (!script) {
    throw Failure(ExitCode::Usage, "completion " + options.shell + ": give " + joinedNames(completionShells(), " or "));
  }
  printText(script);
}

}  // namespace host
