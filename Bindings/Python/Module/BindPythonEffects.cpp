// SPDX-License-Identifier: BSD-3-Clause
#include "Module.h"
#include "PlistConversion.h"
#include "PythonPatch.h"
#include "Registry.h"

#include "Registry/VRTNodeManager.h"

#include <map>
#include <string>
#include <utility>

namespace vorto::python {
namespace {

struct Written {
  PropertyList attributes;
  PyObject* plan = nullptr;  // owned, for the life of the process: the registry asks for instances until its end
};

// By name. A class may be defined anew, as in a notebook: from then on instances are of the new one.
std::map<std::string, Written>& writtenEffects() {
  static auto& effects = *new std::map<std::string, Written>;
  return effects;
}

std::shared_ptr<QCPatch> instanceOf(const std::string& name) {
  const py::gil_scoped_acquire locked;
  const Written& effect = writtenEffects().at(name);
  try {
    return std::make_shared<PythonPatch>(effect.attributes, py::reinterpret_borrow<py::object>(effect.plan));
  } catch (py::error_already_set& error) {
    const std::string text = error.what();
    error.restore();
    PyErr_Clear();
    throw std::runtime_error(text);
  }
}

void redefine(Written& effect, const std::string& name, PropertyList attributes, const py::object& plan) {
  const PropertyList* const before = effect.attributes.find("protocols");
  const PropertyList* const now = attributes.find("protocols");
  if (!before || !now || !(*before == *now)) {
    throw py::value_error("the effect \"" + name +
                          "\" is there already, with other pictures: give this one another name");
  }
  Py_DECREF(effect.plan);
  effect = {std::move(attributes), py::object(plan).release().ptr()};
}

void registerEffect(const std::string& name, const py::dict& described, const py::object& plan) {
  loadEffectsOnce();
  PropertyList attributes = listOfObject(described);
  if (const auto found = writtenEffects().find(name); found != writtenEffects().end()) {
    return redefine(found->second, name, std::move(attributes), plan);
  }
  PythonPatch(attributes, plan);  // so that what is wrong with it is said now
  if (!VRTNodeManager::manager()->registerNodeWithName(name, attributes, [name] { return instanceOf(name); })) {
    throw py::value_error("there is an effect \"" + name + "\" already");
  }
  writtenEffects()[name] = {std::move(attributes), py::object(plan).release().ptr()};
}

}  // namespace

void bindPythonEffects(py::module_& module) {
  module.def("_register_effect", &registerEffect, py::arg("name"), py::arg("attributes"), py::arg("plan"));
}

}  // namespace vorto::python
