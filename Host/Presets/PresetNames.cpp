// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Presets/PresetNames.h"

#include "Host/Messages/Failure.h"
#include "Host/Messages/Utf8.h"
#include "Host/Texts/TextReader.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

namespace host {
namespace {

constexpr std::size_t kLongestFileName = 240;  // bytes; file systems take 255, writing needs some
constexpr const char* kExtensions[] = {".gradient", ".levels", ".plist", ".ggr",  ".svg",
                                       ".cpt",      ".css",    ".txt",   ".json", ".xml"};

[[noreturn]] void refuse(const std::string& reason) {
  throw Failure(ExitCode::Usage, reason);
}

bool isHexDigit(char c) {
  return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
}

// The byte of "%XX" at a place.
std::optional<char> escapedByte(std::string_view text, std::size_t at) {
  if (at + 2 >= text.size() || text[at] != '%' || !isHexDigit(text[at + 1]) || !isHexDigit(text[at + 2])) {
    return std::nullopt;
  }
  const std::string digits(text.substr(at + 1, 2));
  return static_cast<char>(std::strtoul(digits.c_str(), nullptr, 16));
}

std::string escaped(std::string_view name) {
  std::string text;
  for (std::size_t i = 0; i < name.size(); ++i) {
    if (name[i] == '/') {
      text += "%2F";
    } else if (name[i] == '.' && i == 0) {
      text += "%2E";
    } else if (escapedByte(name, i)) {
      text += "%25";
    } else {
      text += name[i];
    }
  }
  return text;
}

std::string unescaped(std::string_view text) {
  std::string name;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = escapedByte(text, i);
    name += byte.value_or(text[i]);
    if (byte) i += 2;
  }
  return printable(validUtf8(name));
}

std::string trimmed(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" \t\r\n");
  if (begin == std::string_view::npos) return "";
  return std::string(text.substr(begin, text.find_last_not_of(" \t\r\n") + 1 - begin));
}

}  // namespace

std::string checkedPresetName(std::string_view text) {
  std::string name = trimmed(text);
  if (name.empty()) refuse("a preset needs a name");
  if (validUtf8(name) != name) refuse("the name is not UTF-8");
  if (printable(name) != name) refuse("the name \"" + printable(name) + "\" has characters that cannot be seen");
  if (escaped(name).size() > kLongestFileName) refuse("the name \"" + name.substr(0, 40) + "...\" is too long");
  return name;
}

std::string fileNameOfPreset(std::string_view name, const std::string& extension) {
  std::string file = escaped(checkedPresetName(name)) + extension;
  if (file.size() > kLongestFileName) refuse("the name \"" + validUtf8(name.substr(0, 40)) + "...\" is too long");
  return file;
}

std::filesystem::path foldersOfCollection(std::string_view collection) {
  std::filesystem::path folders;
  if (trimmed(collection).empty()) return folders;
  int depth = 0;
  for (std::size_t begin = 0; begin <= collection.size();) {
    const std::size_t end = std::min(collection.find('/', begin), collection.size());
    folders /= escaped(checkedPresetName(collection.substr(begin, end - begin)));
    if (++depth > kMostCollectionDepth) {
      refuse("collections are in each other at most " + std::to_string(kMostCollectionDepth) + " deep");
    }
    begin = end + 1;
  }
  return folders;
}

const char* presetExtension(StateKind kind) {
  return kind == StateKind::Levels ? ".levels" : ".gradient";
}

bool hasStateExtension(const std::filesystem::path& path) {
  const std::string extension = lowered(path.extension().string());
  return std::ranges::find(kExtensions, extension) != std::end(kExtensions);
}

std::string presetNameOfFile(const std::string& fileName) {
  const std::filesystem::path path(fileName);
  return unescaped(hasStateExtension(path) ? path.stem().string() : fileName);
}

std::string collectionNameOfFolder(const std::string& folderName) {
  return unescaped(folderName);
}

}  // namespace host
