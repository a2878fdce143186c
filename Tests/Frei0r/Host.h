// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bindings/Frei0r/Frei0rHeader.h"

#include <dlfcn.h>

#include <string>
#include <vector>

// What a host of frei0r does: loads a plug-in by its file and looks its functions up.
class LoadedPlugIn {
 public:
  explicit LoadedPlugIn(const std::string& path) : library_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (!library_) {
      ADD_FAILURE() << dlerror();
      std::abort();
    }
    find(init, "f0r_init");
    find(pluginInfo, "f0r_get_plugin_info");
    find(paramInfo, "f0r_get_param_info");
    find(construct, "f0r_construct");
    find(destruct, "f0r_destruct");
    find(set, "f0r_set_param_value");
    find(get, "f0r_get_param_value");
    find(update, "f0r_update");
    find(update2, "f0r_update2");
    init();
    pluginInfo(&info);
  }
  ~LoadedPlugIn() { dlclose(library_); }
  LoadedPlugIn(const LoadedPlugIn&) = delete;
  LoadedPlugIn& operator=(const LoadedPlugIn&) = delete;

  int parameter(const std::string& name) const {
    for (int i = 0; i < info.num_params; ++i) {
      f0r_param_info_t each{};
      paramInfo(&each, i);
      if (each.name == name) return i;
    }
    ADD_FAILURE() << info.name << " has no " << name;
    return -1;
  }

  decltype(&f0r_init) init = nullptr;
  decltype(&f0r_get_plugin_info) pluginInfo = nullptr;
  decltype(&f0r_get_param_info) paramInfo = nullptr;
  decltype(&f0r_construct) construct = nullptr;
  decltype(&f0r_destruct) destruct = nullptr;
  decltype(&f0r_set_param_value) set = nullptr;
  decltype(&f0r_get_param_value) get = nullptr;
  decltype(&f0r_update) update = nullptr;
  decltype(&f0r_update2) update2 = nullptr;
  f0r_plugin_info_t info{};

 private:
  template <class Function>
  void find(Function& function, const char* name) {
    function = reinterpret_cast<Function>(dlsym(library_, name));
    ASSERT_TRUE(function) << name;
  }
  void* library_;
};

using Frame = std::vector<std::uint32_t>;

class PlugInInstance {
 public:
  PlugInInstance(const LoadedPlugIn& plugIn, unsigned width, unsigned height)
      : plugIn_(plugIn), pixels_(std::size_t{width} * height), instance_(plugIn.construct(width, height)) {}
  ~PlugInInstance() { plugIn_.destruct(instance_); }
  PlugInInstance(const PlugInInstance&) = delete;
  PlugInInstance& operator=(const PlugInInstance&) = delete;
  bool isThere() const { return instance_; }

  void set(const std::string& name, const std::string& text) {
    std::string copy = text;
    f0r_param_string pointer = copy.data();
    plugIn_.set(instance_, &pointer, plugIn_.parameter(name));
    copy.assign(copy.size(), '?');  // it is the host's
  }
  void set(const std::string& name, double number) { plugIn_.set(instance_, &number, plugIn_.parameter(name)); }
  void set(const std::string& name, f0r_param_color_t color) {
    plugIn_.set(instance_, &color, plugIn_.parameter(name));
  }
  std::string text(const std::string& name) const {
    f0r_param_string pointer = nullptr;
    plugIn_.get(instance_, &pointer, plugIn_.parameter(name));
    return pointer ? pointer : "(none)";
  }
  double number(const std::string& name) const {
    double number = -1;
    plugIn_.get(instance_, &number, plugIn_.parameter(name));
    return number;
  }

  // Of as many frames as there are, each of exactly the size: a sanitizer sees who leaves it.
  Frame rendered(const std::vector<Frame>& inputs, double time = 0) {
    Frame output(pixels_, 0x12345678);
    const std::uint32_t* pointers[3] = {};
    for (std::size_t i = 0; i < inputs.size(); ++i) pointers[i] = inputs[i].data();
    if (inputs.size() < 2) {
      plugIn_.update(instance_, time, pointers[0], output.data());
    } else {
      plugIn_.update2(instance_, time, pointers[0], pointers[1], pointers[2], output.data());
    }
    return output;
  }

 private:
  const LoadedPlugIn& plugIn_;
  const std::size_t pixels_;
  const f0r_instance_t instance_;
};
