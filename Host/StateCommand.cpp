#include "Host/StateCommand.h"

#include "Host/Failure.h"
#include "Host/OutputFile.h"
#include "Host/StandardOutput.h"
#include "Host/StateFile.h"
#include "Host/StatePrinting.h"

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
