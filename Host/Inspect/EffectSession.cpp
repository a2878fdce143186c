// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EffectSession.h"

#include "Host/Commands/OptionValues.h"
#include "Host/Files/FileFormat.h"
#include "Host/Files/PictureWriting.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Utf8.h"
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

std::optional<FrameRange> framesOf(const InspectOptions& options, const Inputs& inputs) {
  const auto wanted = options.frames.empty() ? std::nullopt : std::optional(parsedFrameRange(options.frames));
  if (!inputs.areSequence() && !wanted) return std::nullopt;
  return inputs.checkedFrames(wanted);
}

}  // namespace

EffectSession::EffectSession(const InspectOptions& options)
    : rendering_(options.effect, options.inputs.size(), parsedFraming(options.framing), parsedDepth(options.depth)),
      inputs_(options.inputs, parsedDepth(options.depth), {}, parsedColors(options.colors, options.inputs)),
      fixedTime_(options.time) {
  for (const std::string& path : options.inputs) {
    inputNames_ += (inputNames_.empty() ? "" : ", ") + validUtf8(std::filesystem::path(path).filename().string());
  }
  document_ = std::make_unique<ParameterDocument>(parametersOf(rendering_));
  readParameters(options);
  if (const auto frames = framesOf(options, inputs_)) {
    timeline_ = Timeline::ofSequence(rendering_.kind(), *frames, options.rate);
  } else if (rendering_.roles().time) {
    timeline_ = Timeline::ofTransition(options.rate);
    const double time = std::clamp(options.time.value_or(0), 0.0, 1.0);
    position_ = static_cast<std::uint64_t>(time * static_cast<double>(timeline_.count() - 1) + 0.5);
  }
  rendering_.connect(inputs_.picturesAt(timeline_.frameAt(position_)));
}

void EffectSession::readParameters(const InspectOptions& options) {
  setParameters(rendering_, options.values, options.states);
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

void EffectSession::goTo(std::uint64_t position) {
  const std::uint64_t valid = std::min(position, timeline_.count() - 1);
  if (timeline_.isSequence()) rendering_.connect(inputs_.picturesAt(timeline_.frameAt(valid)));
  if (!timeline_.isSequence() && valid != position_) fixedTime_.reset();
  position_ = valid;
}

const BitmapRef& EffectSession::render() {
  result_ = rendering_.result(fixedTime_.value_or(timeline_.timeAt(position_)));
  return result_;
}

void EffectSession::savePicture(const std::string& path) {
  if (!result_) throw Failure(ExitCode::Output, "cannot write " + path + ": there is no picture");
  OutputPicture picture;
  picture.bitmap = result_;
  picture.depth = rendering_.depthOf(*result_);
  inputs_.colors().toOutput(picture, fileFormatOf(path), path);
  writePicture(path, picture);
}

}  // namespace host
