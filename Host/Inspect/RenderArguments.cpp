// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/RenderArguments.h"

#include "Host/Files/OutputFile.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Json.h"
#include "Host/Rendering/Assignment.h"
#include "Host/Rendering/PortKinds.h"
#include "Platform/QuartzComposer/QCPatch.h"

#include <initializer_list>
#include <optional>

namespace host {
namespace {

// Nothing for ports that no text sets.
std::optional<std::string> textOf(const QCPort& port) {
  switch (portKindOf(port)) {
    case PortKind::Number:
      return numberText(dynamic_cast<const QCNumberPort&>(port).doubleValue());
    case PortKind::Boolean:
      return dynamic_cast<const QCBooleanPort&>(port).booleanValue() ? "true" : "false";
    case PortKind::Index:
      return std::to_string(dynamic_cast<const QCIndexPort&>(port).indexValue());
    case PortKind::String:
      return dynamic_cast<const QCStringPort&>(port).stringValue();
    case PortKind::Color: {
      const auto color = dynamic_cast<const QCColorPort&>(port).colorValue();
      return numberText(color->red) + "," + numberText(color->green) + "," + numberText(color->blue) + "," +
             numberText(color->alpha);
    }
    default:
      return std::nullopt;
  }
}

std::string savedState(const QCPort& port, const std::string& folder) {
  std::string path = folder + "/" + std::to_string(std::hash<std::string>{}(port.key())) + ".plist";
  std::string reason = "its value has no state";
  const auto state = port.stateValue();
  const auto bytes = state ? PropertyListToBytes(*state, PropertyListFormat::Binary, &reason) : std::nullopt;
  if (!bytes) throw Failure(ExitCode::Output, "cannot write " + path + ": " + reason);
  replaceFile(path, *bytes);
  return path;
}

void add(QStringList& arguments, const char* option, const std::string& value) {
  if (!value.empty()) arguments << option << QString::fromStdString(value);
}

void addInputs(QStringList& arguments, const InspectOptions& options) {
  for (const std::string& path : options.python) arguments << "--python" << QString::fromStdString(path);
  for (const std::string& path : options.inputs) arguments << "--input" << QString::fromStdString(path);
  add(arguments, "--size", options.framing.size);
  add(arguments, "--filter", options.framing.filter);
  add(arguments, "--fit", options.framing.fit);
  add(arguments, "--place", options.framing.place);
  add(arguments, "--working-space", options.colors.working);
  for (const std::string& space : options.colors.inputs) add(arguments, "--input-space", space);
  add(arguments, "--depth", options.depth);
  if (options.time) add(arguments, "--time", numberText(*options.time));
  if (options.rate) add(arguments, "--rate", numberText(*options.rate));
}

bool isPicture(const QCPatch& patch, const std::string& assignment) {
  const QCPort* port = findInputPort(patch, valueAssignment(assignment).name);
  return port && portKindOf(*port) == PortKind::Image;
}

}  // namespace

QStringList renderArguments(const InspectOptions& options, const QCPatch& patch, const ParameterDocument& document,
                            const std::string& folder) {
  QStringList arguments{QString::fromStdString(options.effect)};
  addInputs(arguments, options);
  for (const std::string& text : options.values) {
    if (isPicture(patch, text)) add(arguments, "--set", text);
  }
  for (const QCPort* port : document.parameters()) {
    if (ParameterDocument::hasStateFile(*port)) {
      if (port->stateValue()) add(arguments, "--state", port->key() + "=" + savedState(*port, folder));
    } else if (const auto text = textOf(*port)) {
      add(arguments, "--set", port->key() + "=" + *text);
    }
  }
  return arguments;
}

}  // namespace host
