// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/States/StateFile.h"
#include "Module.h"
#include "PlistConversion.h"
#include "Ports/VRTObjects.h"

#include <memory>
#include <optional>
#include <string>

// Saved parameters: what gradients, levels and opaque data have in common.
namespace vorto::python {

// What is to be said of a conversion becomes warnings.
void warn(const host::Notes& notes);

std::optional<host::StateKind> stateKindNamed(const std::optional<std::string>& name);  // ValueError for unknown names

// A parameter from the bytes of a file, from a text, and from its state. Error and ValueError with the reason.
std::shared_ptr<VRTObject> parameterOfBytes(const PropertyList::Bytes& bytes, std::optional<host::StateKind> kind);
std::shared_ptr<VRTObject> parameterOfText(const std::string& text, std::optional<host::StateKind> kind);
std::shared_ptr<VRTObject> parameterOfState(const PropertyList& state, host::StateKind kind);

PropertyList stateOf(const VRTObject& object);  // Error when it has none
// In the form "state", "archive", "text", "css", "svg", "gimp" or "json"; the first two in the format "xml" or
// "binary".
PropertyList::Bytes writtenParameter(const std::shared_ptr<VRTObject>& object, const std::string& form,
                                     const std::string& format);
void saveParameter(const std::shared_ptr<VRTObject>& object, const std::string& path, const std::string& form,
                   const std::string& format);

host::StateKind kindOf(const VRTObject& object);

// The methods that all three classes have.
template <class Class>
void bindState(py::class_<Class, VRTObject, std::shared_ptr<Class>>& type, host::StateKind kind) {
  const auto cast = [](std::shared_ptr<VRTObject> object) {
    return std::static_pointer_cast<Class>(std::move(object));
  };
  type.def_static(
      "from_state", [kind, cast](const py::object& state) { return cast(parameterOfState(listOfObject(state), kind)); },
      py::arg("state"),
      "The parameter of a state, as state() gives it. Error with the reason when it is incomplete or its numbers are "
      "not "
      "finite.");
  type.def_static(
      "from_bytes", [kind, cast](const py::buffer& data) { return cast(parameterOfBytes(bytesOfObject(data), kind)); },
      py::arg("data"),
      "The parameter in the bytes of a file: a state, XML or binary, a keyed archive, JSON or one of the text forms. "
      "Error "
      "with the reason.");
  type.def_static(
      "read", [kind, cast](const std::string& path) { return cast(host::readStateFile(path, kind).object); },
      py::arg("path"), "from_bytes() of a file. Error with path and reason.");
  type.def(
      "state", [](const Class& self) { return objectOfList(stateOf(self)); },
      "What documents keep: a dict, or bytes of opaque data. Changing it does not change the parameter.");
  type.def(
      "archive",
      [](const std::shared_ptr<Class>& self, const std::string& format) {
        return bytesOf(writtenParameter(self, "archive", format));
      },
      py::arg("format") = "binary", "A keyed archive of the parameter, in the format binary or xml.");
  type.def(
      "save",
      [](const std::shared_ptr<Class>& self, const std::string& path, const std::string& form,
         const std::string& format) { saveParameter(self, path, form, format); },
      py::arg("path"), py::arg("form") = "state", py::arg("format") = "xml",
      "Write the parameter into a file, which is replaced as a whole or stays as it was. Forms: state, archive (in the "
      "format xml or binary), json, and what text() knows. Error with path and reason.");
  const auto copy = [cast](const Class& self) {
    auto copied = std::static_pointer_cast<VRTObject>(self.copyWithZone());
    if (!copied) throw py::value_error("what it holds cannot be copied");
    return cast(std::move(copied));
  };
  type.def("copy", copy, "An independent copy.");
  type.def("__copy__", copy, "An independent copy.");
  type.def(
      "__deepcopy__", [copy](const Class& self, const py::dict&) { return copy(self); }, py::arg("memo"),
      "An independent copy.");
  type.def(
      "__eq__", [](const Class& self, const Class& other) { return stateOf(self) == stateOf(other); }, py::arg("other"),
      py::is_operator(), "Whether the states are the same, numbers bit for bit.");
  type.attr("__hash__") = py::none();
  type.def(
      py::pickle([](const Class& self) { return objectOfList(stateOf(self)); },
                 [kind, cast](const py::object& state) { return cast(parameterOfState(listOfObject(state), kind)); }));
}

// text() of gradients and levels.
template <class Class>
void bindText(py::class_<Class, VRTObject, std::shared_ptr<Class>>& type, const char* text) {
  type.def(
      "text",
      [](const std::shared_ptr<Class>& self, const std::string& form) {
        const PropertyList::Bytes bytes = writtenParameter(self, form, "xml");
        std::string written(bytes.begin(), bytes.end());
        while (written.ends_with('\n')) written.pop_back();
        return written;
      },
      py::arg("form") = "text", text);
}

void bindGradient(py::module_& module);
void bindLevels(py::module_& module);

}  // namespace vorto::python
