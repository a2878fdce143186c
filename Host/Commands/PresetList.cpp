// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/PresetList.h"

#include "Host/Messages/Json.h"
#include "Host/Messages/Remark.h"
#include "Host/Messages/StandardOutput.h"
#include "Host/Messages/Table.h"
#include "Host/Presets/PresetLibrary.h"

namespace host {
namespace {

const char* originName(PresetOrigin origin) {
  return origin == PresetOrigin::Shipped ? "shipped" : "user";
}

void printTables(const PresetFolders& folders) {
  for (const StateKind kind : {StateKind::Gradient, StateKind::Levels}) {
    const PresetLibrary library = readPresets(folders, kind);
    Table table({Table::Left, Table::Left, Table::Left, Table::Left});
    for (const auto& [preset, state, isFavorite] : library.entries) {
      table.addRow({preset.name, preset.collection, std::string(originName(preset.origin)) + (isFavorite ? " *" : ""),
                    preset.file});
    }
    printText(std::string(presetFolderName(kind)) + "\n" + table.text("  "));
    for (const PresetFault& fault : library.faults) remark(fault.file + ": " + fault.reason);
  }
}

void write(JsonWriter& json, const PresetEntry& entry) {
  json.beginObject();
  json.key("kind");
  json.value(stateKindName(entry.preset.kind));
  json.key("name");
  json.value(entry.preset.name);
  json.key("collection");
  json.value(entry.preset.collection);
  json.key("origin");
  json.value(originName(entry.preset.origin));
  json.key("favorite");
  json.value(entry.isFavorite);
  json.key("file");
  json.value(entry.preset.file);
  json.endObject();
}

void write(JsonWriter& json, const PresetFault& fault) {
  json.beginObject();
  json.key("file");
  json.value(fault.file);
  json.key("reason");
  json.value(fault.reason);
  json.endObject();
}

void printJson(const PresetFolders& folders) {
  const PresetLibrary libraries[] = {readPresets(folders, StateKind::Gradient),
                                     readPresets(folders, StateKind::Levels)};
  JsonWriter json;
  json.beginObject();
  json.key("presets");
  json.beginArray();
  for (const PresetLibrary& library : libraries) {
    for (const PresetEntry& entry : library.entries) write(json, entry);
  }
  json.endArray();
  json.key("unreadable");
  json.beginArray();
  for (const PresetLibrary& library : libraries) {
    for (const PresetFault& fault : library.faults) write(json, fault);
  }
  json.endArray();
  json.endObject();
  printText(json.take());
}

}  // namespace

void printPresets(bool isJson) {
  const PresetFolders folders = PresetFolders::standard();
  isJson ? printJson(folders) : printTables(folders);
}

}  // namespace host
