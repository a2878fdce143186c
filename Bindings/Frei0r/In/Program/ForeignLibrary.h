// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/In/ForeignEffect.h"
#include "Bindings/Frei0r/In/SharedFrames.h"

#include <string>

extern "C" {
#include <frei0r.h>
}

namespace vorto::frei0r {

// The functions of a plug-in's binary. Whatever they do, they do to this process.
class ForeignLibrary {
 public:
  // Loads and initialises it, for good. False, with the reason, when it is no plug-in that can be used.
  bool load(const std::string& path, std::string* reason);

  // Its description, with the values of an instance that is made for it. False, with the reason, when it makes none.
  bool describe(ForeignEffect* effect, std::string* reason) const;

  f0r_instance_t construct(const FrameSize& size) const { return construct_(size.width, size.height); }
  void destruct(f0r_instance_t instance) const { destruct_(instance); }
  void setValue(f0r_instance_t instance, std::uint32_t parameter, const ParameterValue& value) const;
  void update(f0r_instance_t instance, double time, const SharedFrames& frames) const;
  unsigned inputCount() const;
  std::uint32_t parameterCount() const { return static_cast<std::uint32_t>(info_.num_params); }

 private:
  template <class Function>
  bool find(void* handle, const char* name, Function*& function, std::string* reason);
  bool findAll(void* handle, std::string* reason);
  bool check(std::string* reason) const;
  ForeignParameter describeParameter(int index, f0r_instance_t instance) const;

  f0r_plugin_info_t info_{};
  decltype(f0r_init)* init_ = nullptr;
  decltype(f0r_get_plugin_info)* getPluginInfo_ = nullptr;
  decltype(f0r_get_param_info)* getParamInfo_ = nullptr;
  decltype(f0r_construct)* construct_ = nullptr;
  decltype(f0r_destruct)* destruct_ = nullptr;
  decltype(f0r_set_param_value)* setParamValue_ = nullptr;
  decltype(f0r_get_param_value)* getParamValue_ = nullptr;
  decltype(f0r_update)* update_ = nullptr;    // of filters and sources; null where there is update2_ instead
  decltype(f0r_update2)* update2_ = nullptr;  // of mixers
};

}  // namespace vorto::frei0r
