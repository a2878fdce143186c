// SPDX-License-Identifier: BSD-3-Clause
#include "Host/ImageFiles/Exr/ExrMethods.h"

#include "Platform/Foundation/NSReason.h"

#include <dlfcn.h>

namespace host::exr {
namespace {

// Modules lie beside each other.
std::string pathOfMethods() {
  static const char here = 0;
  Dl_info info{};
  if (dladdr(&here, &info) == 0 || !info.dli_fname) return {};
  const std::string own = info.dli_fname;
  const std::size_t slash = own.rfind('/');
  return (slash == std::string::npos ? "./" : own.substr(0, slash + 1)) + "vorto-image-exr-methods.so";
}

}  // namespace

Methods* methods(std::string* reason) {
  static Methods* loaded = nullptr;
  if (loaded) return loaded;
  void* const library = dlopen(pathOfMethods().c_str(), RTLD_NOW | RTLD_LOCAL);
  void* const entry = library ? dlsym(library, kMethodsEntry) : nullptr;
  if (!entry) {
    const char* const error = dlerror();
    NSRefuse(reason, std::string("what its compression needs cannot be loaded: ") + (error ? error : "no entry"));
    return nullptr;
  }
  return loaded = reinterpret_cast<MethodsFunction>(entry)();
}

}  // namespace host::exr
