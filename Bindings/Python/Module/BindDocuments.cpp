// SPDX-License-Identifier: BSD-3-Clause
// Saved gradients, levels and opaque data: files of every form, and presets.
#include "Errors.h"
#include "Module.h"
#include "Pictures.h"
#include "PlistConversion.h"
#include "Remarks.h"

#include "Host/Files/OutputFile.h"
#include "Host/Messages/Remark.h"
#include "Host/Presets/PresetLibrary.h"
#include "Host/Presets/PresetReference.h"
#include "Host/States/StateFile.h"
#include "Host/States/StatePrinting.h"

#include <pybind11/stl.h>

#include <optional>
#include <string>
#include <utility>

namespace vorto::python {
namespace {

// What Python knows as vorto.State.
struct State {
  std::string path;
  host::StateFile file;
};

std::optional<host::StateKind> kindNamed(const py::object& name) {
  if (name.is_none()) return std::nullopt;
  const auto text = name.cast<std::string>();
  for (const auto kind : {host::StateKind::Gradient, host::StateKind::Levels, host::StateKind::Opaque}) {
    if (text == host::stateKindName(kind)) return kind;
  }
  throw py::value_error("kind: give gradient, levels or opaque");
}

void tellNotes(const std::string& path, const host::Notes& notes) {
  for (const std::string& note : notes) host::remark(path + ": " + note);
}

State readState(const py::object& path, const py::object& kind) {
  const std::string text = pathText(path);
  const auto wanted = kindNamed(kind);
  return withoutLock([&] {
    State state{text, host::readStateOfText(text, wanted)};
    tellNotes(text, state.file.notes);
    return state;
  });
}

std::string formOf(const State& state) {
  switch (state.file.form) {
    case host::StateForm::Dictionary:
      return "dictionary";
    case host::StateForm::Archive:
      return "archive";
    case host::StateForm::Text:
      break;
  }
  return "text";
}

std::string formatOf(const State& state) {
  if (state.file.form == host::StateForm::Text) return state.file.textFormat;
  return state.file.format == PropertyListFormat::Xml ? "xml" : "binary";
}

std::optional<host::TextFormat> textFormatNamed(const std::string& name) {
  if (name == "text") return host::TextFormat::Text;
  if (name == "css") return host::TextFormat::Css;
  if (name == "svg") return host::TextFormat::Svg;
  if (name == "ggr") return host::TextFormat::Gimp;
  return std::nullopt;
}

PropertyList::Bytes converted(const State& state, const std::string& path, const std::string& format,
                              const std::string& form) {
  if (format == "json") {
    const std::string text = host::stateAsJson(state.file);
    return {text.begin(), text.end()};
  }
  if (const auto text = textFormatNamed(format)) {
    host::Notes notes;
    auto bytes = host::convertedState(state.file, state.path, *text, notes);
    tellNotes(path, notes);
    return bytes;
  }
  if (format != "xml" && format != "binary") {
    throw py::value_error("format: give xml, binary, text, json, css, svg or ggr");
  }
  if (!form.empty() && form != "dictionary" && form != "archive") {
    throw py::value_error("form: give dictionary or archive");
  }
  host::StateForm wanted = form == "archive" ? host::StateForm::Archive : host::StateForm::Dictionary;
  if (form.empty() && state.file.form != host::StateForm::Text) wanted = state.file.form;
  const auto lists = format == "xml" ? PropertyListFormat::Xml : PropertyListFormat::Binary;
  return host::convertedState(state.file, state.path, lists, wanted);
}

void writeState(const State& state, const py::object& path, const std::string& format, const py::object& form) {
  const std::string file = pathText(path);
  withRemarks([&] { host::replaceFile(file, converted(state, file, format, optionText(form))); });
}

py::list presets(const py::object& kind) {
  const auto wanted = kindNamed(kind);
  const host::PresetFolders folders = host::PresetFolders::standard();
  py::list result;
  for (const auto each : {host::StateKind::Gradient, host::StateKind::Levels}) {
    if (wanted.value_or(each) != each) continue;
    const host::PresetLibrary library = withoutLock([&] {
      host::PresetLibrary read = host::readPresets(folders, each);
      for (const host::PresetFault& fault : read.faults) host::remark(fault.file + ": " + fault.reason);
      return read;
    });
    for (const auto& [preset, state, isFavorite] : library.entries) {
      py::dict entry;
      entry["kind"] = host::stateKindName(preset.kind);
      entry["name"] = preset.name;
      entry["collection"] = preset.collection;
      entry["origin"] = preset.origin == host::PresetOrigin::Shipped ? "shipped" : "user";
      entry["favorite"] = isFavorite;
      entry["file"] = preset.file;
      result.append(entry);
    }
  }
  return result;
}

std::string savePreset(const std::string& name, const State& state, const std::string& collection, bool replaces) {
  if (state.file.kind == host::StateKind::Opaque) throw py::value_error("presets are gradients and levels");
  const auto same = replaces ? host::SameName::Replaced : host::SameName::Refused;
  return host::savePreset(host::PresetFolders::standard(), state.file.kind, name, collection, state.file.state, same)
      .file;
}

}  // namespace

void bindDocuments(py::module_& module) {
  py::class_<State>(module, "State",
                    "A saved gradient, levels or opaque parameter, as a file has it; read_state() makes it.")
      .def_readonly("path", &State::path, "As it was given.")
      .def_property_readonly(
          "kind", [](const State& self) { return host::stateKindName(self.file.kind); },
          "\"gradient\", \"levels\" or \"opaque\".")
      .def_property_readonly("form", &formOf, "\"dictionary\", \"archive\" or \"text\".")
      .def_property_readonly("format", &formatOf,
                             "\"xml\" or \"binary\"; of a text \"text\", \"JSON\", \"CSS\", \"SVG\", ...")
      .def_property_readonly(
          "state", [](const State& self) { return objectOfList(self.file.state); },
          "The property list that a port takes; Gradient and Levels are made of it.")
      .def_property_readonly(
          "text", [](const State& self) { return host::stateAsText(self.file); }, "What `vorto state` prints.")
      .def_property_readonly(
          "json", [](const State& self) { return host::stateAsJson(self.file); }, "What `vorto state --json` prints.")
      .def("write", &writeState, py::arg("path"), py::arg("format") = "xml", py::kw_only(),
           py::arg("form") = py::none(),
           "Writes it as \"xml\", \"binary\", \"text\", \"json\", or a gradient as \"css\", \"svg\" or \"ggr\"; the "
           "old file stays\n"
           "where that fails. form: \"dictionary\" or \"archive\" of property lists, else that of the file.")
      .def("__repr__", [](const State& self) {
        return "<vorto.State " + std::string(host::stateKindName(self.file.kind)) + " " + self.path + ">";
      });
  module.def(
      "read_state", &readState, py::arg("path"), py::arg("kind") = py::none(),
      "A saved parameter from a file of any form, or of \"preset:NAME\". kind: \"gradient\", \"levels\" or \"opaque\", "
      "for\n"
      "files that do not tell themselves. What of another program's gradient was approximated comes as a warning.");
  module.def(
      "presets", &presets, py::arg("kind") = py::none(),
      "The presets that go by a name, the user's own first: dicts of kind, name, collection, origin, favorite, file.");
  module.def(
      "save_preset", &savePreset, py::arg("name"), py::arg("state"), py::kw_only(), py::arg("collection") = "",
      py::arg("replace") = false,
      "Saves a State among the user's presets, and returns its file. A name that is taken is refused, unless it is to\n"
      "be replaced.");
}

}  // namespace vorto::python
