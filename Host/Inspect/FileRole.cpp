// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/FileRole.h"

#include "Host/Clips/ClipReader.h"
#include "Host/Files/FileFormat.h"
#include "Host/Files/FrameFiles.h"
#include "Host/Messages/Failure.h"
#include "Host/States/StateFile.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <span>
#include <string_view>

namespace host {
namespace {

using namespace std::string_view_literals;

constexpr std::uintmax_t kLargestState = std::uintmax_t{16} << 20;
constexpr std::uint32_t kMostDigits = 9;  // of a frame's number

// Extensions are letters of ASCII, whatever people's language does with an I.
char lowered(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool isTextOfStates(std::string extension) {
  std::ranges::transform(extension, extension.begin(), lowered);
  constexpr std::array kExtensions = {".plist"sv, ".gradient"sv, ".levels"sv, ".inks"sv, ".ggr"sv,
                                      ".svg"sv,   ".cpt"sv,      ".css"sv,    ".json"sv, ".txt"sv};
  return std::ranges::find(kExtensions, extension) != kExtensions.end();
}

bool holdsPicture(const std::string& path) {
  std::array<std::uint8_t, 64> start{};
  std::ifstream file(path, std::ios::binary);
  file.read(reinterpret_cast<char*>(start.data()), start.size());
  return formatOfBytes(std::span(start.data(), static_cast<std::size_t>(std::max<std::streamsize>(0, file.gcount()))))
      .has_value();
}

bool isState(const std::string& path) {
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  if (error || size > kLargestState || holdsPicture(path)) return false;
  try {
    readStateFile(path);
    return true;
  } catch (const Failure&) {
    return false;
  }
}

}  // namespace

FileRole fileRoleOf(const std::string& path) {
  if (isTextOfStates(std::filesystem::path(path).extension().string())) return FileRole::State;
  if (!std::filesystem::is_regular_file(path) || isClip(path)) return FileRole::Input;
  return isState(path) ? FileRole::State : FileRole::Input;
}

std::optional<std::string> sequenceAround(const std::string& path) {
  const std::filesystem::path whole(path);
  const std::string name = whole.filename().string();
  if (path.find('%') != std::string::npos || isClip(path)) return std::nullopt;
  const std::size_t stem = whole.stem().string().size();
  const std::size_t last = name.find_last_of("0123456789", stem == 0 ? 0 : stem - 1);
  if (last == std::string::npos) return std::nullopt;
  const std::size_t before = name.find_last_not_of("0123456789", last);
  const std::size_t first = before == std::string::npos ? 0 : before + 1;
  const std::size_t digits = last - first + 1;
  if (digits > kMostDigits) return std::nullopt;
  const std::string number = digits == 1 ? "%d" : "%0" + std::to_string(digits) + "d";
  const std::string pattern = (whole.parent_path() / (name.substr(0, first) + number + name.substr(last + 1))).string();
  try {
    const auto frames = framePattern(pattern);
    if (!frames || existingFrames(*frames).count() < 2) return std::nullopt;
  } catch (const Failure&) {
    return std::nullopt;
  }
  return pattern;
}

}  // namespace host
