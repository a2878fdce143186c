// SPDX-License-Identifier: BSD-3-Clause
#include "Bindings/Frei0r/Out/Interface.h"
#include "Bindings/Frei0r/Out/StubFields.h"

#include <dlfcn.h>
#include <pthread.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <initializer_list>

// One effect as a frei0r plug-in: hands everything over to the module. It needs no library but the C library's, so that
// it can be copied to anywhere.
namespace frei0r {
namespace {

// The compiler must not know what is in it: it is filled in the file.
constinit const volatile StubFields kFields = {"vorto frei0r stub, version 1", 0, "", ""};

struct Texts {
  char effect[sizeof(StubFields::effect)];
  char module[sizeof(StubFields::module)];
};

void copy(char* to, const volatile char* from, std::size_t size) {
  for (std::size_t i = 0; i + 1 < size; ++i) to[i] = from[i];
  to[size - 1] = 0;
}

// The module beside the stub's folder, as it is installed and as it is built.
void findModule(char* path, std::size_t size) {
  Dl_info own{};
  path[0] = 0;
  if (dladdr(reinterpret_cast<const void*>(&f0r_init), &own) == 0 || !own.dli_fname) return;
  const char* const slash = std::strrchr(own.dli_fname, '/');
  const int folder = slash ? static_cast<int>(slash - own.dli_fname) : 1;
  const char* const from = slash ? own.dli_fname : ".";
  for (const char* place : {VORTO_MODULE_FROM_STUBS, "../lib/vorto/vorto-frei0r.so"}) {
    std::snprintf(path, size, "%.*s/%s", folder, from, place);
    if (access(path, R_OK) == 0) return;
  }
}

const Interface* loadedModule(const char* path, const char* effect) {
  void* const library = dlopen(path, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
  const auto entry = library ? reinterpret_cast<ModuleEntry>(dlsym(library, kModuleEntry)) : nullptr;
  if (const Interface* const interface = entry ? entry(kInterfaceVersion) : nullptr) return interface;
  const char* const reason = library ? "it is of another version" : dlerror();
  std::fprintf(stderr, "vorto: \"%s\" cannot be used: %s: %s\n", effect, path, reason ? reason : "it cannot be loaded");
  return nullptr;
}

struct Link {
  const Interface* module = nullptr;
  const Effect* effect = nullptr;
};

// Kept in place, for the reports that name them.
Texts texts;
Link instance;
pthread_once_t once = PTHREAD_ONCE_INIT;

void makeLink() {
  copy(texts.effect, kFields.effect, sizeof texts.effect);
  copy(texts.module, kFields.module, sizeof texts.module);
  if (!texts.module[0]) findModule(texts.module, sizeof texts.module);
  instance.module = loadedModule(texts.module, texts.effect);
  if (instance.module) instance.effect = instance.module->effectNamed(texts.effect, kFields.inputs);
}

// Made by the first call of any function; hosts differ in which that is.
const Link& link() {
  pthread_once(&once, makeLink);
  return instance;
}

bool isThere() {
  return link().effect != nullptr;
}

}  // namespace
}  // namespace frei0r

using frei0r::isThere;
using frei0r::link;

// 1 is what hosts take for success, whether they look for something above 0 or for nothing below it.
int f0r_init(void) {
  return isThere() ? 1 : 0;
}

void f0r_deinit(void) {}

void f0r_get_plugin_info(f0r_plugin_info_t* info) {
  if (isThere()) return link().module->pluginInfo(*link().effect, info);
  // Of no type that there is, which hosts pass over.
  *info = {"Vorto", "", -1, -1, FREI0R_MAJOR_VERSION, 0, 0, 0, "This effect is not there"};
}

void f0r_get_param_info(f0r_param_info_t* info, int index) {
  *info = {"", F0R_PARAM_STRING, ""};
  if (isThere()) link().module->parameterInfo(*link().effect, info, index);
}

f0r_instance_t f0r_construct(unsigned width, unsigned height) {
  return isThere() ? link().module->construct(*link().effect, width, height) : nullptr;
}

void f0r_destruct(f0r_instance_t instance) {
  if (instance) link().module->destruct(instance);
}

void f0r_set_param_value(f0r_instance_t instance, f0r_param_t value, int index) {
  if (instance && value) link().module->setParameter(instance, value, index);
}

void f0r_get_param_value(f0r_instance_t instance, f0r_param_t value, int index) {
  if (instance && value) link().module->getParameter(instance, value, index);
}

void f0r_update(f0r_instance_t instance, double time, const std::uint32_t* input, std::uint32_t* output) {
  f0r_update2(instance, time, input, nullptr, nullptr, output);
}

void f0r_update2(f0r_instance_t instance, double time, const std::uint32_t* input1, const std::uint32_t* input2,
                 const std::uint32_t* input3, std::uint32_t* output) {
  const std::uint32_t* const inputs[] = {input1, input2, input3};
  if (instance && output) link().module->update(instance, time, inputs, output);
}
