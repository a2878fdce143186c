// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/StateCommand.h"

#include "Host/Files/OutputFile.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/StandardOutput.h"
#include "Host/States/StateFile.h"
#include "Host/States/StatePrinting.h"

namespace host {
namespace {

void checkOptions(const StateOptions& options) {
  if (options.convert.empty() && (!options.output.empty() || !options.form.empty())) {
    throw Failure(ExitCode::Usage, "--output and --form belong to --convert");
  }
  if (!options.convert.empty() && options.output.empty()) {
    throw Failure(ExitCode::Usage, "--convert needs --output FILE");
  }
  if (!options.convert.empty() && options.json)
    throw Failure(ExitCode::Usage, "--json prints, --convert writes: give one");
}

}  // namespace

void runState(const StateOptions& options) {
  checkOptions(options);
  const StateFile file = readStateFile(options.file);
  if (options.convert.empty()) {
    printText(options.json ? stateAsJson(file) : stateAsText(file));
    return;
  }
  const auto format = options.convert == "xml" ? PropertyListFormat::Xml : PropertyListFormat::Binary;
  const StateForm form = options.form.empty()        ? file.form
                         : options.form == "archive" ? StateForm::Archive
                                                     : StateForm::Dictionary;
  const auto bytes = convertedState(file, options.file, format, form);
  replaceFile(options.output, bytes);
}

}  // namespace host
