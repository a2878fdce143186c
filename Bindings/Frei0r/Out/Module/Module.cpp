// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/Out/Interface.h"
#include "Bindings/Frei0r/Out/Module/Instance.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Utf8.h"

#include <cstdio>
#include <mutex>

// What crosses the border to hosts written in C: nothing may be thrown over it.
namespace frei0r {
namespace {

void report(const std::string& effect) {
  std::string reason = "it failed";
  try {
    reason = host::caughtFailure().what();
  } catch (...) {
  }
  std::fprintf(stderr, "vorto: %s: %s\n", host::printable(effect).c_str(), host::printable(reason).c_str());
}

const Effect* effectNamed(const char* name, std::uint32_t inputs) {
  try {
    const std::lock_guard lock(registryLock());
    return &Effect::named(name, inputs);
  } catch (...) {
    report(name);
    return nullptr;
  }
}

void pluginInfo(const Effect& effect, f0r_plugin_info_t* info) {
  const PlugIn& plugIn = effect.plugIn();
  *info = {plugIn.name.c_str(),
           "Vorto",
           plugIn.type(),
           F0R_COLOR_MODEL_RGBA8888,
           FREI0R_MAJOR_VERSION,
           0,
           1,
           static_cast<int>(effect.parameters().size()),
           plugIn.description.c_str()};
}

void parameterInfo(const Effect& effect, f0r_param_info_t* info, int index) {
  if (index < 0 || static_cast<std::size_t>(index) >= effect.parameters().size()) return;
  const Parameter& parameter = effect.parameters()[static_cast<std::size_t>(index)];
  *info = {parameter.name.c_str(), parameter.type(), parameter.explanation.c_str()};
}

Instance& at(f0r_instance_t instance) {
  return *static_cast<Instance*>(instance);
}

f0r_instance_t construct(const Effect& effect, unsigned width, unsigned height) {
  try {
    const std::lock_guard lock(registryLock());
    return new Instance(effect, width, height);
  } catch (...) {
    report(effect.plugIn().effect);
    return nullptr;
  }
}

void destruct(f0r_instance_t instance) {
  const std::lock_guard lock(registryLock());
  delete &at(instance);
}

constexpr Interface kInterface = {
    effectNamed,
    pluginInfo,
    parameterInfo,
    construct,
    destruct,
    [](f0r_instance_t instance, f0r_param_t value, int index) { at(instance).set(index, value); },
    [](f0r_instance_t instance, f0r_param_t value, int index) { at(instance).get(index, value); },
    [](f0r_instance_t instance, double time, const std::uint32_t* const* inputs, std::uint32_t* output) {
      at(instance).update(time, inputs, output);
    },
};

}  // namespace
}  // namespace frei0r

extern "C" __attribute__((visibility("default"))) const frei0r::Interface* vortoFrei0rInterface(std::uint32_t version) {
  return version == frei0r::kInterfaceVersion ? &frei0r::kInterface : nullptr;
}
