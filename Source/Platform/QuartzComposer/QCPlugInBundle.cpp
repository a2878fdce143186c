// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/QuartzComposer/QCPlugInBundle.h"

#include "Platform/Foundation/NSReason.h"
#include "Platform/QuartzComposer/QCPlugInBinary.h"

#include <dlfcn.h>

#include <exception>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

constexpr std::uintmax_t kLargestInfo = 1 << 20;

// The name of the binary, without a path; empty, with the cause, when the bundle does not state one.
std::string executableName(const std::string& bundle, std::string* reason) {
  const std::string path = bundle + "/Contents/Info.plist";
  std::error_code error;
  const fs::file_status status = fs::status(path, error);
  if (status.type() == fs::file_type::not_found) {
    NSRefuse(reason, "it has no Contents/Info.plist");
    return {};
  }
  if (!fs::is_regular_file(status) || fs::file_size(path, error) > kLargestInfo || error) {
    NSRefuse(reason, "its Info.plist cannot be read");
    return {};
  }
  std::string cause;
  const std::optional<PropertyList> info = PropertyListFromFile(path, &cause);
  if (!info || !info->isDictionary()) {
    NSRefuse(reason, "its Info.plist cannot be read: " + (info ? "it is no dictionary" : cause));
    return {};
  }
  const PropertyList* name = info->find("CFBundleExecutable");
  if (!name || name->stringValue().empty()) {
    NSRefuse(reason, "its Info.plist names no CFBundleExecutable");
    return {};
  }
  const std::string& text = name->stringValue();
  if (text.find('/') != std::string::npos || text.find('\0') != std::string::npos || text == "." || text == "..") {
    NSRefuse(reason, "its CFBundleExecutable is not the plain name of a file");
    return {};
  }
  return text;
}

void* open(const std::string& binary, std::string* reason) {
  void* handle = dlopen(binary.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    const char* message = dlerror();
    NSRefuse(reason, std::string("its binary cannot be loaded: ") + (message ? message : "no reason given"));
  }
  return handle;
}

const QCPlugInDescription* describe(void* handle, std::string* reason) {
  using Describe = const QCPlugInDescription* (*)();
  const auto function = reinterpret_cast<Describe>(dlsym(handle, "QCPlugInDescribe"));
  if (!function) {
    NSRefuse(reason, "its binary does not export QCPlugInDescribe");
    return nullptr;
  }
  try {
    const QCPlugInDescription* description = function();
    if (!description) {
      NSRefuse(reason, "QCPlugInDescribe gives no description");
    }
    return description;
  } catch (const std::exception& error) {
    NSRefuse(reason, std::string("QCPlugInDescribe threw: ") + error.what());
  } catch (...) {
    NSRefuse(reason, "QCPlugInDescribe threw");
  }
  return nullptr;
}

}  // namespace

const QCPlugInDescription* QCLoadPlugInBundle(const std::string& path, QCPlugInTrial survives, std::string* reason) {
  const std::string name = executableName(path, reason);
  if (name.empty()) {
    return nullptr;
  }
  const std::string binary = path + "/Contents/Linux/" + name;
  std::error_code error;
  if (!fs::is_regular_file(binary, error)) {
    NSRefuse(reason, "it has no binary Contents/Linux/" + name);
    return nullptr;
  }
  if (!QCCheckPlugInBinary(binary, reason) || (survives && !survives(path, binary, reason))) {
    return nullptr;
  }
  // The handle is never closed: initialisers of the binary may have registered classes.
  void* handle = open(binary, reason);
  const QCPlugInDescription* description = handle ? describe(handle, reason) : nullptr;
  if (!description) {
    return nullptr;
  }
  if (description->interfaceVersion != QCPlugInInterfaceVersion) {
    NSRefuse(reason, "it was built for interface version " + std::to_string(description->interfaceVersion) + ", not " +
                         std::to_string(QCPlugInInterfaceVersion));
    return nullptr;
  }
  if (!description->registerNodes) {
    NSRefuse(reason, "its description has no function that registers nodes");
    return nullptr;
  }
  return description;
}
