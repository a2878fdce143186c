// SPDX-License-Identifier: BSD-3-Clause
#include "States.h"

#include "Errors.h"
#include "Host/States/StateChecks.h"
#include "Host/States/StatePrinting.h"
#include "Host/Texts/ParameterText.h"
#include "Platform/Foundation/NSFiles.h"
#include "Platform/Foundation/NSKeyedArchiver.h"

namespace vorto::python {
namespace {

PropertyListFormat formatNamed(const std::string& name) {
  if (name == "xml") return PropertyListFormat::Xml;
  if (name == "binary") return PropertyListFormat::Binary;
  throw py::value_error("the format is xml or binary, not " + name);
}

std::optional<host::TextFormat> textFormatNamed(const std::string& name) {
  if (name == "text") return host::TextFormat::Text;
  if (name == "css") return host::TextFormat::Css;
  if (name == "svg") return host::TextFormat::Svg;
  if (name == "gimp") return host::TextFormat::Gimp;
  return std::nullopt;
}

std::string textOf(const VRTObject& object, host::TextFormat format) {
  std::string reason;
  host::Notes notes;
  auto text = host::textOfParameter(kindOf(object), stateOf(object), format, notes, &reason);
  if (!text) throw Error(reason);
  warn(notes);
  return std::move(*text);
}

std::string jsonOf(const std::shared_ptr<VRTObject>& object) {
  host::StateFile file;
  file.kind = kindOf(*object);
  file.form = host::StateForm::Dictionary;
  file.object = object;
  file.state = stateOf(*object);
  file.list = file.state;
  return host::stateAsJson(file);
}

}  // namespace

void warn(const host::Notes& notes) {
  for (const std::string& note : notes) {
    if (PyErr_WarnEx(PyExc_UserWarning, note.c_str(), 1) != 0) throw py::error_already_set();
  }
}

std::optional<host::StateKind> stateKindNamed(const std::optional<std::string>& name) {
  if (!name) return std::nullopt;
  for (const auto kind : {host::StateKind::Gradient, host::StateKind::Levels, host::StateKind::Opaque}) {
    if (*name == host::stateKindName(kind)) return kind;
  }
  throw py::value_error("the kind is gradient, levels or opaque, not " + *name);
}

host::StateKind kindOf(const VRTObject& object) {
  if (dynamic_cast<const VRTGradient*>(&object)) return host::StateKind::Gradient;
  return dynamic_cast<const VRTHistogram*>(&object) ? host::StateKind::Levels : host::StateKind::Opaque;
}

std::shared_ptr<VRTObject> parameterOfBytes(const PropertyList::Bytes& bytes, std::optional<host::StateKind> kind) {
  std::string reason;
  const auto file = host::stateFileFromBytes(bytes, &reason, kind);
  if (!file) throw Error(reason);
  if (kind && kindOf(*file->object) != *kind) {
    throw Error(std::string("this is ") + host::stateKindName(file->kind) + ", not " + host::stateKindName(*kind));
  }
  warn(file->notes);
  return file->object;
}

std::shared_ptr<VRTObject> parameterOfText(const std::string& text, std::optional<host::StateKind> kind) {
  try {
    host::ParameterText read = host::parameterOfText(host::withoutByteOrderMark(text), kind);
    if (kind && read.kind != *kind) {
      throw py::value_error(std::string("this is ") + host::stateKindName(read.kind) + ", not " +
                            host::stateKindName(*kind));
    }
    warn(read.notes);
    return parameterOfState(read.state, read.kind);
  } catch (const host::TextFault& fault) {
    throw py::value_error(host::faultWithPlace(text, fault, text.find('\n') == std::string::npos));
  }
}

std::shared_ptr<VRTObject> parameterOfState(const PropertyList& state, host::StateKind kind) {
  const bool isExpectedType = kind == host::StateKind::Opaque ? state.isData() : state.isDictionary();
  std::string reason = isExpectedType ? host::faultOfState(kind, state)
                                      : std::string("this is no state: it is of the type ") + state.typeName();
  if (!reason.empty()) throw Error(reason);
  std::shared_ptr<VRTObject> object;
  switch (kind) {
    case host::StateKind::Gradient:
      object = VRTGradient::gradient();
      break;
    case host::StateKind::Levels:
      object = VRTHistogram::histogram();
      break;
    case host::StateKind::Opaque:
      object = VRTOpaqueData::data();
      break;
  }
  if (!object->initWithStateValue(state, &reason)) throw Error(reason);
  return object;
}

PropertyList stateOf(const VRTObject& object) {
  auto state = object.stateValue();
  if (!state) throw Error("what it holds has no state");
  return std::move(*state);
}

PropertyList::Bytes writtenParameter(const std::shared_ptr<VRTObject>& object, const std::string& form,
                                     const std::string& format) {
  if (const auto textFormat = textFormatNamed(form)) {
    const std::string text = textOf(*object, *textFormat);
    return {text.begin(), text.end()};
  }
  if (form == "json") {
    const std::string text = jsonOf(object);
    return {text.begin(), text.end()};
  }
  if (form != "state" && form != "archive") {
    throw py::value_error("the form is state, archive, text, css, svg, gimp or json, not " + form);
  }
  const PropertyListFormat wanted = formatNamed(format);
  std::string reason;
  auto bytes = form == "archive" ? NSKeyedArchiver::archivedData(object, wanted, &reason)
                                 : PropertyListToBytes(stateOf(*object), wanted, &reason);
  if (!bytes) throw Error(reason);
  return std::move(*bytes);
}

void saveParameter(const std::shared_ptr<VRTObject>& object, const std::string& path, const std::string& form,
                   const std::string& format) {
  const PropertyList::Bytes bytes = writtenParameter(object, form, format);
  std::string reason;
  if (!NSWriteFile(path, bytes, &reason)) throw Error(path + ": " + reason);
}

}  // namespace vorto::python
