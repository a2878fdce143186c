// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EffectSession.h"

#include "Host/Commands/OptionValues.h"
#include "Host/Inspect/InputRoles.h"
#include "Host/Rendering/Assignment.h"
#include "Host/Rendering/Parameters.h"
#include "Host/Rendering/PortKinds.h"
#include "Platform/QuartzComposer/QCPatch.h"

#include <algorithm>
#include <filesystem>
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

std::size_t inputsOf(const std::string& effect, std::size_t available) {
  return static_cast<std::size_t>(inputRolesFor(*makeEffect(effect), available).names.size());
}

std::string classOf(const QCPort& port) {
  return portKindName(portKindOf(port));
}

}  // namespace

EffectSession::EffectSession(const InspectOptions& options)
    : rendering_(options.effect, inputsOf(options.effect, options.inputs.size()), parsedFraming(options.framing),
                 parsedDepth(options.depth)) {
  std::vector<std::string> values;
  for (const std::string& text : options.values) {
    const QCPort* port = findInputPort(rendering_.patch(), valueAssignment(text).name);
    const bool isPicture = port && takesPicture(*port, rendering_.roles());
    (isPicture ? pictures_ : values).push_back(text);
  }
  document_ = std::make_unique<ParameterDocument>(parametersOf(rendering_));
  setParameters(rendering_, values, options.states);
  for (const std::string& text : options.states) {
    const auto [port, path] = stateAssignment(text);
    document_->setFile(inputPortNamed(rendering_.patch(), name(), port), path);
  }
  document_->forgetHistory();
}

std::string EffectSession::description() const {
  const PropertyList* text = const_cast<EffectRendering&>(rendering_).patch().attributes().find("description");
  return text ? text->stringValue() : "";
}

PreviewEngine& EffectSession::openEngine(const InspectOptions& options, PreviewEngine::Told told) {
  PreviewSetup setup;
  setup.effect = name();
  setup.inputs = options.inputs;
  setup.pictures = pictures_;
  setup.framing = parsedFraming(options.framing);
  setup.depth = parsedDepth(options.depth);
  setup.colors = parsedColors(options.colors, options.inputs);
  setup.time = options.time;
  if (!options.frames.empty()) setup.frames = parsedFrameRange(options.frames);
  setup.rate = options.rate;
  engine_.reset();
  engine_ = std::make_unique<PreviewEngine>(std::move(told));
  engine_->setParameters(document_->parameters());
  engine_->open(setup);
  return *engine_;
}

EffectSession::KeptStates EffectSession::parameterStates() const {
  KeptStates states;
  for (const QCPort* port : document_->parameters()) states[port->key()] = {classOf(*port), port->stateValue()};
  return states;
}

void EffectSession::setParameterStates(const KeptStates& states) {
  for (QCPort* port : document_->parameters()) {
    const auto kept = states.find(port->key());
    if (kept == states.end() || kept->second.portClass != classOf(*port) || !kept->second.state) continue;
    port->setStateValue(*kept->second.state, nullptr);
  }
  document_->forgetHistory();
}

}  // namespace host
