// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EffectSession.h"

#include "Host/Inspect/InputRoles.h"

#include "Host/Commands/OptionValues.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Utf8.h"
#include "Host/Presets/PresetReference.h"
#include "Host/Rendering/Assignment.h"
#include "Host/Rendering/Parameters.h"
#include "Host/Rendering/PortKinds.h"
#include "Platform/QuartzComposer/QCPatch.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QTimer>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <utility>

namespace host {
namespace {

// The input ports that people set: all but the images and the time.
std::vector<QCPort*> parametersOf(EffectRendering& rendering) {
  std::vector<QCPort*> ports;
  for (const auto& port : rendering.patch().inputPorts()) {
    const bool flowsIn = portKindOf(*port) == PortKind::Image || port.get() == rendering.roles().time;
    if (!flowsIn) ports.push_back(port.get());
  }
  return ports;
}

// Those of "port=value" that are for pictures, or for all other ports.
std::vector<std::string> valuesOf(EffectRendering& rendering, const std::vector<std::string>& values, bool ofPictures) {
  std::vector<std::string> result;
  for (const std::string& text : values) {
    const QCPort* port = findInputPort(rendering.patch(), valueAssignment(text).name);
    if ((port && takesPicture(*port, rendering.roles())) == ofPictures) result.push_back(text);
  }
  return result;
}

std::size_t inputsOf(const std::string& effect, std::size_t available) {
  return static_cast<std::size_t>(inputRolesFor(*makeEffect(effect), available).names.size());
}

bool handledEventsUntil(const std::function<bool()>& isDone, int milliseconds) {
  QElapsedTimer waited;
  waited.start();
  QTimer wake;
  wake.start(std::chrono::milliseconds(10));
  while (!isDone()) {
    if (waited.hasExpired(milliseconds)) return false;
    QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents);
  }
  return true;
}

}  // namespace

PreviewSetup previewSetupOf(const InspectOptions& options) {
  PreviewSetup setup;
  setup.effect = options.effect;
  setup.inputs = options.inputs;
  setup.python = options.python;
  setup.framing = parsedFraming(options.framing);
  setup.depth = parsedDepth(options.depth);
  setup.colors = parsedColors(options.colors, options.inputs);
  setup.time = options.time;
  setup.rate = options.rate;
  if (!options.frames.empty()) setup.frames = parsedFrameRange(options.frames);
  return setup;
}

EffectSession::EffectSession(const InspectOptions& options)
    : rendering_(options.effect, inputsOf(options.effect, options.inputs.size()), parsedFraming(options.framing),
                 parsedDepth(options.depth)),
      pictures_(valuesOf(rendering_, options.values, true)),
      engine_({}) {
  const bool isComplete =
      rendering_.roles().inputs.size() == options.inputs.size() && std::ranges::count(options.inputs, "") == 0;
  if (isComplete) openEngine(options);  // early: it goes on while the rest is done
  document_ = std::make_unique<ParameterDocument>(parametersOf(rendering_));
  readParameters(options);
  if (isComplete) sendParameters();
}

void EffectSession::openEngine(const InspectOptions& options) {
  PreviewSetup setup = previewSetupOf(options);
  setup.pictures = pictures_;
  engine_.open(setup);
  isOpen_ = true;
  inputNames_.clear();
  for (const std::string& path : options.inputs) {
    inputNames_ += (inputNames_.empty() ? "" : ", ") + validUtf8(std::filesystem::path(path).filename().string());
  }
}

void EffectSession::openInputs(const InspectOptions& options) {
  openEngine(options);
  sendParameters();
}

EffectSession::KeptStates EffectSession::parameterStates() const {
  KeptStates states;
  for (const QCPort* port : document_->parameters()) {
    states[port->key()] = {portKindName(portKindOf(*port)), port->stateValue()};
  }
  return states;
}

void EffectSession::setParameterStates(const KeptStates& states) {
  for (QCPort* port : document_->parameters()) {
    const auto kept = states.find(port->key());
    if (kept == states.end() || kept->second.kind != portKindName(portKindOf(*port)) || !kept->second.state) continue;
    port->setStateValue(*kept->second.state, nullptr);
  }
  document_->forgetHistory();
  if (isOpen_) sendParameters();
}

void EffectSession::readParameters(const InspectOptions& options) {
  setParameters(rendering_, valuesOf(rendering_, options.values, false), options.states);
  for (const std::string& text : options.states) {
    const auto [port, path] = stateAssignment(text);
    if (isPresetReference(path)) continue;  // which is not saved over
    document_->setFile(inputPortNamed(rendering_.patch(), name(), port), path);
  }
  document_->forgetHistory();
}

std::string EffectSession::description() const {
  const PropertyList* text = const_cast<EffectRendering&>(rendering_).patch().attributes().find("description");
  return text ? text->stringValue() : "";
}

bool EffectSession::waitUntilOpened(int milliseconds) {
  return handledEventsUntil([this] { return engine_.opened() || engine_.refusal(); }, milliseconds);
}

bool EffectSession::waitForPicture(int milliseconds) {
  return handledEventsUntil([this] { return engine_.isSettled(); }, milliseconds);
}

void EffectSession::checkPicture() const {
  if (const auto& failure = engine_.failure()) throw Failure(failure->code, failure->text);
}

}  // namespace host
