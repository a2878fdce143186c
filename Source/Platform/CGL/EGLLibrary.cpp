// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CGL/EGLLibrary.h"

#include <dlfcn.h>

namespace {

template <class Function>
bool find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(dlsym(library, name));
  return function != nullptr;
}

bool load(EGLLibrary& egl) {
  void* const library = dlopen("libEGL.so.1", RTLD_NOW | RTLD_LOCAL);  // never closed: drivers do not take it well
  return library && find(library, "eglGetCurrentContext", egl.getCurrentContext) &&
         find(library, "eglGetCurrentDisplay", egl.getCurrentDisplay) &&
         find(library, "eglGetCurrentSurface", egl.getCurrentSurface) &&
         find(library, "eglMakeCurrent", egl.makeCurrent) && find(library, "eglGetProcAddress", egl.getProcAddress) &&
         find(library, "eglQueryString", egl.queryString) && find(library, "eglInitialize", egl.initialize) &&
         find(library, "eglBindAPI", egl.bindAPI) && find(library, "eglQueryAPI", egl.queryAPI) &&
         find(library, "eglChooseConfig", egl.chooseConfig) && find(library, "eglCreateContext", egl.createContext) &&
         find(library, "eglDestroyContext", egl.destroyContext);
}

}  // namespace

const EGLLibrary* EGLLibrary::shared() {
  static EGLLibrary egl;
  static const bool isLoaded = load(egl);
  return isLoaded ? &egl : nullptr;
}
