// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CGL/CGL.h"
#include "Platform/CGL/EGLLibrary.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

struct CGLContextObject {
  EGLDisplay display = EGL_NO_DISPLAY;
  EGLSurface draw = EGL_NO_SURFACE;
  EGLSurface read = EGL_NO_SURFACE;
  EGLContext context = EGL_NO_CONTEXT;
  bool isOwn = false;

  bool isSameAs(const CGLContextObject& o) const {
    return display == o.display && draw == o.draw && read == o.read && context == o.context;
  }
};

namespace {

// Every context that was looked up, so that it stays good without an owner.
std::vector<std::unique_ptr<CGLContextObject>>& knownContexts() {
  static auto& contexts = *new std::vector<std::unique_ptr<CGLContextObject>>;
  return contexts;
}

CGLContextObj known(const CGLContextObject& wanted) {
  for (const auto& context : knownContexts()) {
    if (context->isSameAs(wanted)) return context.get();
  }
  return knownContexts().emplace_back(std::make_unique<CGLContextObject>(wanted)).get();
}

bool isKnown(CGLContextObj wanted) {
  const auto& contexts = knownContexts();
  return std::any_of(contexts.begin(), contexts.end(), [wanted](const auto& it) { return it.get() == wanted; });
}

bool hasExtension(const char* extensions, const char* name) {
  const std::size_t length = std::strlen(name);
  for (const char* at = extensions; at && (at = std::strstr(at, name)); at += length) {
    const bool begins = at == extensions || at[-1] == ' ';
    if (begins && (at[length] == ' ' || at[length] == '\0')) return true;
  }
  return false;
}

// The display that needs no window system.
EGLDisplay surfacelessDisplay(const EGLLibrary& egl) {
  const char* const extensions = egl.queryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
  const auto getPlatformDisplay =
      reinterpret_cast<PFNEGLGETPLATFORMDISPLAYEXTPROC>(egl.getProcAddress("eglGetPlatformDisplayEXT"));
  if (!getPlatformDisplay) return EGL_NO_DISPLAY;
  if (hasExtension(extensions, "EGL_MESA_platform_surfaceless"))
    return getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
  if (hasExtension(extensions, "EGL_EXT_platform_device")) {
    const auto queryDevices = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(egl.getProcAddress("eglQueryDevicesEXT"));
    EGLDeviceEXT device;
    EGLint count = 0;
    if (queryDevices && queryDevices(1, &device, &count) && count > 0)
      return getPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
  }
  return EGL_NO_DISPLAY;
}

EGLContext createContext(const EGLLibrary& egl, EGLDisplay display) {
  const EGLint wanted[] = {EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT, EGL_SURFACE_TYPE, 0, EGL_NONE};
  EGLConfig config;
  EGLint count = 0;
  if (!egl.chooseConfig(display, wanted, &config, 1, &count) || count == 0) return EGL_NO_CONTEXT;
  return egl.createContext(display, config, EGL_NO_CONTEXT, nullptr);
}

template <class Function>
Function glFunction(const char* name) {
  const EGLLibrary* const egl = EGLLibrary::shared();
  if (!egl || egl->getCurrentContext() == EGL_NO_CONTEXT) return nullptr;
  return reinterpret_cast<Function>(egl->getProcAddress(name));
}

}  // namespace

CGLContextObj CGLGetCurrentContext() {
  const EGLLibrary* const egl = EGLLibrary::shared();
  if (!egl) return nullptr;
  CGLContextObject current;
  current.context = egl->getCurrentContext();
  if (current.context == EGL_NO_CONTEXT) return nullptr;
  current.display = egl->getCurrentDisplay();
  current.draw = egl->getCurrentSurface(EGL_DRAW);
  current.read = egl->getCurrentSurface(EGL_READ);
  return known(current);
}

CGLError CGLSetCurrentContext(CGLContextObj context) {
  const EGLLibrary* const egl = EGLLibrary::shared();
  if (!egl) return context ? kCGLBadContext : kCGLNoError;
  if (!context) {
    const EGLDisplay display = egl->getCurrentDisplay();
    if (display == EGL_NO_DISPLAY) return kCGLNoError;
    return egl->makeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT) ? kCGLNoError : kCGLBadContext;
  }
  if (!isKnown(context)) return kCGLBadContext;
  return egl->makeCurrent(context->display, context->draw, context->read, context->context) ? kCGLNoError
                                                                                            : kCGLBadContext;
}

CGLContextObj CGLCreateSurfacelessContext() {
  const EGLLibrary* const egl = EGLLibrary::shared();
  if (!egl) return nullptr;
  CGLContextObject context;
  context.isOwn = true;
  context.display = surfacelessDisplay(*egl);
  // The display is never terminated: others in the process may use the same one.
  if (context.display == EGL_NO_DISPLAY || !egl->initialize(context.display, nullptr, nullptr)) return nullptr;
  const EGLenum previousAPI = egl->queryAPI();
  if (egl->bindAPI(EGL_OPENGL_API)) context.context = createContext(*egl, context.display);
  egl->bindAPI(previousAPI);
  return context.context == EGL_NO_CONTEXT ? nullptr : known(context);
}

CGLError CGLDestroyContext(CGLContextObj context) {
  if (!isKnown(context) || !context->isOwn) return kCGLBadContext;
  if (CGLGetCurrentContext() == context) CGLSetCurrentContext(nullptr);
  EGLLibrary::shared()->destroyContext(context->display, context->context);
  std::erase_if(knownContexts(), [context](const auto& it) { return it.get() == context; });
  return kCGLNoError;
}

void CGLGetIntegerv(std::uint32_t name, std::int32_t* value) {
  const auto getIntegerv = glFunction<void (*)(std::uint32_t, std::int32_t*)>("glGetIntegerv");
  if (getIntegerv) getIntegerv(name, value);
}

const char* CGLGetString(std::uint32_t name) {
  const auto getString = glFunction<const unsigned char* (*)(std::uint32_t)>("glGetString");
  return getString ? reinterpret_cast<const char*>(getString(name)) : nullptr;
}

const char* CGLGetStringi(std::uint32_t name, std::uint32_t index) {
  const auto getStringi = glFunction<const unsigned char* (*)(std::uint32_t, std::uint32_t)>("glGetStringi");
  return getStringi ? reinterpret_cast<const char*>(getStringi(name, index)) : nullptr;
}
