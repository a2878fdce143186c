// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/In/Program/ForeignLibrary.h"

#include <dlfcn.h>

#include <cmath>
#include <cstddef>

namespace vorto::frei0r {
namespace {

constexpr FrameSize kDescribedSize{320, 240};

bool refuse(std::string* reason, std::string text) {
  *reason = std::move(text);
  return false;
}

std::string textOf(const char* text) {
  return text ? std::string(text, ::strnlen(text, kLongestText)) : std::string();
}

double finite(double value) {
  return std::isfinite(value) ? value : 0;
}

}  // namespace

bool ForeignLibrary::load(const std::string& path, std::string* reason) {
  void* const handle = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (!handle) {
    const char* const message = ::dlerror();
    return refuse(reason, std::string("it cannot be loaded: ") + (message ? message : "no reason given"));
  }
  if (!findAll(handle, reason)) return false;
  if (init_() < 0) return refuse(reason, "it fails to initialise");
  getPluginInfo_(&info_);
  return check(reason);
}

template <class Function>
bool ForeignLibrary::find(void* handle, const char* name, Function*& function, std::string* reason) {
  function = reinterpret_cast<Function*>(::dlsym(handle, name));
  return function || refuse(reason, std::string("it does not export ") + name);
}

bool ForeignLibrary::findAll(void* handle, std::string* reason) {
  std::string ignored;
  find(handle, "f0r_update", update_, &ignored);
  find(handle, "f0r_update2", update2_, &ignored);
  return find(handle, "f0r_init", init_, reason) && find(handle, "f0r_get_plugin_info", getPluginInfo_, reason) &&
         find(handle, "f0r_get_param_info", getParamInfo_, reason) &&
         find(handle, "f0r_construct", construct_, reason) && find(handle, "f0r_destruct", destruct_, reason) &&
         find(handle, "f0r_set_param_value", setParamValue_, reason) &&
         find(handle, "f0r_get_param_value", getParamValue_, reason);
}

// What must be passed over, so that newer plug-ins do no harm here.
bool ForeignLibrary::check(std::string* reason) const {
  const auto number = [](int value) { return std::to_string(value); };
  if (info_.frei0r_version > FREI0R_MAJOR_VERSION) {
    return refuse(reason, "it was built for version " + number(info_.frei0r_version) + " of the interface");
  }
  if (info_.plugin_type < F0R_PLUGIN_TYPE_FILTER || info_.plugin_type > F0R_PLUGIN_TYPE_MIXER3) {
    return refuse(reason, "it is of an unknown type, " + number(info_.plugin_type));
  }
  if (info_.color_model < F0R_COLOR_MODEL_BGRA8888 || info_.color_model > F0R_COLOR_MODEL_PACKED32) {
    return refuse(reason, "it has an unknown color model, " + number(info_.color_model));
  }
  if (info_.num_params < 0 || static_cast<std::uint32_t>(info_.num_params) > kMostParameters) {
    return refuse(reason, "it claims " + number(info_.num_params) + " parameters");
  }
  const bool isMixer = info_.plugin_type >= F0R_PLUGIN_TYPE_MIXER2;
  if (isMixer ? !update2_ : !update_ && !update2_) {
    return refuse(reason, isMixer ? "it does not export f0r_update2" : "it does not export f0r_update");
  }
  return true;
}

bool ForeignLibrary::describe(ForeignEffect* effect, std::string* reason) const {
  effect->name = textOf(info_.name);
  effect->author = textOf(info_.author);
  effect->explanation = textOf(info_.explanation);
  effect->kind = static_cast<ForeignKind>(info_.plugin_type);  // the enumerators stand for these numbers
  effect->colors = static_cast<ColorModel>(info_.color_model);
  effect->majorVersion = info_.major_version;
  effect->minorVersion = info_.minor_version;
  const f0r_instance_t instance = construct(kDescribedSize);
  if (!instance) return refuse(reason, "it makes no instance");
  for (int i = 0; i < info_.num_params; ++i) effect->parameters.push_back(describeParameter(i, instance));
  for (const ForeignParameter& parameter : effect->parameters) {
    if (parameter.kind > ParameterKind::Text) {
      return refuse(reason, "its parameter \"" + parameter.name + "\" is of an unknown type");
    }
  }
  return true;
}

ForeignParameter ForeignLibrary::describeParameter(int index, f0r_instance_t instance) const {
  f0r_param_info_t info{};
  getParamInfo_(&info, index);
  ForeignParameter parameter{textOf(info.name), textOf(info.explanation), static_cast<ParameterKind>(info.type), {}};
  alignas(std::max_align_t) std::byte value[256]{};  // more than any kind takes
  getParamValue_(instance, value, index);
  const auto* const doubles = reinterpret_cast<const double*>(value);
  const auto* const floats = reinterpret_cast<const float*>(value);
  auto& numbers = parameter.initial.numbers;
  switch (info.type) {
    case F0R_PARAM_BOOL:
      numbers[0] = doubles[0] >= 0.5;
      break;
    case F0R_PARAM_DOUBLE:
      numbers[0] = finite(doubles[0]);
      break;
    case F0R_PARAM_COLOR:
      for (int i = 0; i < 3; ++i) numbers[i] = finite(floats[i]);
      break;
    case F0R_PARAM_POSITION:
      for (int i = 0; i < 2; ++i) numbers[i] = finite(doubles[i]);
      break;
    case F0R_PARAM_STRING:
      parameter.initial.text = textOf(*reinterpret_cast<char* const*>(value));
      break;
    default:
      parameter.kind = static_cast<ParameterKind>(0xFF);
  }
  return parameter;
}

void ForeignLibrary::setValue(f0r_instance_t instance, std::uint32_t parameter, const ParameterValue& value) const {
  const int index = static_cast<int>(parameter);
  f0r_param_info_t info{};
  getParamInfo_(&info, index);
  f0r_param_color_t color{static_cast<float>(value.numbers[0]), static_cast<float>(value.numbers[1]),
                          static_cast<float>(value.numbers[2])};
  f0r_param_position_t position{value.numbers[0], value.numbers[1]};
  double number = value.numbers[0];
  std::string text = value.text;
  f0r_param_string first = text.data();
  switch (info.type) {
    case F0R_PARAM_COLOR:
      return setParamValue_(instance, &color, index);
    case F0R_PARAM_POSITION:
      return setParamValue_(instance, &position, index);
    case F0R_PARAM_STRING:
      return setParamValue_(instance, &first, index);
    default:
      return setParamValue_(instance, &number, index);
  }
}

unsigned ForeignLibrary::inputCount() const {
  ForeignEffect effect;
  effect.kind = static_cast<ForeignKind>(info_.plugin_type);
  return effect.inputCount();
}

void ForeignLibrary::update(f0r_instance_t instance, double time, const SharedFrames& frames) const {
  const unsigned count = inputCount();
  const auto input = [&](unsigned index) { return index < count ? frames.frame(index) : nullptr; };
  std::uint32_t* const out = frames.frame(SharedFrames::kOutput);
  const bool isMixer = count > 1;
  if (update_ && !isMixer) {
    update_(instance, time, input(0), out);
  } else {
    update2_(instance, time, input(0), input(1), input(2), out);
  }
}

}  // namespace vorto::frei0r
