// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CoreFoundation/CFBundle.h"

#include "Platform/CoreFoundation/CFBundleRegistry.h"
#include "Platform/CoreFoundation/CFLocale.h"
#include "Platform/CoreFoundation/CFStringObject.h"
#include "Platform/CoreFoundation/CFStringsFile.h"
#include "Platform/Foundation/NSReason.h"
#include "Platform/Foundation/PropertyList.h"

#include <filesystem>
#include <unordered_map>

namespace fs = std::filesystem;

struct CFBundleObject final : CFObject {
  ~CFBundleObject() override { CFBundleRegistryRemove(this); }
  std::string description() const override { return path; }

  std::string path;
  PropertyList info;
  CFOwned<CFStringRef> identifier;
  mutable std::unordered_map<std::string, CFStringTable> tables;  // by path, each read once
};

namespace {

bool IsPlainName(std::string_view name) {
  constexpr std::string_view kRefused("/\0", 2);
  return !name.empty() && name != "." && name.find("..") == std::string_view::npos &&
         name.find_first_of(kRefused) == std::string_view::npos;
}

// Null, with the cause in *reason, as CFBundleCreate returns it.
CFBundleRef Refuse(std::string* reason, std::string cause) {
  NSRefuse(reason, std::move(cause));
  return nullptr;
}

const std::string& InfoString(const PropertyList& info, std::string_view key) {
  static const std::string none;
  const PropertyList* value = info.find(key);
  return value == nullptr ? none : value->stringValue();
}

std::string ResourcesPath(CFBundleRef bundle) {
  return bundle->path + "/Contents/Resources/";
}

bool Exists(const std::string& path) {
  std::error_code error;
  return fs::exists(path, error);
}

// The paths at which a file may lie in a language of its own, in the order in which they are tried.
std::vector<std::string> LocalizedPaths(CFBundleRef bundle, const std::string& file) {
  std::vector<std::string> languages = CFPreferredLanguages();
  for (const std::string& fallback : {InfoString(bundle->info, "CFBundleDevelopmentRegion"), std::string("en")}) {
    const std::vector<std::string> forms = CFLanguageForms(fallback);
    languages.insert(languages.end(), forms.begin(), forms.end());
  }
  std::vector<std::string> paths;
  paths.reserve(languages.size());
  for (const std::string& language : languages) paths.push_back(ResourcesPath(bundle) + language + ".lproj/" + file);
  return paths;
}

const CFStringTable& Table(CFBundleRef bundle, const std::string& path) {
  const auto known = bundle->tables.find(path);
  if (known != bundle->tables.end()) return known->second;
  CFStringTable& table = bundle->tables[path];
  if (!Exists(path)) return table;
  std::string reason;
  if (std::optional<CFStringTable> read = CFReadStringsFile(path, &reason)) {
    table = std::move(*read);
  } else {
    CFReport("%s: %s", path.c_str(), reason.c_str());
  }
  return table;
}

}  // namespace

CFBundleRef CFBundleCreate(CFAllocatorRef, const std::string& path, std::string* reason) {
  std::error_code error;
  const std::string canonical = fs::canonical(path, error).string();
  if (error) return Refuse(reason, error.message());
  if (CFBundleRef open = CFBundleRegistryFindPath(canonical)) return static_cast<CFBundleRef>(CFRetain(open));
  const std::string extension = fs::path(canonical).extension().string();
  if (!fs::is_directory(canonical, error)) return Refuse(reason, "is not a folder");
  if (extension != ".bundle" && extension != ".plugin") {
    return Refuse(reason, "a bundle's folder is named NAME.bundle or NAME.plugin");
  }
  std::string cause;
  std::optional<PropertyList> info = PropertyListFromFile(canonical + "/Contents/Info.plist", &cause);
  if (!info) return Refuse(reason, "Contents/Info.plist: " + cause);
  const std::string& name = InfoString(*info, "CFBundleIdentifier");
  CFOwned<CFStringRef> identifier(
      name.empty() ? nullptr : CFStringCreateWithCString(kCFAllocatorDefault, name.c_str(), kCFStringEncodingUTF8));
  if (!identifier) return Refuse(reason, "Contents/Info.plist: CFBundleIdentifier is missing");
  auto* bundle = new CFBundleObject;
  bundle->path = canonical;
  bundle->info = std::move(*info);
  bundle->identifier = std::move(identifier);
  CFBundleRegistryAdd(bundle, canonical, bundle->identifier.get());
  return bundle;
}

CFStringRef CFBundleGetIdentifier(CFBundleRef bundle) {
  return bundle == nullptr ? nullptr : bundle->identifier.get();
}

std::string CFBundleGetPath(CFBundleRef bundle) {
  return bundle == nullptr ? std::string() : bundle->path;
}

const PropertyList& CFBundleGetInfoDictionary(CFBundleRef bundle) {
  static const PropertyList empty;
  return bundle == nullptr ? empty : bundle->info;
}

std::string CFBundleCopyExecutablePath(CFBundleRef bundle, std::string* reason) {
  if (bundle == nullptr) return {};
  const std::string& name = InfoString(bundle->info, "CFBundleExecutable");
  if (IsPlainName(name)) return bundle->path + "/Contents/Linux/" + name;
  Refuse(reason, name.empty() ? "Contents/Info.plist: CFBundleExecutable is missing"
                              : "Contents/Info.plist: CFBundleExecutable \"" + name + "\" is no plain file name");
  return {};
}

std::string CFBundleCopyResourcePath(CFBundleRef bundle, std::string_view name, std::string_view type) {
  std::string file(name);
  if (!type.empty()) file.append(".").append(type);
  if (bundle == nullptr || name.empty() || !IsPlainName(file)) return {};
  if (std::string path = ResourcesPath(bundle) + file; Exists(path)) return path;
  for (const std::string& path : LocalizedPaths(bundle, file)) {
    if (Exists(path)) return path;
  }
  return {};
}

CFStringRef CFBundleCopyLocalizedString(CFBundleRef bundle, CFStringRef key, CFStringRef value, CFStringRef tableName) {
  const std::string name = tableName == nullptr ? "Localizable" : CFStringCopyUTF8(tableName);
  if (bundle != nullptr && key != nullptr && IsPlainName(name)) {
    for (const std::string& path : LocalizedPaths(bundle, name + ".strings")) {
      const CFStringTable& table = Table(bundle, path);
      const auto entry = table.find(key->units);
      if (entry != table.end()) return CFStringCreateWithUnits(entry->second);
    }
  }
  return CFStringCreateCopy(kCFAllocatorDefault, value != nullptr ? value : key);
}
