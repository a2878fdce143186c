// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Presets/PresetReference.h"

#include "Host/Messages/CloseNames.h"
#include "Host/Messages/Failure.h"
#include "Host/Presets/PresetSearch.h"

#include <algorithm>
#include <filesystem>
#include <functional>

namespace host {
namespace {

constexpr std::string_view kPrefix = "preset:";

std::vector<Preset> presetsOfKinds(const PresetFolders& folders, std::optional<StateKind> kind) {
  std::vector<Preset> presets;
  for (const StateKind each : {StateKind::Gradient, StateKind::Levels}) {
    if (kind.value_or(each) != each) continue;
    PresetListing listing = listPresets(folders, each);
    std::ranges::move(listing.presets, std::back_inserter(presets));
  }
  return presets;
}

std::string withFolders(const Preset& preset, const std::string& name) {
  return std::string(presetFolderName(preset.kind)) + "/" +
         (preset.collection.empty() ? name : preset.collection + "/" + name);
}

// Whether a preset may be called so: by its name, alone or behind its collection, and that behind its kind.
bool isCalled(const Preset& preset, const std::string& wanted, const std::function<std::string(std::string)>& as) {
  const std::string file = std::filesystem::path(preset.file).filename().string();
  for (const std::string& name : {preset.name, file}) {
    const std::string whole = withFolders(preset, name);
    const std::string inKind = whole.substr(whole.find('/') + 1);
    if (as(name) == wanted || as(inKind) == wanted || as(whole) == wanted) return true;
  }
  return false;
}

std::vector<Preset> called(const std::vector<Preset>& presets, const std::string& name,
                           const std::function<std::string(std::string)>& as) {
  std::vector<Preset> found;
  const std::string wanted = as(name);
  std::ranges::copy_if(presets, std::back_inserter(found),
                       [&](const Preset& preset) { return isCalled(preset, wanted, as); });
  const auto isUsers = [](const Preset& preset) { return preset.origin == PresetOrigin::User; };
  if (std::ranges::any_of(found, isUsers)) std::erase_if(found, std::not_fn(isUsers));
  return found;
}

[[noreturn]] void refuseUnknown(const std::string& name, const std::vector<Preset>& presets,
                                std::optional<StateKind> kind) {
  std::vector<std::string> names;
  for (const Preset& preset : presets) {
    if (std::ranges::find(names, preset.name) == names.end()) names.push_back(preset.name);
  }
  throw Failure(ExitCode::Usage,
                "there is no preset of " + std::string(kind ? presetFolderName(*kind) : "gradients or levels") +
                    " called \"" + name + "\"" + closeNamesHint(name, names, "vorto state --presets lists them"));
}

[[noreturn]] void refuseSeveral(const std::string& name, const std::vector<Preset>& presets) {
  std::vector<std::string> references;
  const auto isLike = [&](const Preset& one, const Preset& other) {
    return withFolders(one, one.name) == withFolders(other, other.name);
  };
  for (const Preset& preset : presets) {
    const bool isOnly = std::ranges::count_if(presets, [&](const Preset& other) { return isLike(preset, other); }) == 1;
    const std::string last = isOnly ? preset.name : std::filesystem::path(preset.file).filename().string();
    references.push_back(std::string(kPrefix) + withFolders(preset, last));
  }
  throw Failure(ExitCode::Usage, "several presets are called \"" + name + "\": " + joinedNames(references));
}

}  // namespace

bool isPresetReference(std::string_view text) {
  return text.starts_with(kPrefix);
}

Preset presetOfReference(const PresetFolders& folders, std::string_view reference, std::optional<StateKind> kind) {
  if (kind == StateKind::Opaque) throw Failure(ExitCode::Usage, "presets are gradients and levels");
  const std::string name(reference.substr(kPrefix.size()));
  const std::vector<Preset> presets = presetsOfKinds(folders, kind);
  std::vector<Preset> found = called(presets, name, [](std::string text) { return text; });
  if (found.empty()) found = called(presets, name, [](const std::string& text) { return foldedForSearch(text); });
  if (found.empty()) refuseUnknown(name, presets, kind);
  if (found.size() > 1) refuseSeveral(name, found);
  return found.front();
}

std::string stateFileOfText(const std::string& text, std::optional<StateKind> kind) {
  if (!isPresetReference(text)) return text;
  return presetOfReference(PresetFolders::standard(), text, kind).file;
}

StateFile readStateOfText(const std::string& text, std::optional<StateKind> kind) {
  if (!isPresetReference(text)) return readStateFile(text, kind);
  return readPreset(presetOfReference(PresetFolders::standard(), text, kind));
}

StateFile readPreset(const Preset& preset) {
  std::error_code error;
  const auto size = std::filesystem::file_size(preset.file, error);
  if (!error && size > kLargestPreset) {
    throw Failure(ExitCode::Input, "cannot read " + preset.file + ": presets have at most " +
                                       std::to_string(kLargestPreset) + " bytes, and this has " + std::to_string(size));
  }
  StateFile file = readStateFile(preset.file, preset.kind);
  if (file.kind != preset.kind) {
    throw Failure(ExitCode::Input, "cannot read " + preset.file + ": the file holds a state of the kind " +
                                       stateKindName(file.kind) + ", its folder is for " +
                                       presetFolderName(preset.kind));
  }
  return file;
}

}  // namespace host
