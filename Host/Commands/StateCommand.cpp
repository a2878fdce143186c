// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/StateCommand.h"

#include "Host/Commands/PresetList.h"
#include "Host/Files/OutputFile.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"
#include "Host/Messages/StandardOutput.h"
#include "Host/Presets/PresetReference.h"
#include "Host/States/StateFile.h"
#include "Host/States/StatePrinting.h"

namespace host {
namespace {

std::optional<TextFormat> textFormatNamed(const std::string& name) {
  if (name == "text") return TextFormat::Text;
  if (name == "css") return TextFormat::Css;
  if (name == "svg") return TextFormat::Svg;
  if (name == "ggr") return TextFormat::Gimp;
  return std::nullopt;
}

void checkOptions(const StateOptions& options) {
  if (options.presets == !options.file.empty()) {
    throw Failure(ExitCode::Usage, options.presets ? "--presets lists them all: leave " + options.file + " out"
                                                   : "file is required (vorto state --help tells more)");
  }
  if (options.presets && !(options.convert + options.output + options.form).empty()) {
    throw Failure(ExitCode::Usage, "--presets lists them, and converts nothing");
  }
  if (options.convert.empty() && (!options.output.empty() || !options.form.empty())) {
    throw Failure(ExitCode::Usage, "--output and --form belong to --convert");
  }
  if (!options.convert.empty() && options.output.empty()) {
    throw Failure(ExitCode::Usage, "--convert needs --output FILE");
  }
  if (!options.convert.empty() && options.json)
    throw Failure(ExitCode::Usage, "--json prints, --convert writes: give one");
  if (!options.form.empty() && textFormatNamed(options.convert)) {
    throw Failure(ExitCode::Usage, "--form belongs to --convert xml and --convert binary");
  }
}

PropertyList::Bytes convertedAsWanted(const StateFile& file, const StateOptions& options) {
  if (const auto text = textFormatNamed(options.convert)) {
    Notes notes;
    auto bytes = convertedState(file, options.file, *text, notes);
    for (const std::string& note : notes) remark(options.output + ": " + note);
    return bytes;
  }
  const auto format = options.convert == "xml" ? PropertyListFormat::Xml : PropertyListFormat::Binary;
  StateForm form = options.form == "archive" ? StateForm::Archive : StateForm::Dictionary;
  if (options.form.empty() && file.form != StateForm::Text) form = file.form;
  return convertedState(file, options.file, format, form);
}

}  // namespace

void runState(const StateOptions& options) {
  checkOptions(options);
  if (options.presets) return printPresets(options.json);
  const StateFile file = readStateOfText(options.file);
  for (const std::string& note : file.notes) remark(options.file + ": " + note);
  if (options.convert.empty()) {
    printText(options.json ? stateAsJson(file) : stateAsText(file));
  } else {
    replaceFile(options.output, convertedAsWanted(file, options));
  }
}

}  // namespace host
