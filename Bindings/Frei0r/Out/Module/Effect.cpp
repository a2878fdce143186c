// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/Out/Module/Effect.h"

#include "Host/Files/ProgramFolder.h"
#include "Host/Messages/Failure.h"

#include <dlfcn.h>

#include <filesystem>
#include <map>
#include <memory>
#include <utility>

namespace frei0r {
namespace {

// The program that was installed or built with this module.
void findProgram() {
  Dl_info own{};
  if (dladdr(reinterpret_cast<const void*>(&findProgram), &own) == 0 || !own.dli_fname) return;
  std::error_code error;
  const std::filesystem::path module = std::filesystem::canonical(own.dli_fname, error);
  if (error) return;
  host::setProgramFolder((module.parent_path() / VORTO_PROGRAMS_FROM_LIBRARIES).lexically_normal().string());
}

void loadRegistry() {
  static const bool isLoaded = [] {
    findProgram();
    host::loadEffects();
    return true;
  }();
  static_cast<void>(isLoaded);
}

}  // namespace

const Effect& Effect::named(const std::string& name, std::uint32_t inputs) {
  using Key = std::pair<std::string, std::uint32_t>;
  static auto& effects = *new std::map<Key, std::unique_ptr<const Effect>>;  // for good, as its users' pointers
  loadRegistry();
  auto& effect = effects[{name, inputs}];
  if (!effect) {
    auto plugIn = plugInNamed(name, inputs);
    if (!plugIn) {
      throw host::Failure(host::ExitCode::Usage,
                          "there is no effect \"" + name + "\" that takes so many frames (vorto frei0r --list)");
    }
    effect = std::make_unique<const Effect>(std::move(*plugIn));
  }
  return *effect;
}

std::mutex& registryLock() {
  static auto& lock = *new std::mutex;
  return lock;
}

}  // namespace frei0r
