// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Presets/PresetLibrary.h"

#include "Host/Files/OutputFile.h"
#include "Host/Messages/Failure.h"
#include "Host/Presets/FavoritePresets.h"
#include "Host/Presets/PresetNames.h"
#include "Host/Presets/PresetReference.h"
#include "Host/Texts/ParameterText.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>

namespace host {
namespace {

namespace fs = std::filesystem;

// Reasons stand behind the file they are of.
std::string withoutFile(const std::string& message, const std::string& file) {
  const std::string before = "cannot read " + file + ": ";
  return message.starts_with(before) ? message.substr(before.size()) : message;
}

PropertyList::Bytes bytesOfState(StateKind kind, const PropertyList& state, const std::string& path) {
  Notes notes;
  std::string reason;
  if (const auto text = textOfParameter(kind, state, TextFormat::Text, notes, &reason)) {
    return {text->begin(), text->end()};
  }
  const auto bytes = PropertyListToBytes(state, PropertyListFormat::Xml, &reason);
  if (!bytes) throw Failure(ExitCode::Output, "cannot write " + path + ": " + reason);
  return *bytes;
}

void checkUsers(const Preset& preset, const char* what) {
  if (preset.origin == PresetOrigin::User) return;
  throw Failure(ExitCode::Usage, "\"" + preset.name + "\" came with the program and cannot be " + what);
}

[[noreturn]] void refuseTaken(const std::string& name) {
  throw Failure(ExitCode::Usage, "there is a preset called \"" + name + "\" already");
}

// Never over another file, also where one appears just now.
void moveFile(const std::string& from, const std::string& to, const std::string& name) {
  if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return;
  if (errno == EINVAL || errno == ENOSYS) {  // the file system does not know such renaming
    std::error_code error;
    if (fs::exists(fs::symlink_status(to, error))) refuseTaken(name);
    if (::rename(from.c_str(), to.c_str()) == 0) return;
  }
  if (errno == EEXIST) refuseTaken(name);
  throw Failure(ExitCode::Output, "cannot rename " + from + ": " + std::strerror(errno));
}

void removeFile(const std::string& path) {
  std::error_code error;
  if (!fs::remove(path, error) && error) {
    throw Failure(ExitCode::Output, "cannot delete " + path + ": " + error.message());
  }
}

// Of a file that is gone. A line that stays does no harm.
void forgetFavorite(const PresetFolders& folders, const Preset& preset, const std::string& newFile) {
  try {
    FavoritePresets(folders).moved(preset, newFile);
  } catch (const Failure&) {
  }
}

}  // namespace

PresetLibrary readPresets(const PresetFolders& folders, StateKind kind) {
  PresetListing listing = listPresets(folders, kind);
  const FavoritePresets favorites(folders);
  PresetLibrary library;
  library.faults = std::move(listing.faults);
  for (Preset& preset : listing.presets) {
    try {
      PropertyList state = readPreset(preset).state;
      const bool isFavorite = favorites.contains(preset);
      library.entries.push_back({std::move(preset), std::move(state), isFavorite});
    } catch (const Failure& failure) {
      library.faults.push_back({preset.file, withoutFile(failure.what(), preset.file)});
    }
  }
  return library;
}

std::optional<Preset> userPresetNamed(const PresetFolders& folders, StateKind kind, const std::string& name,
                                      const std::string& collection) {
  const std::vector<Preset> presets = listPresets({{}, folders.user}, kind).presets;
  const auto found = std::ranges::find_if(
      presets, [&](const Preset& preset) { return preset.name == name && preset.collection == collection; });
  return found == presets.end() ? std::nullopt : std::optional(*found);
}

Preset savePreset(const PresetFolders& folders, StateKind kind, const std::string& text, const std::string& collection,
                  const PropertyList& state, SameName sameName) {
  if (folders.user.empty()) throw Failure(ExitCode::Output, "there is no home folder to keep presets in");
  const std::string name = checkedPresetName(text);
  const fs::path folder = folders.user / presetFolderName(kind) / foldersOfCollection(collection);
  const fs::path path = folder / fileNameOfPreset(name, presetExtension(kind));
  const auto former = userPresetNamed(folders, kind, name, collection);
  if (former && sameName == SameName::Refused) refuseTaken(name);
  const PropertyList::Bytes bytes = bytesOfState(kind, state, path.string());
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw Failure(ExitCode::Output, "cannot make the folder " + folder.string() + ": " + error.message());
  replaceFile(path.string(), bytes);
  if (former && former->file != path.string()) {
    removeFile(former->file);
    forgetFavorite(folders, *former, path.string());
  }
  return {kind, PresetOrigin::User, name, collection, path.string()};
}

Preset renamePreset(const PresetFolders& folders, const Preset& preset, const std::string& text) {
  checkUsers(preset, "renamed");
  Preset renamed = preset;
  renamed.name = checkedPresetName(text);
  if (renamed.name == preset.name) return preset;
  if (userPresetNamed(folders, preset.kind, renamed.name, preset.collection)) refuseTaken(renamed.name);
  const fs::path file(preset.file);
  const std::string extension = hasStateExtension(file) ? file.extension().string() : presetExtension(preset.kind);
  renamed.file = (file.parent_path() / fileNameOfPreset(renamed.name, extension)).string();
  moveFile(preset.file, renamed.file, renamed.name);
  try {
    FavoritePresets(folders).moved(preset, renamed.file);
  } catch (const Failure&) {
    moveFile(renamed.file, preset.file, preset.name);
    throw;
  }
  return renamed;
}

void deletePreset(const PresetFolders& folders, const Preset& preset) {
  checkUsers(preset, "deleted");
  removeFile(preset.file);
  forgetFavorite(folders, preset, "");
}

}  // namespace host
