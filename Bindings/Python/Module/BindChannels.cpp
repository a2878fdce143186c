// SPDX-License-Identifier: BSD-3-Clause
// The values of parameters, and how they are kept.
#include "Errors.h"
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "States.h"

#include <pybind11/stl.h>

namespace vorto::python {
namespace {

void bindOpaqueData(py::module_& module) {
  py::class_<VRTOpaqueData, VRTObject, std::shared_ptr<VRTOpaqueData>> type(
      module, "OpaqueData",
      "Any value that can be archived, as one parameter: what a property list holds, None, and other parameters.");
  type.def(py::init([](const py::object& value) { return VRTOpaqueData::dataWithValue(archivedOfObject(value)); }),
           py::arg("value") = py::none(), "Opaque data of a value. TypeError for what cannot be archived.");
  type.def_property_readonly(
      "value", [](const VRTOpaqueData& self) { return objectOfArchived(self.value()); },
      "The value; each time a new one but for parameters, which are shared.");
  type.def(
      "__repr__",
      [](const VRTOpaqueData& self) {
        return "vorto.OpaqueData(" + py::cast<std::string>(py::repr(objectOfArchived(self.value()))) + ")";
      },
      "The value.");
  bindState(type, host::StateKind::Opaque);
}

py::bytes archive(const py::object& value, const std::string& format) {
  if (format != "binary" && format != "xml") throw py::value_error("the format is xml or binary, not " + format);
  std::string reason;
  const auto bytes = NSKeyedArchiver::archivedData(
      archivedOfObject(value), format == "xml" ? PropertyListFormat::Xml : PropertyListFormat::Binary, &reason);
  if (!bytes) throw Error(reason);
  return bytesOf(*bytes);
}

py::object unarchive(const py::buffer& data) {
  std::string reason;
  const NSObjectRef object = NSKeyedUnarchiver::unarchiveObject(bytesOfObject(data), &reason);
  if (!object && !reason.empty()) throw Error(reason);
  return objectOfArchived(object);
}

}  // namespace

void bindChannels(py::module_& module) {
  py::class_<VRTObject, std::shared_ptr<VRTObject>>(module, "Parameter",
                                                    "What gradients, levels and opaque data are: values of ports.");
  bindGradient(module);
  bindLevels(module);
  bindOpaqueData(module);
  module.def(
      "parse_state",
      [](const py::object& data, const std::optional<std::string>& kind) {
        if (!PyUnicode_Check(data.ptr())) return parameterOfBytes(bytesOfObject(data), stateKindNamed(kind));
        const auto text = py::cast<std::string>(data);
        return parameterOfBytes({text.begin(), text.end()}, stateKindNamed(kind));
      },
      py::arg("data"), py::arg("kind") = py::none(),
      "The Gradient, Levels or OpaqueData in a text or in the bytes of a file, in whatever form it is. `kind`, one of "
      "\"gradient\", \"levels\" and \"opaque\", where they do not tell. Error with the reason.");
  module.def(
      "read_state",
      [](const std::string& path, const std::optional<std::string>& kind) {
        const host::StateFile file = host::readStateFile(path, stateKindNamed(kind));
        warn(file.notes);
        return file.object;
      },
      py::arg("path"), py::arg("kind") = py::none(), "parse_state() of a file. Error with path and reason.");
  module.def(
      "archive", &archive, py::arg("value"), py::arg("format") = "binary",
      "A keyed archive of a value: what a property list holds, None, parameters, and lists and dicts of these. The "
      "format is binary or xml. TypeError for other values.");
  module.def(
      "unarchive", &unarchive, py::arg("data"),
      "The value in a keyed archive. Error with the reason for bytes that are none, for unknown classes, and beyond "
      "the limits of property lists.");
}

}  // namespace vorto::python
