// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Guidance/CompletionValues.h"

#include "Host/Color/KnownSpaces.h"
#include "Host/Messages/Failure.h"
#include "Host/Presets/PresetFolders.h"
#include "Host/Rendering/EffectRendering.h"
#include "Host/Rendering/Effects.h"
#include "Host/Rendering/Parameters.h"
#include "Host/Rendering/PortKinds.h"
#include "Host/Texts/ColorText.h"
#include "Host/Texts/TextReader.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Ports/VRTStateKeys.h"

#include <algorithm>
#include <set>

namespace host {
namespace {

constexpr std::string_view kPreset = "preset:";

std::shared_ptr<QCPatch> effectNamed(const std::string& name) {
  if (name.empty()) return nullptr;
  loadEffects();
  try {
    return makeEffect(name);
  } catch (const Failure&) {
    return nullptr;
  }
}

std::string descriptionOf(const QCPatch& patch) {
  const PropertyList* text = patch.attributes().find("description");
  return text ? text->stringValue() : "";
}

Completions effects() {
  loadEffects();
  Completions completions;
  std::set<std::string> known;
  for (const EffectKind kind : kEffectKinds) {
    for (const std::string& name : effectNames(kind)) {
      const auto effect = describedEffect(name);
      if (known.insert(name).second) completions.candidates.push_back({name, effect ? descriptionOf(*effect) : ""});
    }
  }
  return completions;
}

// The short name by which people call a port: its key without "input", in small letters at its start.
std::string shortName(const std::string& key) {
  constexpr std::string_view kInput = "input";
  std::string name = key.starts_with(kInput) && key.size() > kInput.size() ? key.substr(kInput.size()) : key;
  if (name[0] >= 'A' && name[0] <= 'Z') name[0] = static_cast<char>(name[0] - 'A' + 'a');
  return name;
}

std::string summaryOf(const QCPort& port) {
  std::string text = portKindName(portKindOf(port));
  if (const auto menu = portMenu(port); menu.empty()) {
    if (const std::string range = rangeText(portRange(port)); !range.empty()) text += ", " + range;
  }
  return text;
}

// The kind of an effect of several decides nothing here but which ports --input and --time fill.
bool isFilledOtherwise(const QCPatch& patch, const QCPort& port) {
  return std::ranges::any_of(effectKindsOf(patch), [&](EffectKind kind) {
    const EffectRoles roles = effectRoles(patch, kind);
    return roles.time == &port || std::ranges::find(roles.inputs, &port) != roles.inputs.end();
  });
}

template <class Wanted>
Completions ports(const QCPatch& patch, Wanted wanted) {
  Completions completions;
  for (const auto& port : patch.inputPorts()) {
    if (wanted(*port)) completions.candidates.push_back({shortName(port->key()) + "=", summaryOf(*port)});
  }
  return completions;
}

// "levels.gamma=", ... behind "levels.".
Completions parts(const std::string& port) {
  using namespace VRTStateKeys;
  Completions completions;
  for (const char* const channel : kLevelsChannels) {
    const std::string lead = port + "." + (channel == kLevelsChannels[0] ? "" : lowered(channel) + ".");
    for (const char* const value : kLevelsValues) completions.candidates.push_back({lead + value + "=", ""});
  }
  completions.candidates.push_back({port + "." + kSelectedChannel + "=", ""});
  return completions;
}

Completions words(const std::vector<std::string>& list) {
  Completions completions;
  for (const std::string& word : list) completions.candidates.push_back({word, ""});
  return completions;
}

Completions presets(std::optional<StateKind> wanted) {
  const PresetFolders folders = PresetFolders::standard();
  Completions completions;
  for (const StateKind kind : {StateKind::Gradient, StateKind::Levels}) {
    if (wanted && kind != *wanted) continue;
    for (const Preset& preset : listPresets(folders, kind).presets) {
      completions.candidates.push_back(
          {std::string(kPreset) + preset.name,
           wanted ? preset.collection : std::string(stateKindName(kind)) + ", " + preset.collection});
    }
  }
  return completions;
}

// A file, or "preset:" and what goes by such a name.
Completions stateFiles(std::optional<StateKind> kind, std::string_view typed) {
  if (kind == StateKind::Opaque) return {Completions::Paths::Files, "", {}};
  if (typed.starts_with(kPreset)) return presets(kind);
  return {Completions::Paths::Files, "", {{std::string(kPreset), "by its name"}}};
}

Completions portValues(const QCPatch& patch, const QCPort& port) {
  switch (portKindOf(port)) {
    case PortKind::Boolean:
      return words({"true", "false"});
    case PortKind::Index:
      return words(portMenu(port));
    case PortKind::Color:
      return words(colorNames());
    case PortKind::Image:
      return {isFilledOtherwise(patch, port) ? Completions::Paths::None : Completions::Paths::Files, "", {}};
    default:
      return {};
  }
}

Completions levelsValues(std::string_view part) {
  if (lowered(part) != lowered(VRTStateKeys::kSelectedChannel)) return {};
  Completions completions;
  for (const char* const channel : VRTStateKeys::kLevelsChannels)
    completions.candidates.push_back({lowered(channel), ""});
  return completions;
}

// "PORT=VALUE"
Completions assignments(const ValueContext& context, std::string_view typed) {
  const auto effect = effectNamed(context.effect);
  if (!effect) return {};
  const std::size_t equals = typed.find('=');
  const std::string name(typed.substr(0, equals));
  const std::size_t dot = name.find('.');
  QCPort* const port = findInputPort(*effect, name.substr(0, dot));
  const bool hasParts = port && portKindOf(*port) == PortKind::Levels;
  if (equals != std::string_view::npos) {
    Completions completions;
    if (dot != std::string::npos && hasParts) completions = levelsValues(name.substr(dot + 1));
    if (dot == std::string::npos && port) completions = portValues(*effect, *port);
    completions.prefix = typed.substr(0, equals + 1);
    return completions;
  }
  if (dot != std::string::npos && hasParts) return parts(name.substr(0, dot));
  return ports(*effect, [&](const QCPort& each) {
    const PortKind kind = portKindOf(each);
    return kind != PortKind::Object && kind != PortKind::Opaque && !isFilledOtherwise(*effect, each);
  });
}

// "PORT=FILE"; without an effect the inspector takes the kind of the state in the place of the port.
Completions stateAssignments(const ValueContext& context, std::string_view typed) {
  const auto effect = effectNamed(context.effect);
  const std::size_t equals = typed.find('=');
  if (equals == std::string_view::npos) {
    if (effect) return ports(*effect, [](const QCPort& port) { return stateKindOf(port).has_value(); });
    return context.effect.empty() ? words({"gradient=", "levels=", "opaque="}) : Completions();
  }
  const std::string name(typed.substr(0, equals));
  std::optional<StateKind> kind;
  if (effect) {
    const QCPort* port = findInputPort(*effect, name);
    kind = port ? stateKindOf(*port) : std::nullopt;
  } else {
    for (const StateKind each : {StateKind::Gradient, StateKind::Levels, StateKind::Opaque}) {
      if (name == stateKindName(each)) kind = each;
    }
  }
  Completions completions = stateFiles(kind, typed.substr(equals + 1));
  completions.prefix = typed.substr(0, equals + 1);
  return completions;
}

Completions spaces() {
  Completions completions;
  for (const KnownSpaceFacts& space : knownSpaces()) completions.candidates.push_back({space.name, ""});
  completions.candidates.push_back({"raw", "no colors"});
  return completions;
}

}  // namespace

Completions valueCompletions(const std::string& name, const ValueContext& context, std::string_view typed) {
  if (name == "EFFECT") return effects();
  if (name == "PORT=VALUE") return assignments(context, typed);
  if (name == "PORT=FILE") return stateAssignments(context, typed);
  if (name == "SPACE" || name == "[FILE=]SPACE") return spaces();
  if (name == "STATE") return stateFiles(std::nullopt, typed);
  if (name == "FILE") return {Completions::Paths::Files, "", {}};
  if (name == "FOLDER") return {Completions::Paths::Folders, "", {}};
  return {};
}

}  // namespace host
