// SPDX-License-Identifier: BSD-3-Clause
// Foreign plug-ins of the tests' own, one for each name in TEST_FOREIGN: what each does stands at its struct.
#include <unistd.h>
#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

extern "C" {
#include <frei0r.h>
}

namespace {

struct Parameter {
  const char* name;
  int type;
  const char* explanation;
};

// What a plug-in is unless its struct says otherwise: a filter of RGBA that copies its input and has no parameters.
struct Plain {
  static constexpr const char* kAuthor = "Somebody";
  static constexpr const char* kExplanation = "Copies";
  static constexpr int kType = F0R_PLUGIN_TYPE_FILTER;
  static constexpr int kColors = F0R_COLOR_MODEL_RGBA8888;
  static constexpr int kVersion = FREI0R_MAJOR_VERSION;
  static constexpr const Parameter* kParameters = nullptr;
  static constexpr int kCount = 0;

  Plain(unsigned w, unsigned h) : width(w), height(h) {}
  void get(void*, int) {}
  void set(const void*, int) {}
  void update(double, const std::uint32_t* const in[3], std::uint32_t* out) { std::copy_n(in[0], width * height, out); }
  static bool takes(unsigned, unsigned) { return true; }
  static void load() {}

  unsigned width, height;
};

std::uint8_t* bytesOf(std::uint32_t* pixels) {
  return reinterpret_cast<std::uint8_t*>(pixels);
}

// Each filter of a color model makes the first of the four bytes full: red or blue.
struct Rgba : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "Rgba";
  void update(double time, const std::uint32_t* const in[3], std::uint32_t* out) {
    Plain::update(time, in, out);
    for (unsigned i = 0; i < width * height; ++i) bytesOf(out + i)[0] = 255;
  }
};
struct Bgra : Rgba {
  using Rgba::Rgba;
  static constexpr const char* kName = "Bgra";
  static constexpr int kColors = F0R_COLOR_MODEL_BGRA8888;
};
// Copies. The second of its name.
struct Packed : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "Rgba";
  static constexpr int kColors = F0R_COLOR_MODEL_PACKED32;
};

// Writes no alpha.
struct Careless : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "Careless";
  void update(double, const std::uint32_t* const[3], std::uint32_t* out) {
    for (unsigned i = 0; i < width * height; ++i) std::fill_n(bytesOf(out + i), 3, 10);
  }
};

// A source whose colors tell the time and the size that it was made for.
struct Source : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "Source";
  static constexpr int kType = F0R_PLUGIN_TYPE_SOURCE;
  static constexpr int kColors = F0R_COLOR_MODEL_BGRA8888;
  void update(double time, const std::uint32_t* const[3], std::uint32_t* out) {
    const std::uint8_t bgra[] = {static_cast<std::uint8_t>(width), static_cast<std::uint8_t>(height),
                                 static_cast<std::uint8_t>(std::lround(time * 10)), 255};
    for (unsigned i = 0; i < width * height; ++i) std::memcpy(out + i, bgra, 4);
  }
};

// Red of the first input, green of the second, blue of the third.
struct Mixer2 : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "Mixer2";
  static constexpr int kType = F0R_PLUGIN_TYPE_MIXER2;
  void update(double, const std::uint32_t* const in[3], std::uint32_t* out) {
    for (unsigned i = 0; i < width * height; ++i) {
      std::uint8_t* const pixel = bytesOf(out + i);
      for (int c = 0; c < 3; ++c) pixel[c] = in[c] ? reinterpret_cast<const std::uint8_t*>(in[c] + i)[c] : 0;
      pixel[3] = 255;
    }
  }
};
struct Mixer3 : Mixer2 {
  using Mixer2::Mixer2;
  static constexpr const char* kName = "Mixer3";
  static constexpr int kType = F0R_PLUGIN_TYPE_MIXER3;
};

// Shows its parameters in the red of its first pixels.
constexpr Parameter kEveryKind[] = {
    {"on", F0R_PARAM_BOOL, "Whether"},       {"amount of it", F0R_PARAM_DOUBLE, nullptr},
    {"tint", F0R_PARAM_COLOR, ""},           {"center", F0R_PARAM_POSITION, "Where\nit is"},
    {"text", F0R_PARAM_STRING, "\xFFwords"}, {"image", F0R_PARAM_DOUBLE, nullptr},
    {"", F0R_PARAM_DOUBLE, nullptr}};
struct Parameters : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "Parameters";
  static constexpr const Parameter* kParameters = kEveryKind;
  static constexpr int kCount = 7;
  void get(void* value, int index) {
    if (index == 0) *static_cast<double*>(value) = on;
    if (index == 1) *static_cast<double*>(value) = amount;
    if (index == 2) std::memcpy(value, &tint, sizeof tint);
    if (index == 3) std::memcpy(value, &center, sizeof center);
    if (index == 4) *static_cast<char**>(value) = text.data();
    if (index == 5) *static_cast<double*>(value) = 1.5;
    if (index == 6) *static_cast<double*>(value) = std::nan("");
  }
  void set(const void* value, int index) {
    ++calls;
    if (index == 0) on = *static_cast<const double*>(value);
    if (index == 1) amount = *static_cast<const double*>(value);
    if (index == 2) std::memcpy(&tint, value, sizeof tint);
    if (index == 3) std::memcpy(&center, value, sizeof center);
    if (index == 4) text = *static_cast<char* const*>(value);
  }
  void update(double time, const std::uint32_t* const in[3], std::uint32_t* out) {
    Plain::update(time, in, out);
    const double shown[] = {on, amount, tint.r, tint.g, tint.b, center.x, center.y, text.size() / 255.0, calls / 255.0};
    for (int i = 0; i < 9; ++i) bytesOf(out + i)[0] = static_cast<std::uint8_t>(std::lround(shown[i] * 255));
  }
  double on = 1, amount = 0.25;
  f0r_param_color_t tint{0.5F, 0.25F, 1};
  f0r_param_position_t center{0.5, 0.75};
  std::string text = "seven..";
  int calls = 0;
};

// Takes nothing but what the interface promises; counts its frames in red.
struct Strict : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "Strict";
  static bool takes(unsigned w, unsigned h) { return w % 8 == 0 && h % 8 == 0 && w > 0 && h > 0; }
  void update(double time, const std::uint32_t* const in[3], std::uint32_t* out) {
    if (reinterpret_cast<std::uintptr_t>(in[0]) % 16 || reinterpret_cast<std::uintptr_t>(out) % 16) std::abort();
    Plain::update(time, in, out);
    ++frames;
    for (unsigned i = 0; i < width * height; ++i) bytesOf(out + i)[0] = frames;
  }
  std::uint8_t frames = 0;
};

// Turns its frame upside down and round: half a turn about the middle.
struct Turned : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "Turned";
  static constexpr int kColors = F0R_COLOR_MODEL_PACKED32;
  void update(double, const std::uint32_t* const in[3], std::uint32_t* out) {
    for (unsigned i = 0; i < width * height; ++i) out[i] = in[0][width * height - 1 - i];
  }
};

// Does what its text says.
constexpr Parameter kDeed[] = {{"deed", F0R_PARAM_STRING, nullptr}};
struct Trouble : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "Trouble";
  static constexpr const Parameter* kParameters = kDeed;
  static constexpr int kCount = 1;
  void get(void* value, int) { *static_cast<char**>(value) = deed.data(); }
  void set(const void* value, int) { deed = *static_cast<char* const*>(value); }
  void update(double time, const std::uint32_t* const in[3], std::uint32_t* out) {
    Plain::update(time, in, out);
    std::printf("this is no picture\n");
    std::fflush(stdout);
    if (deed == "crash") std::raise(SIGSEGV);
    if (deed == "exit") std::exit(3);
    while (deed == "hang") ::pause();
  }
  std::string deed;
};

// What goes wrong before there is a description. Loaded counts how often it is loaded.
struct CrashOnLoad : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "CrashOnLoad";
  static void load() { std::abort(); }
};
struct HangOnLoad : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "HangOnLoad";
  static void load() {
    for (;;) ::pause();
  }
};
struct NoInstance : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "NoInstance";
  static bool takes(unsigned, unsigned) { return false; }
};
struct Newer : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "Newer";
  static constexpr int kVersion = FREI0R_MAJOR_VERSION + 1;
};
struct Unknown : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "Unknown";
  static constexpr int kColors = 17;
};
struct Loaded : Plain {
  using Plain::Plain;
  static constexpr const char* kName = "Loaded";
  static void load() {
    std::puts("this is no list");
    const char* const path = std::getenv("TEST_FOREIGN_LOADS");
    if (std::FILE* const file = path ? std::fopen(path, "a") : nullptr) {
      std::fputc('.', file);
      std::fclose(file);
    }
  }
};

using Tested = TEST_FOREIGN;

Tested& instanceOf(f0r_instance_t instance) {
  return *static_cast<Tested*>(instance);
}

}  // namespace

#define EXPORTED __attribute__((visibility("default")))
extern "C" {
EXPORTED int f0r_init() {
  Tested::load();
  return 1;
}
EXPORTED void f0r_deinit() {}
EXPORTED void f0r_get_plugin_info(f0r_plugin_info_t* info) {
  *info = {Tested::kName,  Tested::kAuthor,     Tested::kType, Tested::kColors, Tested::kVersion, 2, 7,
           Tested::kCount, Tested::kExplanation};
}
EXPORTED void f0r_get_param_info(f0r_param_info_t* info, int index) {
  if (index >= 0 && index < Tested::kCount) {
    const Parameter& parameter = Tested::kParameters[index];
    *info = {parameter.name, parameter.type, parameter.explanation};
  }
}
EXPORTED f0r_instance_t f0r_construct(unsigned int width, unsigned int height) {
  return Tested::takes(width, height) ? new Tested(width, height) : nullptr;
}
EXPORTED void f0r_destruct(f0r_instance_t instance) {
  delete &instanceOf(instance);
}
EXPORTED void f0r_set_param_value(f0r_instance_t instance, f0r_param_t value, int index) {
  instanceOf(instance).set(value, index);
}
EXPORTED void f0r_get_param_value(f0r_instance_t instance, f0r_param_t value, int index) {
  instanceOf(instance).get(value, index);
}
EXPORTED void f0r_update(f0r_instance_t instance, double time, const std::uint32_t* in, std::uint32_t* out) {
  if (Tested::kType >= F0R_PLUGIN_TYPE_MIXER2) std::abort();  // hosts must not
  const std::uint32_t* const inputs[] = {in, nullptr, nullptr};
  instanceOf(instance).update(time, inputs, out);
}
EXPORTED void f0r_update2(f0r_instance_t instance, double time, const std::uint32_t* first, const std::uint32_t* second,
                          const std::uint32_t* third, std::uint32_t* out) {
  const std::uint32_t* const inputs[] = {first, second, third};
  instanceOf(instance).update(time, inputs, out);
}
}
