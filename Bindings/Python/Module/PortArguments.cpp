// SPDX-License-Identifier: BSD-3-Clause
#include "PortArguments.h"

#include "Errors.h"
#include "Pictures.h"
#include "PlistConversion.h"

#include "Host/Messages/Failure.h"
#include "Host/Messages/Json.h"
#include "Host/Rendering/EffectRendering.h"
#include "Host/Rendering/Parameters.h"
#include "Host/Rendering/PortKinds.h"
#include "Host/States/StateChecks.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTImage.h"
#include "Ports/VRTObjects.h"
#include "TarnCore/TCColor.h"

#include <algorithm>
#include <filesystem>

namespace vorto::python {
namespace {

using host::PortKind;

// The keyword's port, with the part behind a full stop.
struct Named {
  QCPort& port;
  std::string part;
};

Named named(const host::EffectRendering& effect, const std::string& keyword) {
  const std::size_t dot = keyword.find('.');
  std::string name = keyword.substr(0, dot);
  QCPort* port = host::findInputPort(effect.patch(), name);
  if (!port) {
    std::erase(name, '_');
    port = host::findInputPort(effect.patch(), name);
  }
  if (!port) port = &host::inputPortNamed(effect.patch(), effect.effect(), keyword);  // which throws
  return {*port, dot == std::string::npos ? "" : keyword.substr(dot + 1)};
}

[[noreturn]] void refuse(const QCPort& port, const py::handle& value, const std::string& wanted) {
  throw py::type_error(port.key() + ": the port takes " + wanted + ", not " +
                       std::string(py::str(py::type::handle_of(value).attr("__name__"))));
}

void setText(host::EffectRendering& effect, const std::string& name, const std::string& text) {
  host::setParameters(effect, {name + "=" + text}, {});
}

void setFile(host::EffectRendering& effect, const QCPort& port, const std::string& path) {
  host::setParameters(effect, {}, {port.key() + "=" + path});
}

// Text, or else the file of that name.
void setTextOrFile(host::EffectRendering& effect, const QCPort& port, const std::string& text) {
  std::error_code ignored;
  if (text.starts_with("preset:") || host::portKindOf(port) == PortKind::Opaque) return setFile(effect, port, text);
  try {
    setText(effect, port.key(), text);
  } catch (const host::Failure&) {
    if (!std::filesystem::is_regular_file(text, ignored)) throw;
    setFile(effect, port, text);
  }
}

double numberOf(const QCPort& port, const py::handle& value) {
  const auto number = py::reinterpret_steal<py::object>(PyNumber_Float(value.ptr()));
  if (number) return number.cast<double>();
  PyErr_Clear();
  refuse(port, value, "a number");
}

std::string colorText(const QCPort& port, const py::handle& value) {
  if (py::isinstance<VortoColor>(value)) return colorText(port, value.attr("rgba"));
  if (!PySequence_Check(value.ptr())) refuse(port, value, "a color: three or four numbers, or text");
  std::string text;
  for (const auto& component : py::reinterpret_borrow<py::sequence>(value)) {
    text += (text.empty() ? "" : ",") + host::numberText(numberOf(port, component));
  }
  return text;
}

void setState(QCPort& port, const PropertyList& state) {
  const auto kind = host::stateKindOf(port);
  std::string reason = kind ? host::faultOfState(*kind, state) : "the port takes no states";
  if (!reason.empty() || !port.setStateValue(state, &reason)) throw Error(port.key() + ": " + reason);
}

// Objects are copied: the port's own does not change with the program's.
void setObject(QCPort& port, const VRTObject& object) {
  std::string reason;
  if (!port.setValue(object.copyWithZone(), &reason)) throw Error(port.key() + ": " + reason);
}

void setParameter(host::EffectRendering& effect, QCPort& port, const py::handle& value) {
  if (py::isinstance<VRTGradient>(value)) return setObject(port, value.cast<const VRTGradient&>());
  if (py::isinstance<VRTHistogram>(value)) return setObject(port, value.cast<const VRTHistogram&>());
  if (py::isinstance<py::dict>(value)) return setState(port, listOfObject(value));
  if (py::hasattr(value, "__fspath__")) return setFile(effect, port, pathText(value));
  refuse(port, value, std::string(host::portKindName(host::portKindOf(port))) + " as an object, text or a path");
}

void setPicture(host::EffectRendering& effect, QCPort& port, const py::handle& value) {
  if (!host::takesPicture(port, effect.roles())) {
    throw py::type_error(port.key() + ": the port's picture is given in front of the keywords");
  }
  auto& image = dynamic_cast<QCImagePort&>(port);
  if (value.is_none()) return VRTImage::setBitmapOfPort(image, nullptr);
  if (isPath(value)) return setText(effect, port.key(), pathText(value));
  // The program may go on with its own.
  VRTImage::setBitmapOfPort(image, std::make_shared<VortoBitmap>(*givenPicture(value).held.bitmap));
}

void setWhole(host::EffectRendering& effect, QCPort& port, const py::handle& value) {
  const PortKind kind = host::portKindOf(port);
  if (kind == PortKind::Image) return setPicture(effect, port, value);
  const bool isText = py::isinstance<py::str>(value);
  switch (kind) {
    case PortKind::Number:
    case PortKind::Index:
      return setText(effect, port.key(), isText ? value.cast<std::string>() : host::numberText(numberOf(port, value)));
    case PortKind::Boolean: {
      const int truth = isText ? 0 : PyObject_IsTrue(value.ptr());
      if (truth < 0) throw py::error_already_set();
      return setText(effect, port.key(), isText ? value.cast<std::string>() : truth ? "true" : "false");
    }
    case PortKind::Color:
      return setText(effect, port.key(), isText ? value.cast<std::string>() : colorText(port, value));
    case PortKind::String:
      if (!isText) refuse(port, value, "text");
      return setText(effect, port.key(), value.cast<std::string>());
    default:
      return isText ? setTextOrFile(effect, port, value.cast<std::string>()) : setParameter(effect, port, value);
  }
}

}  // namespace

QCPort& setPort(host::EffectRendering& effect, const std::string& keyword, const py::handle& value) {
  const auto [port, part] = named(effect, keyword);
  if (&port == effect.roles().time) throw py::type_error(port.key() + " is the time of the transition: give time=");
  if (part.empty()) {
    setWhole(effect, port, value);
  } else {
    const bool isText = py::isinstance<py::str>(value);
    setText(effect, port.key() + "." + part,
            isText ? value.cast<std::string>() : host::numberText(numberOf(port, value)));
  }
  return port;
}

py::object portValue(const QCPort& port) {
  switch (host::portKindOf(port)) {
    case PortKind::Number:
      return py::float_(dynamic_cast<const QCNumberPort&>(port).doubleValue());
    case PortKind::Boolean:
      return py::bool_(dynamic_cast<const QCBooleanPort&>(port).booleanValue());
    case PortKind::Index:
      return py::int_(dynamic_cast<const QCIndexPort&>(port).indexValue());
    case PortKind::String:
      return py::str(dynamic_cast<const QCStringPort&>(port).stringValue());
    case PortKind::Color: {
      const auto color = dynamic_cast<const QCColorPort&>(port).colorValue();
      return py::make_tuple(color->red, color->green, color->blue, color->alpha);
    }
    case PortKind::Image: {
      const host::BitmapRef bitmap = VRTImage::bitmapOfPort(dynamic_cast<const QCImagePort&>(port));
      return bitmap ? py::cast(std::make_shared<Bitmap>(bitmap)) : py::none();
    }
    case PortKind::Gradient: {
      const auto gradient = std::dynamic_pointer_cast<VRTGradient>(port.value());
      return py::cast(gradient ? std::dynamic_pointer_cast<VRTGradient>(gradient->copyWithZone())
                               : VRTGradient::gradient());
    }
    case PortKind::Levels: {
      const auto levels = std::dynamic_pointer_cast<VRTHistogram>(port.value());
      return py::cast(levels ? std::dynamic_pointer_cast<VRTHistogram>(levels->copyWithZone())
                             : VRTHistogram::histogram());
    }
    default:
      return py::none();
  }
}

}  // namespace vorto::python
