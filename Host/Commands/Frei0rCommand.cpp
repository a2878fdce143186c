// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/Frei0rCommand.h"

#include "Bindings/Frei0r/Out/PlugIn.h"
#include "Bindings/Frei0r/Out/StubFile.h"
#include "Host/Files/ProgramFolder.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"
#include "Host/Messages/StandardOutput.h"
#include "Host/Messages/Table.h"
#include "Host/Messages/Utf8.h"
#include "Host/Texts/TextReader.h"
#include "Registry/VRTNodeManager.h"

#include "Bindings/Frei0r/Frei0rHeader.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace host {
namespace {

namespace fs = std::filesystem;

const char* typeName(const frei0r::Parameter& parameter) {
  switch (parameter.type()) {
    case F0R_PARAM_BOOL:
      return "boolean";
    case F0R_PARAM_COLOR:
      return "color";
    case F0R_PARAM_POSITION:
      return "position";
    case F0R_PARAM_STRING:
      return "string";
    default:
      return "double";
  }
}

bool isShipped(const std::string& effect) {
  const std::string folder = plugInFolderBesideProgram();
  const std::string path = VRTNodeManager::manager()->pathOfNodeWithName(effect);
  std::error_code ignored;
  return !folder.empty() &&
         fs::weakly_canonical(path, ignored).string().starts_with(fs::weakly_canonical(folder, ignored).string() + "/");
}

// Of the wanted ones alone. Throws Failure for one that does not exist, or that there is no plug-in of.
frei0r::PlugInList wantedPlugIns(const Frei0rOptions& options) {
  frei0r::PlugInList all = frei0r::allPlugIns();
  if (options.isShipped) std::erase_if(all.plugIns, [](const auto& each) { return !isShipped(each.effect); });
  if (options.effects.empty()) return all;
  frei0r::PlugInList wanted;
  for (const std::string& name : options.effects) {
    const auto isIt = [&](const auto& each) { return lowered(each.effect) == lowered(name); };
    const std::size_t before = wanted.plugIns.size();
    std::ranges::copy_if(all.plugIns, std::back_inserter(wanted.plugIns), isIt);
    if (wanted.plugIns.size() > before) continue;
    const auto refused = std::ranges::find_if(all.leftOut, isIt);
    if (refused == all.leftOut.end()) makeEffect(name);  // says which names there are
    throw Failure(ExitCode::Effect, "\"" + name + "\" cannot be a frei0r plug-in" +
                                        (refused == all.leftOut.end() ? "" : ": " + refused->reason));
  }
  return wanted;
}

void printPlugIn(const frei0r::PlugIn& plugIn) {
  printText(printable(plugIn.effect) + "\n  " + plugIn.typeName() + " " + plugIn.file + ".so\n");
  Table table({Table::Left, Table::Left, Table::Left, Table::Left});
  for (const frei0r::Parameter& each : plugIn.parameters.parameters) {
    table.addRow({each.name, typeName(each), each.explanation, "default " + each.defaultText});
  }
  printText(table.text("    "));
  for (const std::string& each : plugIn.parameters.leftOut) printText("    left out: " + printable(each) + "\n");
}

void printList(const frei0r::PlugInList& list) {
  for (const frei0r::PlugIn& each : list.plugIns) {
    if (&each != &list.plugIns.front()) printText("\n");
    printPlugIn(each);
  }
  if (!list.plugIns.empty() && !list.leftOut.empty()) printText("\n");
  for (const frei0r::LeftOut& each : list.leftOut) {
    printText("Left out: " + printable(each.effect) + ": " + printable(each.reason) + "\n");
  }
  if (list.foreign > 0)
    printText("\nLeft out: " + std::to_string(list.foreign) + " that are plug-ins of frei0r themselves\n");
}

fs::path folderOf(const Frei0rOptions& options) {
  if (!options.output.empty()) return options.output;
  const char* home = std::getenv("HOME");
  if (!home || !*home) throw Failure(ExitCode::Usage, "there is no home folder; give one with --output");
  return fs::path(home) / ".frei0r-1" / "lib";
}

// Empty where a stub in that folder finds the module on its own, so that both can be moved.
std::string moduleFor(const fs::path& folder) {
  std::string module = frei0r::modulePath();
  for (const char* place : {VORTO_MODULE_FROM_STUBS, "../lib/vorto/vorto-frei0r.so"}) {
    std::error_code ignored;
    if (fs::equivalent(folder / place, module, ignored)) return "";
  }
  return module;
}

void writeStubs(const Frei0rOptions& options, const frei0r::PlugInList& list) {
  const fs::path folder = folderOf(options);
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw Failure(ExitCode::Output, "cannot make the folder " + folder.string() + ": " + error.message());
  const std::string module = moduleFor(folder);
  for (const frei0r::PlugIn& each : list.plugIns) {
    frei0r::writeStub((folder / (each.file + ".so")).string(), {each.effect, each.inputs, module});
  }
  for (const frei0r::LeftOut& each : list.leftOut) remark("left out: " + each.effect + ": " + each.reason);
  const std::size_t count = list.plugIns.size();
  printText(std::to_string(count) + (count == 1 ? " plug-in" : " plug-ins") + " in " + printable(folder.string()) +
            "\n");
}

}  // namespace

void runFrei0r(const Frei0rOptions& options) {
  loadEffects();
  const frei0r::PlugInList list = wantedPlugIns(options);
  if (options.isList) {
    printList(list);
  } else {
    writeStubs(options, list);
  }
}

}  // namespace host
