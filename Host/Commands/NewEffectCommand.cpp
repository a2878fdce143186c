// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/NewEffectCommand.h"

#include "Host/Files/ProgramFolder.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/StandardOutput.h"
#include "Host/Messages/Utf8.h"
#include "Platform/Foundation/NSFiles.h"
#include "Platform/Foundation/PropertyList.h"

#include <sys/stat.h>
#include <unicode/uchar.h>
#include <unicode/unorm2.h>
#include <unicode/ustring.h>
#include <unicode/utf16.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <string_view>
#include <utility>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kLongestName = 100;       // code points
constexpr std::size_t kLongestIdentifier = 64;  // letters

// A file of a project, and the template that it is made of. Both names may hold the templates' identifier.
struct ProjectFile {
  const char* name;
  const char* source;
};

struct Kind {
  const char* name;
  ProjectFile effect;
  const char* pictureOptions;  // how its first picture is rendered
};

constexpr Kind kKinds[] = {
    {"filter", {"NewEffect.cpp", "filter.cpp"}, "--input first.png"},
    {"generator", {"NewEffect.cpp", "generator.cpp"}, "--size 640x400"},
    {"transition", {"NewEffect.cpp", "transition.cpp"}, "--input first.png second.png --time 0.5"},
    {"blend-mode", {"NewEffect.cpp", "blend-mode.cpp"}, "--input second.png first.png"},
    {"composition", {"NewEffect.qtz", "composition.qtz"}, "--input first.png"},
};

constexpr ProjectFile kFilesOfEffects[] = {
    {"CMakeLists.txt", "CMakeLists.txt"}, {"Pixels.h", "Pixels.h"}, {"test.cpp", "test.cpp"}};
constexpr ProjectFile kFilesOfCompositions[] = {{"CMakeLists.txt", "composition.txt"}};
constexpr ProjectFile kFilesOfAll[] = {{"CMakePresets.json", "CMakePresets.json"}, {"README.md", "README.md"}};

[[noreturn]] void refuse(const std::string& reason) {
  throw Failure(ExitCode::Usage, reason);
}

[[noreturn]] void cannotMake(const std::string& path, const std::string& reason) {
  throw Failure(ExitCode::Output, "cannot make " + path + ": " + reason);
}

void checkName(const std::string& name) {
  const bool isTrimmed = !name.empty() && name.front() != ' ' && name.back() != ' ';
  if (!isTrimmed || validUtf8(name) != name || printable(name) != name || utf8Length(name) > kLongestName) {
    refuse("an effect's name is one line of 1 to " + std::to_string(kLongestName) +
           " characters, without blanks at its ends, not \"" + name + "\"");
  }
}

bool isAsciiLetter(UChar32 c) {
  return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

bool isAsciiDigit(UChar32 c) {
  return c >= '0' && c <= '9';
}

void checkIdentifier(const std::string& identifier) {
  const bool isPlain = std::all_of(identifier.begin(), identifier.end(),
                                   [](unsigned char c) { return isAsciiLetter(c) || isAsciiDigit(c); });
  const bool begins = !identifier.empty() && identifier[0] >= 'A' && identifier[0] <= 'Z';
  if (!isPlain || !begins || identifier.size() > kLongestIdentifier) {
    refuse("an identifier is a capital letter and up to " + std::to_string(kLongestIdentifier - 1) +
           " letters and digits of ASCII, not \"" + identifier + "\"");
  }
  for (const char* reserved : {"INSTALL", "PACKAGE"}) {
    if (identifier == reserved) refuse("the identifier " + identifier + " has a meaning of its own in CMake");
  }
}

// The text with accents apart from their letters.
std::u16string decomposed(const std::string& text) {
  std::u16string units(text.size(), 0);
  std::int32_t length = 0;
  UErrorCode error = U_ZERO_ERROR;
  u_strFromUTF8(units.data(), static_cast<std::int32_t>(units.size()), &length, text.data(),
                static_cast<std::int32_t>(text.size()), &error);
  units.resize(static_cast<std::size_t>(length));
  std::u16string apart(18 * units.size() + 1, 0);  // no character becomes more than 18
  const UNormalizer2* normalizer = unorm2_getNFKDInstance(&error);
  length = unorm2_normalize(normalizer, units.data(), static_cast<std::int32_t>(units.size()), apart.data(),
                            static_cast<std::int32_t>(apart.size()), &error);
  apart.resize(U_FAILURE(error) ? 0 : static_cast<std::size_t>(length));
  return apart;
}

// The words of the name, each with a capital letter; empty where letters are left over that ASCII does not have.
std::string identifierOfName(const std::string& name) {
  const std::u16string text = decomposed(name);
  std::string identifier;
  bool isWordStart = true;
  for (std::int32_t at = 0; at < static_cast<std::int32_t>(text.size());) {
    UChar32 c = 0;
    U16_NEXT(text.data(), at, static_cast<std::int32_t>(text.size()), c);
    if (isAsciiLetter(c) || isAsciiDigit(c)) {
      const bool isRaised = isWordStart && c >= 'a' && c <= 'z';
      identifier += static_cast<char>(isRaised ? c - 'a' + 'A' : c);
      isWordStart = false;
    } else if (u_isalnum(c)) {
      return "";
    } else if (u_charType(c) != U_NON_SPACING_MARK && c != '\'') {
      isWordStart = true;
    }
  }
  return identifier;
}

std::string identifierFor(const NewEffectOptions& options) {
  std::string identifier = options.identifier.empty() ? identifierOfName(options.name) : options.identifier;
  if (options.identifier.empty() && (identifier.empty() || isAsciiDigit(identifier[0]))) {
    refuse("the name \"" + options.name +
           "\" makes no identifier that begins with a letter of ASCII: give one with --identifier");
  }
  checkIdentifier(identifier);
  return identifier;
}

std::string escaped(const std::string& text, std::string_view characters) {
  std::string result;
  for (const char c : text) {
    if (characters.find(c) != std::string_view::npos) result += '\\';
    result += c;
  }
  return result;
}

std::string escapedForXml(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '&') {
      result += "&amp;";
    } else if (c == '<') {
      result += "&lt;";
    } else {
      result += c;
    }
  }
  return result;
}

// The name as a file of that extension spells it within quotation marks or an element.
std::string spelledName(const std::string& name, const std::string& extension) {
  if (extension == ".qtz") return escapedForXml(name);
  if (extension == ".cpp") return escaped(name, "\"\\");
  if (extension == ".txt") return escaped(name, "\"\\$");
  return name;
}

// What stands in the templates and what takes its place.
struct Replacement {
  std::string_view mark;
  std::string text;
};

// Each mark is replaced where it stands in the text; what took its place is not looked at again.
std::string replaced(std::string_view text, const std::vector<Replacement>& replacements) {
  std::string result;
  while (!text.empty()) {
    const auto found = std::find_if(replacements.begin(), replacements.end(),
                                    [&](const Replacement& each) { return text.starts_with(each.mark); });
    if (found == replacements.end()) {
      result += text.front();
      text.remove_prefix(1);
    } else {
      result += found->text;
      text.remove_prefix(found->mark.size());
    }
  }
  return result;
}

std::string contentsOf(const std::string& path) {
  std::string reason;
  const auto bytes = NSReadFile(path, &reason);
  if (!bytes) throw Failure(ExitCode::Input, "cannot read " + path + ": " + reason);
  return {bytes->begin(), bytes->end()};
}

struct WrittenFile {
  std::string name;
  std::string contents;
};

std::vector<WrittenFile> filesOf(const Kind& kind, const std::string& name, const std::string& identifier) {
  std::vector<ProjectFile> files{kind.effect};
  const auto add = [&](const auto& more) { files.insert(files.end(), std::begin(more), std::end(more)); };
  if (std::string_view(kind.name) == "composition") {
    add(kFilesOfCompositions);
  } else {
    add(kFilesOfEffects);
  }
  add(kFilesOfAll);
  std::vector<WrittenFile> written;
  for (const ProjectFile& file : files) {
    const std::string path = dataFolder() + "/new-effect/" + file.source;
    const std::vector<Replacement> replacements{{"NewEffect", identifier},
                                                {"New Effect", spelledName(name, fs::path(file.name).extension())},
                                                {"PICTURE_OPTIONS", kind.pictureOptions}};
    written.push_back({replaced(file.name, replacements), replaced(contentsOf(path), replacements)});
  }
  return written;
}

// A folder that was not there before, removed with all that is in it unless it is kept.
class NewFolder {
 public:
  explicit NewFolder(fs::path path) : path_(std::move(path)) {
    if (::mkdir(path_.c_str(), 0777) != 0) {
      cannotMake(path_.string(), errno == EEXIST ? "it is there already" : std::strerror(errno));
    }
  }
  ~NewFolder() {
    std::error_code ignored;
    if (!isKept_) fs::remove_all(path_, ignored);
  }
  NewFolder(const NewFolder&) = delete;
  NewFolder& operator=(const NewFolder&) = delete;

  void write(const WrittenFile& file) const {
    const std::string path = (path_ / file.name).string();
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(file.contents.data());
    std::string reason;
    if (!NSWriteFile(path, {bytes, file.contents.size()}, &reason)) cannotMake(path, reason);
  }
  void keep() { isKept_ = true; }

 private:
  const fs::path path_;
  bool isKept_ = false;
};

// A word of a shell's command line.
std::string quotedForShell(const std::string& word) {
  std::string result = "'";
  for (const char c : word) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
  const bool isPlain = std::all_of(word.begin(), word.end(), [](unsigned char c) {
    return isAsciiLetter(c) || isAsciiDigit(c) || std::strchr("/._-", c) != nullptr;
  });
  return isPlain ? word : result + "'";
}

}  // namespace

std::vector<std::string> newEffectKinds() {
  std::vector<std::string> names;
  for (const Kind& kind : kKinds) names.emplace_back(kind.name);
  return names;
}

void runNewEffect(const NewEffectOptions& options) {
  const auto kind =
      std::find_if(std::begin(kKinds), std::end(kKinds), [&](const Kind& each) { return options.kind == each.name; });
  if (kind == std::end(kKinds)) refuse("there is no kind \"" + options.kind + "\" of new effects");
  checkName(options.name);
  const std::string identifier = identifierFor(options);
  fs::path folder = options.output.empty() ? fs::path(identifier) : fs::path(options.output).lexically_normal();
  if (!folder.has_filename()) folder = folder.parent_path();  // a slash at the end
  const std::vector<WrittenFile> files = filesOf(*kind, options.name, identifier);
  NewFolder made(folder);
  for (const WrittenFile& file : files) made.write(file);
  made.keep();
  printText("Wrote " + folder.string() + ". To build it, render its first picture and test it:\n\n  cd " +
            quotedForShell(folder.string()) +
            " && cmake --workflow --preset default\n\nThe picture is build/picture.png.\n");
}

}  // namespace host
