// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Presets/FavoritePresets.h"

#include "Host/Files/OutputFile.h"
#include "Host/Messages/Failure.h"

#include <algorithm>
#include <filesystem>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kLargestFavorites = 1 << 20;
constexpr const char* kHeading = "# Favorite presets of Vorto";

}  // namespace

FavoritePresets::FavoritePresets(const PresetFolders& folders)
    : folders_(folders), path_(folders.user.empty() ? "" : (folders.user / "favorites").string()) {
  read();
}

void FavoritePresets::read() {
  lines_.clear();
  fault_.clear();
  std::error_code error;
  if (path_.empty() || !fs::exists(path_, error)) return;
  const auto size = fs::file_size(path_, error);
  if (!error && size > kLargestFavorites) {
    fault_ = "it is too large";
    return;
  }
  const auto bytes = NSReadFile(path_, &fault_);
  if (!bytes) return;
  const std::string_view text(reinterpret_cast<const char*>(bytes->data()), bytes->size());
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find('\n', begin), text.size());
    if (end > begin && text[begin] != '#') lines_.emplace(text.substr(begin, end - begin));
    begin = end + 1;
  }
}

void FavoritePresets::write() const {
  std::error_code error;
  fs::create_directories(folders_.user, error);
  std::string text = std::string(kHeading) + "\n";
  for (const std::string& line : lines_) text += line + "\n";
  replaceFile(path_, {reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

// File names may have newlines.
std::string FavoritePresets::lineOf(const Preset& preset) const {
  const bool isShipped = preset.origin == PresetOrigin::Shipped;
  std::string line = isShipped ? "shipped/" : "user/";
  for (const char c : fs::path(preset.file).lexically_relative(folders_.root(preset.origin)).string()) {
    line += c == '\n' ? std::string("%0A") : std::string(1, c);
  }
  return line;
}

bool FavoritePresets::contains(const Preset& preset) const {
  return lines_.contains(lineOf(preset));
}

void FavoritePresets::set(const Preset& preset, bool isFavorite) {
  if (path_.empty()) throw Failure(ExitCode::Output, "there is no home folder to keep favorites in");
  read();
  if (!fault_.empty()) throw Failure(ExitCode::Output, "cannot change " + path_ + ": " + fault_);
  const bool isChanged = isFavorite ? lines_.insert(lineOf(preset)).second : lines_.erase(lineOf(preset)) > 0;
  if (isChanged) write();
}

void FavoritePresets::moved(const Preset& preset, const std::string& newFile) {
  read();
  if (lines_.erase(lineOf(preset)) == 0) return;
  if (!newFile.empty()) {
    Preset renamed = preset;
    renamed.file = newFile;
    lines_.insert(lineOf(renamed));
  }
  write();
}

}  // namespace host
