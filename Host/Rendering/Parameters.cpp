// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/Parameters.h"

#include "Host/Files/PictureReading.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Remark.h"
#include "Host/Pixels/Bitmaps.h"
#include "Host/Presets/PresetReference.h"
#include "Host/Rendering/Assignment.h"
#include "Host/Rendering/EffectRendering.h"
#include "Host/Rendering/PortKinds.h"
#include "Host/Rendering/PortValues.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTImage.h"

#include <algorithm>

namespace host {
namespace {

std::string fileOfState(const QCPort& port, const std::string& text) {
  try {
    return stateFileOfText(text, stateKindOf(port));
  } catch (const Failure& failure) {
    throw Failure(failure.code, port.key() + "=" + text + ": " + failure.what());
  }
}

void setPortFromState(QCPort& port, const std::string& path) {
  const StateFile file = readStateFile(path, stateKindOf(port));
  if (stateKindOf(port) != file.kind) {
    throw Failure(ExitCode::Usage, port.key() + "=" + path + ": the file holds a state of the kind " +
                                       stateKindName(file.kind) + ", the port takes the kind " +
                                       portKindName(portKindOf(port)));
  }
  std::string reason;
  if (!port.setStateValue(file.state, &reason)) {
    throw Failure(ExitCode::Input, port.key() + "=" + path + ": " + reason);
  }
  for (const std::string& note : file.notes) remark(path + ": " + note);
}

// The picture keeps its own size and depth, which have nothing to do with the frame's.
void setPortFromPicture(QCImagePort& port, const std::string& path) {
  try {
    VRTImage::setBitmapOfPort(port, readImage(path));
  } catch (const Failure& failure) {
    throw Failure(failure.code, port.key() + ": " + failure.what());
  }
}

// The port of a name, and the part of its value that is named behind a full stop; none for the whole.
struct PortPart {
  QCPort& port;
  std::string part;
};

PortPart portPartNamed(EffectRendering& rendering, const std::string& name) {
  const QCPatch& patch = rendering.patch();
  for (std::size_t dot = name.find('.'); dot != std::string::npos; dot = name.find('.', dot + 1)) {
    if (findInputPort(patch, name)) break;
    if (QCPort* port = findInputPort(patch, name.substr(0, dot))) return {*port, name.substr(dot + 1)};
  }
  return {inputPortNamed(patch, rendering.effect(), name), ""};
}

void setValue(EffectRendering& rendering, const std::string& name, const std::string& value) {
  const auto [port, part] = portPartNamed(rendering, name);
  if (&port == rendering.roles().time) {
    throw Failure(ExitCode::Usage, port.key() + " is the time of the transition; give it with --time");
  }
  if (!part.empty()) {
    setPartOfPort(port, part, value);
  } else if (takesPicture(port, rendering.roles())) {
    setPortFromPicture(dynamic_cast<QCImagePort&>(port), value);
  } else {
    setPortFromText(port, value);
  }
}

}  // namespace

bool takesPicture(const QCPort& port, const EffectRoles& roles) {
  return portKindOf(port) == PortKind::Image && std::ranges::find(roles.inputs, &port) == roles.inputs.end();
}

std::optional<StateKind> stateKindOf(const QCPort& port) {
  switch (portKindOf(port)) {
    case PortKind::Gradient:
      return StateKind::Gradient;
    case PortKind::Levels:
      return StateKind::Levels;
    case PortKind::Opaque:
      return StateKind::Opaque;
    default:
      return std::nullopt;
  }
}

std::vector<std::string> statesWithFiles(const EffectRendering& rendering, const std::vector<std::string>& states) {
  std::vector<std::string> resolved;
  for (const std::string& text : states) {
    const auto [name, path] = stateAssignment(text);
    const QCPort& port = inputPortNamed(rendering.patch(), rendering.effect(), name);
    resolved.push_back(name + "=" + fileOfState(port, path));
  }
  return resolved;
}

void setParameters(EffectRendering& rendering, const std::vector<std::string>& values,
                   const std::vector<std::string>& states) {
  for (const std::string& text : states) {
    const auto [name, path] = stateAssignment(text);
    QCPort& port = inputPortNamed(rendering.patch(), rendering.effect(), name);
    setPortFromState(port, fileOfState(port, path));
  }
  for (const std::string& text : values) {
    const auto [name, value] = valueAssignment(text);
    setValue(rendering, name, value);
  }
}

}  // namespace host
