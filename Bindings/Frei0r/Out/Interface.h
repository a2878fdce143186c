// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/Frei0rHeader.h"

#include <cstdint>

// What the stubs, of which there is one for each effect, and the module, which does the work for all of them, say to
// each other. Nothing is thrown across it, and every function may be called from any thread; those of an instance from
// one at a time.
namespace frei0r {

class Effect;

struct Interface {
  // The effect of a name that takes this many frames, or null, which is said on standard error. It stays for good.
  const Effect* (*effectNamed)(const char* name, std::uint32_t inputs);
  void (*pluginInfo)(const Effect& effect, f0r_plugin_info_t* info);
  void (*parameterInfo)(const Effect& effect, f0r_param_info_t* info, int index);
  f0r_instance_t (*construct)(const Effect& effect, unsigned width, unsigned height);
  void (*destruct)(f0r_instance_t instance);
  void (*setParameter)(f0r_instance_t instance, f0r_param_t value, int index);
  void (*getParameter)(f0r_instance_t instance, f0r_param_t value, int index);
  // As many frames as the effect takes; the others are not looked at.
  void (*update)(f0r_instance_t instance, double time, const std::uint32_t* const* inputs, std::uint32_t* output);
};

// The one function that the module exports under kModuleEntry; null for another version than its own.
inline constexpr std::uint32_t kInterfaceVersion = 1;
inline constexpr char kModuleEntry[] = "vortoFrei0rInterface";
using ModuleEntry = const Interface* (*)(std::uint32_t version);

}  // namespace frei0r
