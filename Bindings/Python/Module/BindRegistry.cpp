// SPDX-License-Identifier: BSD-3-Clause
#include "Module.h"
#include "Patch.h"
#include "PlistConversion.h"
#include "PortArguments.h"
#include "Registry.h"

#include "Host/Files/ProgramFolder.h"
#include "Host/Rendering/Effects.h"
#include "Host/Rendering/Parameters.h"
#include "Host/Rendering/PortKinds.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Registry/VRTExecutionTraits.h"
#include "Registry/VRTNodeManager.h"

#include <algorithm>
#include <string>
#include <utility>

namespace vorto::python {
namespace {

std::string textAttribute(const PropertyList& attributes, const char* key) {
  const PropertyList* value = attributes.find(key);
  return value ? value->stringValue() : "";
}

std::string roleOf(const QCPort& port, const host::EffectRoles& roles) {
  if (std::ranges::find(roles.inputs, &port) != roles.inputs.end()) return "input";
  if (&port == roles.time) return "time";
  return &port == roles.output ? "output" : "parameter";
}

// The name by which a keyword says it: "inputCellSize" is cell_size.
std::string keywordOf(const QCPort& port) {
  std::string key = port.key();
  if (key.size() > 5 && key.starts_with("input")) key = key.substr(5);
  std::string keyword;
  for (std::size_t i = 0; i < key.size(); ++i) {
    const bool isCapital = key[i] >= 'A' && key[i] <= 'Z';
    const bool wasSmall = i > 0 && !(key[i - 1] >= 'A' && key[i - 1] <= 'Z');
    if (isCapital && wasSmall) keyword += '_';
    keyword += isCapital ? static_cast<char>(key[i] - 'A' + 'a') : key[i];
  }
  return keyword;
}

py::object optional(const std::optional<double>& number) {
  return number ? py::object(py::float_(*number)) : py::none();
}

py::dict describedPort(const QCPort& port, const host::EffectRoles& roles) {
  py::dict result;
  const host::PortKind kind = host::portKindOf(port);
  const bool hasDefault = kind != host::PortKind::Image && kind != host::PortKind::Opaque &&
                          kind != host::PortKind::Object && kind != host::PortKind::Gradient &&
                          kind != host::PortKind::Levels;
  result["key"] = port.key();
  result["keyword"] = keywordOf(port);
  result["name"] = port.name();
  result["description"] = textAttribute(port.attributes(), "description");
  result["kind"] = host::portKindName(kind);
  result["role"] = roleOf(port, roles);
  result["minimum"] = optional(host::portRange(port).minimum);
  result["maximum"] = optional(host::portRange(port).maximum);
  result["default"] = hasDefault ? portValue(port) : py::none();
  py::list menu;
  for (const std::string& entry : host::portMenu(port)) menu.append(entry);
  result["menu"] = menu;
  return result;
}

py::list describedPorts(const QCPatch::Ports& ports, const host::EffectRoles& roles) {
  py::list result;
  for (const auto& port : ports) result.append(describedPort(*port, roles));
  return result;
}

py::dict describedPatch(const std::string& name, const QCPatch& patch) {
  py::dict result;
  py::list kinds;
  host::EffectRoles roles;
  for (const host::EffectKind kind : host::effectKindsOf(patch)) {
    if (kinds.empty()) roles = host::effectRoles(patch, kind);
    kinds.append(kind == host::EffectKind::BlendMode ? "blend mode" : host::effectKindKey(kind));
  }
  result["name"] = name;
  result["description"] = textAttribute(patch.attributes(), "description");
  result["kinds"] = kinds;
  result["path"] = VRTNodeManager::manager()->pathOfNodeWithName(name);
  result["depends_on_time"] = dependsOnTime(patch);
  result["keeps_state"] = keepsState(patch);
  result["inputs"] = describedPorts(patch.inputPorts(), roles);
  result["outputs"] = describedPorts(patch.outputPorts(), roles);
  return result;
}

py::list describedEffects() {
  loadEffectsOnce();
  py::list result;
  for (const std::string& name : host::allEffectNames()) {
    if (const auto patch = host::describedEffect(name)) result.append(describedPatch(name, *patch));
  }
  return result;
}

// By any name that finds it.
py::dict describedByName(const std::string& name) {
  loadEffectsOnce();
  const std::string known = host::knownEffectName(name);
  return describedPatch(known, *host::makeEffect(known));
}

py::list failures() {
  loadEffectsOnce();
  py::list result;
  for (const GFNodeManager::LoadFailure& each : VRTNodeManager::manager()->loadFailures()) {
    result.append(py::make_tuple(each.path, each.reason));
  }
  return result;
}

void loadFolder(const std::string& folder) {
  loadEffectsOnce();
  VRTNodeManager::manager()->loadPlugInsInFolder(folder, {"plugin", "qtz"});
}

}  // namespace

void loadEffectsOnce(bool areThere) {
  static bool isDone = false;
  if (!std::exchange(isDone, true) && !areThere) host::loadEffects();
}

void bindRegistry(py::module_& module) {
  module.def("_effects", &describedEffects);
  module.def("_described", &describedByName, py::arg("name"));
  module.def("_host_has_effects", [] { loadEffectsOnce(true); });
  module.def("load_failures", &failures,
             "What could not be loaded: a list of (path, reason), as `vorto effects` says it on standard error.");
  module.def(
      "load_effects", [](const py::object& folder) { loadFolder(pathText(folder)); }, py::arg("folder"),
      "Loads every plug-in bundle (.plugin) and composition (.qtz) of a folder, beside those of the system's folders, "
      "of\n"
      "VORTO_PLUGIN_PATH and of the installation. The first effect of a name stays. See load_failures().");

  py::class_<Patch>(module, "_Patch")
      .def(py::init([](const std::string& name) {
        loadEffectsOnce();
        return std::make_unique<Patch>(name);
      }))
      .def(
          "render",
          [](Patch& patch, const py::sequence& pictures, const py::dict& parameters, double time, py::object size,
             py::object scaling, py::object fit, py::object place, py::object depth) {
            return patch.render(pictures, parameters, {time, size, scaling, fit, place, depth});
          },
          py::arg("pictures"), py::arg("parameters"), py::arg("time"), py::arg("size"), py::arg("scaling"),
          py::arg("fit"), py::arg("place"), py::arg("depth"));
}

}  // namespace vorto::python
