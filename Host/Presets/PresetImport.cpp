// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Presets/PresetImport.h"

#include "Host/Files/OutputFile.h"
#include "Host/Messages/Failure.h"
#include "Host/Presets/PresetNames.h"
#include "Host/Presets/PresetReference.h"

#include <algorithm>
#include <utility>

namespace host {
namespace {

namespace fs = std::filesystem;

std::string nameOfFolder(const fs::path& folder) {
  const fs::path whole = fs::absolute(folder).lexically_normal();
  return collectionNameOfFolder((whole.has_filename() ? whole : whole.parent_path()).filename().string());
}

PropertyList::Bytes bytesOfFile(const fs::path& file) {
  std::error_code error;
  if (const auto size = fs::file_size(file, error); !error && size > kLargestPreset) {
    throw Failure(ExitCode::Input, "presets have at most " + std::to_string(kLargestPreset) + " bytes, and this has " +
                                       std::to_string(size));
  }
  std::string reason;
  auto bytes = NSReadFile(file.string(), &reason);
  if (!bytes) throw Failure(ExitCode::Input, reason);
  return std::move(*bytes);
}

StateKind kindOfPreset(const PropertyList::Bytes& bytes) {
  std::string reason;
  const auto state = stateFileFromBytes(bytes, &reason);
  if (!state) throw Failure(ExitCode::Input, reason);
  if (state->kind == StateKind::Opaque) throw Failure(ExitCode::Input, "presets are gradients and levels");
  return state->kind;
}

}  // namespace

PresetImporter::PresetImporter(PresetFolders folders, const std::vector<std::string>& paths)
    : folders_(std::move(folders)) {
  if (folders_.user.empty()) throw Failure(ExitCode::Output, "there is no home folder to keep presets in");
  for (const StateKind kind : {StateKind::Gradient, StateKind::Levels}) {
    for (Preset& preset : listPresets({{}, folders_.user}, kind).presets) {
      taken_.emplace(Key{kind, std::move(preset.collection), std::move(preset.name)}, std::move(preset.file));
    }
  }
  for (const std::string& path : paths) {
    std::error_code error;
    if (fs::is_directory(path, error)) {
      enter(path, nameOfFolder(path), 1);
    } else {
      found_.push_back({path, ""});
    }
  }
}

void PresetImporter::enter(const fs::path& folder, const std::string& collection, int depth) {
  if (looked_ > kMostImported) return;
  std::vector<fs::path> entries;
  std::error_code error;
  for (fs::directory_iterator each(folder, error); !error && each != fs::directory_iterator(); each.increment(error)) {
    if (++looked_ > kMostImported) break;
    entries.push_back(each->path());
  }
  if (error) report_.faults.push_back({folder.string(), error.message()});
  if (looked_ > kMostImported) {
    report_.faults.push_back(
        {folder.string(), "there are more than " + std::to_string(kMostImported) + " files; not all were looked at"});
  }
  std::ranges::sort(entries);
  for (const fs::path& entry : entries) take(entry, collection, depth);
}

void PresetImporter::take(const fs::path& entry, const std::string& collection, int depth) {
  const std::string name = entry.filename().string();
  std::error_code error;
  if (name.starts_with('.')) return;
  if (fs::is_directory(fs::symlink_status(entry, error))) {
    if (depth < kMostCollectionDepth) enter(entry, collection + "/" + collectionNameOfFolder(name), depth + 1);
  } else if (hasStateExtension(entry) && fs::is_regular_file(entry, error)) {
    found_.push_back({entry, collection});
  }
}

void PresetImporter::step() {
  if (isDone()) return;
  const Found& found = found_[next_++];
  try {
    import(found);
  } catch (const Failure& failure) {
    report_.faults.push_back({found.file.string(), failure.what()});
  }
}

// The name, or one with a number behind it, that no preset has, or one with these bytes.
std::string PresetImporter::freeName(StateKind kind, const std::string& name, const std::string& collection,
                                     const PropertyList::Bytes& bytes) const {
  for (unsigned number = 1;; ++number) {
    std::string each = number == 1 ? name : name + " " + std::to_string(number);
    const auto taken = taken_.find({kind, collection, each});
    if (taken == taken_.end() || NSReadFile(taken->second, nullptr) == bytes) return each;
  }
}

void PresetImporter::import(const Found& found) {
  const PropertyList::Bytes bytes = bytesOfFile(found.file);
  const StateKind kind = kindOfPreset(bytes);
  const std::string wanted = checkedPresetName(presetNameOfFile(found.file.filename().string()));
  const std::string name = freeName(kind, wanted, found.collection, bytes);
  const Key key{kind, found.collection, name};
  if (taken_.contains(key)) {
    ++report_.known;
    return;
  }
  const std::string extension = hasStateExtension(found.file) ? found.file.extension().string() : presetExtension(kind);
  const fs::path folder = folders_.user / presetFolderName(kind) / foldersOfCollection(found.collection);
  const fs::path path = folder / fileNameOfPreset(name, extension);
  std::error_code error;
  fs::create_directories(folder, error);
  if (error) throw Failure(ExitCode::Output, "cannot make the folder " + folder.string() + ": " + error.message());
  replaceFile(path.string(), bytes);
  taken_.emplace(key, path.string());
  report_.added.push_back({kind, PresetOrigin::User, name, found.collection, path.string()});
}

PresetImport importPresets(const PresetFolders& folders, const std::vector<std::string>& paths) {
  PresetImporter importer(folders, paths);
  while (!importer.isDone()) importer.step();
  return importer.report();
}

}  // namespace host
