// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Rendering/Effects.h"

#include "Host/Files/ProgramFolder.h"
#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Failure.h"
#include "Host/Python/PythonFiles.h"
#include "Host/Rendering/ExecutionContext.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Registry/VRTNodeManager.h"
#include "Registry/VRTProtocols.h"

#include <algorithm>
#include <cstdlib>
#include <set>
#include <sstream>

namespace host {
namespace {

std::vector<std::string> additionalFolders() {
  std::vector<std::string> folders;
  if (const char* path = std::getenv("VORTO_PLUGIN_PATH")) {
    std::istringstream list(path);
    for (std::string folder; std::getline(list, folder, ':');) {
      if (!folder.empty()) folders.push_back(folder);
    }
  }
  if (const std::string beside = plugInFolderBesideProgram(); !beside.empty()) folders.push_back(beside);
  return folders;
}

bool isOfKind(const QCPatch& patch, EffectKind kind) {
  switch (kind) {
    case EffectKind::Filter:
      return isVortoFilter(patch);
    case EffectKind::Transition:
      return isVortoTransition(patch);
    case EffectKind::Generator:
      return isVortoGenerator(patch);
    case EffectKind::BlendMode:
      return isVortoBlendMode(patch);
  }
  return false;
}

// The effect of that name, or the only one whose name differs in upper and lower case of ASCII alone.
const std::string* knownName(const std::string& name, const std::vector<std::string>& names) {
  const auto folded = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
  const std::string* like = nullptr;
  std::size_t count = 0;
  for (const std::string& each : names) {
    if (each == name) return &each;
    if (std::equal(each.begin(), each.end(), name.begin(), name.end(),
                   [&](char a, char b) { return folded(a) == folded(b); })) {
      like = &each;
      ++count;
    }
  }
  return count == 1 ? like : nullptr;
}

}  // namespace

const char* effectKindKey(EffectKind kind) {
  switch (kind) {
    case EffectKind::Filter:
      return "filter";
    case EffectKind::Transition:
      return "transition";
    case EffectKind::Generator:
      return "generator";
    case EffectKind::BlendMode:
      break;
  }
  return "blendMode";
}

const char* effectKindPlural(EffectKind kind) {
  switch (kind) {
    case EffectKind::Filter:
      return "Filters";
    case EffectKind::Transition:
      return "Transitions";
    case EffectKind::Generator:
      return "Generators";
    case EffectKind::BlendMode:
      break;
  }
  return "Blend modes";
}

void loadEffects(const std::vector<std::string>& pythonFiles) {
  provideExecutionContext();
  const auto manager = VRTNodeManager::manager();
  for (const std::string& folder : additionalFolders()) manager->loadPlugInsInFolder(folder, {"plugin", "qtz"});
  runPythonFiles(pythonFiles);
  manager->loadFailures();  // resolves compositions, and so reports the broken ones now
}

std::vector<std::string> effectNames(EffectKind kind) {
  std::vector<std::string> names;
  VRTNodeManager::manager()->addEffectsWithProtocol(effectKindKey(kind), names);
  return names;
}

std::vector<std::string> allEffectNames() {
  std::vector<std::string> names;
  std::set<std::string> seen;
  for (const EffectKind kind : kEffectKinds) {
    for (const std::string& name : effectNames(kind)) {
      if (seen.insert(name).second) names.push_back(name);
    }
  }
  return names;
}

std::string knownEffectName(const std::string& name) {
  const std::vector<std::string> names = allEffectNames();
  const std::string* known = knownName(name, names);
  if (!known) {
    throw Failure(ExitCode::Usage,
                  "there is no effect \"" + name + "\"" + closeNamesHint(name, names, "vorto effects lists them"));
  }
  return *known;
}

std::shared_ptr<QCPatch> makeEffect(const std::string& name) {
  const std::string known = knownEffectName(name);
  const auto manager = VRTNodeManager::manager();
  auto patch = manager->nodeInstanceWithName(known);
  if (!patch) {
    const std::string path = manager->pathOfNodeWithName(known);
    throw Failure(ExitCode::Effect,
                  "the effect \"" + known + "\" could not be made" + (path.empty() ? "" : ", from " + path));
  }
  return patch;
}

std::shared_ptr<const QCPatch> describedEffect(const std::string& name) {
  return VRTNodeManager::manager()->nodeDescriptionWithName(name);
}

std::vector<EffectKind> effectKindsOf(const QCPatch& patch) {
  std::vector<EffectKind> kinds;
  for (const EffectKind kind : kEffectKinds) {
    if (isOfKind(patch, kind)) kinds.push_back(kind);
  }
  return kinds;
}

EffectRoles effectRoles(const QCPatch& patch, EffectKind kind) {
  switch (kind) {
    case EffectKind::Filter:
      return {{filterInputImagePort(patch)}, nullptr, filterOutputImagePort(patch)};
    case EffectKind::Transition:
      return {{transitionInputImageAPort(patch), transitionInputImageBPort(patch)},
              transitionInputTimePort(patch),
              transitionOutputImagePort(patch)};
    case EffectKind::Generator:
      return {{}, nullptr, generatorOutputImagePort(patch)};
    case EffectKind::BlendMode:
      break;
  }
  return {{blendModeInputImageBackgroundPort(patch), blendModeInputImageForegroundPort(patch)},
          nullptr,
          blendModeOutputImagePort(patch)};
}

}  // namespace host
