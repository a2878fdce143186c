// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/Out/TextParameter.h"

#include "Host/Files/PictureReading.h"
#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Utf8.h"
#include "Host/Presets/PresetReference.h"
#include "Host/Rendering/Parameters.h"
#include "Host/Rendering/PortKinds.h"
#include "Host/Rendering/PortValues.h"
#include "Host/Texts/GradientText.h"
#include "Host/Texts/LevelsText.h"
#include "Platform/QuartzComposer/QCPort.h"
#include "Ports/VRTImage.h"

#include <algorithm>
#include <filesystem>

namespace frei0r {
namespace {

using host::Failure;
using host::PortKind;

std::string textOfState(const QCPort& port) {
  const auto state = port.stateValue();
  if (!state) return "";
  if (host::portKindOf(port) == PortKind::Gradient) return host::textOfGradient(host::stopsOfState(*state));
  std::string text = host::textOfLevels(*state, nullptr).value_or("");
  std::ranges::replace(text, '\n', ' ');
  return text;
}

bool isFile(const std::string& path) {
  std::error_code ignored;
  return std::filesystem::is_regular_file(path, ignored);
}

void setPortFromStateFile(QCPort& port, const std::string& text) {
  const auto kind = host::stateKindOf(port);
  const host::StateFile file = host::readStateOfText(text, kind);
  if (file.kind != kind) {
    throw Failure(host::ExitCode::Usage,
                  port.key() + "=" + text + ": the file holds a state of the kind " + host::stateKindName(file.kind));
  }
  std::string reason;
  if (!port.setStateValue(file.state, &reason)) {
    throw Failure(host::ExitCode::Input, port.key() + "=" + text + ": " + reason);
  }
}

void setPortFromState(QCPort& port, const std::string& text) {
  const bool hasText = host::portKindOf(port) != PortKind::Opaque;
  if (!hasText || host::isPresetReference(text)) return setPortFromStateFile(port, text);
  try {
    host::setPortFromText(port, text);
  } catch (const Failure&) {
    const bool isNamedAsFile = text.starts_with('/') || text.starts_with("./") || text.starts_with("../");
    if (!isNamedAsFile && !isFile(text)) throw;
    setPortFromStateFile(port, text);
  }
}

}  // namespace

std::string explanationOfText(const QCPort& port) {
  switch (host::portKindOf(port)) {
    case PortKind::Index: {
      const std::vector<std::string> menu = host::portMenu(port);
      if (!menu.empty()) return host::joinedNames(menu, ", ");
      const std::string range = host::rangeText(host::portRange(port));
      return "A whole number" + (range.empty() ? "" : ", " + range);
    }
    case PortKind::Gradient:
      return "As \"navy, orange smooth 60%, white\", a state's file, or preset:NAME";
    case PortKind::Levels:
      return "As \"gamma=1.2, red.blackIn=10%\", a state's file, or preset:NAME";
    case PortKind::Opaque:
      return "A state's file";
    case PortKind::Image:
      return "A picture's file";
    default:
      return "A text";
  }
}

std::string textOfPort(const QCPort& port) {
  switch (host::portKindOf(port)) {
    case PortKind::Index: {
      const auto* index = dynamic_cast<const QCIndexPort*>(&port);
      const std::uint32_t value = index ? index->indexValue() : 0;
      const std::vector<std::string> menu = host::portMenu(port);
      return value < menu.size() ? menu[value] : std::to_string(value);
    }
    case PortKind::String: {
      const auto* string = dynamic_cast<const QCStringPort*>(&port);
      return string ? string->stringValue() : "";
    }
    case PortKind::Gradient:
    case PortKind::Levels:
      return textOfState(port);
    default:
      return "";
  }
}

void setPortFromParameter(QCPort& port, const std::string& text) {
  const PortKind kind = host::portKindOf(port);
  if (text.empty() && kind != PortKind::String) return;
  if (host::validUtf8(text) != text) {
    throw Failure(host::ExitCode::Usage, port.key() + ": the text is not UTF-8");
  }
  if (host::stateKindOf(port)) return setPortFromState(port, text);
  if (kind == PortKind::Image) {
    return VRTImage::setBitmapOfPort(dynamic_cast<QCImagePort&>(port), host::readImage(text));
  }
  host::setPortFromText(port, text);
}

}  // namespace frei0r
