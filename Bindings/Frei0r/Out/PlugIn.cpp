// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/Out/PlugIn.h"

#include "Bindings/Frei0r/Out/StubFields.h"
#include "Platform/QuartzComposer/QCPatch.h"

#include "Bindings/Frei0r/Frei0rHeader.h"

#include <algorithm>
#include <map>
#include <set>

namespace frei0r {
namespace {

using host::EffectKind;

constexpr const char* kTypeNames[] = {"source", "filter", "mixer2", "mixer3"};
constexpr std::uint32_t kMostInputs = 3;

std::string textAttribute(const QCPatch& patch, const char* key) {
  const PropertyList* value = patch.attributes().find(key);
  return value ? value->stringValue() : "";
}

// Letters of other scripts stay; what else is no letter or digit becomes one "_" in between.
std::string fileNameOf(const std::string& effect) {
  std::string name;
  for (const char c : effect) {
    const bool isUpper = c >= 'A' && c <= 'Z';
    const bool stays =
        isUpper || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || static_cast<unsigned char>(c) >= 0x80;
    if (stays) name += isUpper ? static_cast<char>(c - 'A' + 'a') : c;
    if (!stays && !name.empty() && !name.ends_with('_')) name += '_';
  }
  while (name.ends_with('_')) name.pop_back();
  return "vorto_" + (name.empty() ? "effect" : name);
}

// Which kind takes that many frames, with which port for the last where the kind has one less.
struct Form {
  EffectKind kind;
  std::string pictureKey;
};

// The ports for images that are none of the kind's.
std::vector<std::string> otherPictures(const QCPatch& patch, const host::EffectRoles& roles) {
  std::vector<std::string> keys;
  for (const auto& port : patch.inputPorts()) {
    const bool isRole = std::ranges::find(roles.inputs, port.get()) != roles.inputs.end();
    if (!isRole && host::portKindOf(*port) == host::PortKind::Image) keys.push_back(port->key());
  }
  return keys;
}

bool isComplete(const host::EffectRoles& roles) {
  return roles.output && std::ranges::all_of(roles.inputs, [](const QCPort* port) { return port != nullptr; });
}

// By their numbers of frames. Of two kinds with one number the first counts.
std::map<std::uint32_t, Form> formsOf(const QCPatch& patch) {
  std::map<std::uint32_t, Form> forms;
  std::map<std::uint32_t, Form> withPicture;
  for (const EffectKind kind : host::effectKindsOf(patch)) {
    const host::EffectRoles roles = host::effectRoles(patch, kind);
    if (!isComplete(roles)) continue;
    const auto inputs = static_cast<std::uint32_t>(roles.inputs.size());
    forms.try_emplace(inputs, Form{kind, ""});
    const std::vector<std::string> others = otherPictures(patch, roles);
    if (others.size() == 1 && inputs > 0 && inputs < kMostInputs)
      withPicture.try_emplace(inputs + 1, Form{kind, others[0]});
  }
  forms.merge(withPicture);
  return forms;
}

std::vector<std::string> keysOfForm(const QCPatch& patch, const Form& form) {
  std::vector<std::string> keys{form.pictureKey};
  for (const QCPort* input : host::effectRoles(patch, form.kind).inputs) keys.push_back(input->key());
  if (form.kind == EffectKind::Generator) keys.insert(keys.end(), {"inputWidth", "inputHeight", "inputDepth"});
  return keys;
}

PlugIn madePlugIn(const std::string& effect, const QCPatch& patch, std::uint32_t inputs, const Form& form,
                  bool isFirst) {
  PlugIn plugIn;
  plugIn.effect = effect;
  plugIn.inputs = inputs;
  plugIn.kind = form.kind;
  plugIn.pictureKey = form.pictureKey;
  const std::string suffix = isFirst ? "" : plugIn.typeName();
  plugIn.name = "Vorto " + effect + (isFirst ? "" : " " + suffix);
  plugIn.file = fileNameOf(effect) + (isFirst ? "" : "_" + suffix);
  plugIn.description = textAttribute(patch, "description");
  plugIn.parameters = parametersOf(patch, keysOfForm(patch, form));
  return plugIn;
}

// The plain name belongs to the first kind that the effect declares.
std::uint32_t firstInputs(const QCPatch& patch) {
  const auto kinds = host::effectKindsOf(patch);
  return kinds.empty() ? 0 : static_cast<std::uint32_t>(host::effectRoles(patch, kinds.front()).inputs.size());
}

std::vector<PlugIn> plugInsOf(const std::string& effect, const QCPatch& patch) {
  std::vector<PlugIn> plugIns;
  for (const auto& [inputs, form] : formsOf(patch)) {
    plugIns.push_back(madePlugIn(effect, patch, inputs, form, inputs == firstInputs(patch)));
  }
  return plugIns;
}

bool cameThroughFrei0r(const QCPatch& patch) {
  return textAttribute(patch, "foreign") == "frei0r";
}

std::vector<std::string> effectNames() {
  std::vector<std::string> names;
  std::set<std::string> seen;
  for (const EffectKind kind : host::kEffectKinds) {
    for (const std::string& name : host::effectNames(kind)) {
      if (seen.insert(name).second) names.push_back(name);
    }
  }
  return names;
}

}  // namespace

int PlugIn::type() const {
  constexpr int types[] = {F0R_PLUGIN_TYPE_SOURCE, F0R_PLUGIN_TYPE_FILTER, F0R_PLUGIN_TYPE_MIXER2,
                           F0R_PLUGIN_TYPE_MIXER3};
  return types[std::min(inputs, kMostInputs)];
}

const char* PlugIn::typeName() const {
  return kTypeNames[std::min(inputs, kMostInputs)];
}

PlugInList allPlugIns() {
  PlugInList list;
  std::map<std::string, std::string> files;
  for (const std::string& effect : effectNames()) {
    const auto patch = host::describedEffect(effect);
    const auto refuse = [&](const std::string& reason) { list.leftOut.push_back({effect, reason}); };
    if (!patch) {
      refuse("it cannot be made");
    } else if (cameThroughFrei0r(*patch)) {
      ++list.foreign;
    } else if (effect.size() >= sizeof(StubFields::effect)) {
      refuse("its name is too long");
    } else {
      const std::vector<PlugIn> plugIns = plugInsOf(effect, *patch);
      if (plugIns.empty()) refuse("it does not say which of its ports carry its images");
      for (const PlugIn& each : plugIns) {
        const auto [place, isNew] = files.try_emplace(each.file, effect);
        if (isNew) {
          list.plugIns.push_back(each);
        } else {
          refuse("its file would be " + each.file + ".so, as that of " + place->second);
        }
      }
    }
  }
  return list;
}

std::optional<PlugIn> plugInNamed(const std::string& effect, std::uint32_t inputs) {
  const auto patch = host::describedEffect(effect);
  if (!patch || cameThroughFrei0r(*patch)) return std::nullopt;
  const auto forms = formsOf(*patch);
  const auto form = forms.find(inputs);
  if (form == forms.end()) return std::nullopt;
  return madePlugIn(effect, *patch, inputs, form->second, inputs == firstInputs(*patch));
}

}  // namespace frei0r
