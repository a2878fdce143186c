// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/ParameterDocument.h"

#include "Host/Files/OutputFile.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"
#include "Host/Presets/PresetReference.h"
#include "Host/Rendering/Assignment.h"
#include "Host/Rendering/Parameters.h"
#include "Host/Rendering/PortKinds.h"
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTPorts.h"

#include <algorithm>
#include <utility>

namespace host {
namespace {

StateKind stateKindNamed(const std::string& name) {
  for (const StateKind kind : {StateKind::Gradient, StateKind::Levels, StateKind::Opaque}) {
    if (name == stateKindName(kind)) return kind;
  }
  throw Failure(ExitCode::Usage, "--state " + name + "=: without an effect give gradient, levels or opaque");
}

template <class Port>
QCPort& onlyPort(QCPatch& patch, StateKind kind, const NSObjectRef& value) {
  PropertyList attributes = PropertyList::dictionary();
  std::string name = stateKindName(kind);
  name[0] = static_cast<char>(name[0] - 'a' + 'A');
  attributes.set("name", PropertyList::string(name));
  QCPort& port = *patch.addInputPort<Port>(stateKindName(kind), attributes);
  port.setValue(value);
  return port;
}

QCPort& onlyPortOfKind(QCPatch& patch, StateKind kind) {
  switch (kind) {
    case StateKind::Gradient:
      return onlyPort<VRTGradientPort>(patch, kind, VRTGradient::gradient());
    case StateKind::Levels:
      return onlyPort<VRTHistogramPort>(patch, kind, VRTHistogram::histogram());
    case StateKind::Opaque:
      break;
  }
  return onlyPort<VRTOpaqueDataPort>(patch, kind, VRTOpaqueData::data());
}

PropertyList::Bytes bytesOf(const QCPort& port, PropertyListFormat format, StateForm form, const std::string& path) {
  std::string reason = "its value has no state";
  const auto state = port.stateValue();
  std::optional<PropertyList::Bytes> bytes;
  if (state && form == StateForm::Archive) bytes = NSKeyedArchiver::archivedData(port.value(), format, &reason);
  if (state && form == StateForm::Dictionary) bytes = PropertyListToBytes(*state, format, &reason);
  if (!bytes) throw Failure(ExitCode::Output, "cannot write " + path + ": " + reason);
  return std::move(*bytes);
}

std::string refusal(const std::string& path, StateKind kind, const std::vector<QCPort*>& parameters) {
  const std::string text = path + ": the file holds a state of the kind " + stateKindName(kind);
  if (parameters.size() != 1) return text + ", which no parameter takes";
  return text + ", the parameter takes the kind " + portKindName(portKindOf(*parameters[0]));
}

}  // namespace

ParameterDocument::ParameterDocument(std::vector<QCPort*> parameters)
    : parameters_(std::move(parameters)), saved_(parameters_.size()), history_(parameters_) {
  for (const QCPort* port : parameters_) initial_.push_back(editedState(*port));
  forgetHistory();
}

ParameterDocument::~ParameterDocument() = default;

std::unique_ptr<ParameterDocument> ParameterDocument::ofState(const std::string& assignment) {
  const auto [name, path] = kindAssignment(assignment);
  const StateKind kind = stateKindNamed(name);
  auto patch = std::make_shared<QCPatch>();
  QCPort& port = onlyPortOfKind(*patch, kind);
  auto document = std::make_unique<ParameterDocument>(std::vector<QCPort*>{&port});
  document->ownPatch_ = std::move(patch);
  document->load(path, &port);
  document->forgetHistory();
  return document;
}

void ParameterDocument::forgetHistory() {
  history_.forget();
  for (std::size_t i = 0; i < parameters_.size(); ++i) {
    if (saved_[i].path.empty()) saved_[i].state = editedState(*parameters_[i]);
  }
}

// A text, which other programs may read too, is not overwritten with a property list.
ParameterDocument::Saved ParameterDocument::savedAs(const std::string& path, const StateFile& file,
                                                    const QCPort& port) {
  if (file.form == StateForm::Text) return {"", PropertyListFormat::Xml, StateForm::Dictionary, editedState(port)};
  return {path, file.format, file.form, editedState(file.state)};
}

std::size_t ParameterDocument::indexOf(const QCPort& port) const {
  return static_cast<std::size_t>(std::find(parameters_.begin(), parameters_.end(), &port) - parameters_.begin());
}

void ParameterDocument::reset(QCPort& port) {
  setEditedState(port, initial_.at(indexOf(port)));
}

void ParameterDocument::resetAll() {
  for (QCPort* port : parameters_) reset(*port);
}

bool ParameterDocument::hasStateFile(const QCPort& port) {
  return stateKindOf(port).has_value();
}

const std::string& ParameterDocument::file(const QCPort& port) const {
  return saved_.at(indexOf(port)).path;
}

void ParameterDocument::setFile(const QCPort& port, const std::string& path) {
  const StateFile file = readStateFile(path, stateKindOf(port));
  saved_.at(indexOf(port)) = savedAs(path, file, port);
}

bool ParameterDocument::isModified(const QCPort& port) const {
  return saved_.at(indexOf(port)).state != editedState(port);
}

std::vector<QCPort*> ParameterDocument::unsaved() const {
  std::vector<QCPort*> ports;
  for (QCPort* port : parameters_) {
    if (hasStateFile(*port) && isModified(*port)) ports.push_back(port);
  }
  return ports;
}

QCPort& ParameterDocument::load(const std::string& path, QCPort* preferred) {
  const StateFile file = readStateOfText(path, preferred ? stateKindOf(*preferred) : std::nullopt);
  const auto takes = [&](const QCPort* port) { return port && stateKindOf(*port) == file.kind; };
  const auto first = std::find_if(parameters_.begin(), parameters_.end(), takes);
  QCPort* port = takes(preferred) ? preferred : first != parameters_.end() ? *first : nullptr;
  if (!port) throw Failure(ExitCode::Usage, refusal(path, file.kind, parameters_));
  std::string reason;
  if (!port->setStateValue(file.state, &reason)) throw Failure(ExitCode::Input, "cannot read " + path + ": " + reason);
  for (const std::string& note : file.notes) remark(path + ": " + note);
  if (!isPresetReference(path)) saved_.at(indexOf(*port)) = savedAs(path, file, *port);
  return *port;
}

void ParameterDocument::save(const QCPort& port, const std::string& path) {
  Saved& saved = saved_.at(indexOf(port));
  replaceFile(path, bytesOf(port, saved.format, saved.form, path));
  saved.path = path;
  saved.state = editedState(port);
}

}  // namespace host
