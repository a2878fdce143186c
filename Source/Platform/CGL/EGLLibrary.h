// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#define EGL_NO_PLATFORM_SPECIFIC_TYPES  // no window system's headers

#include <EGL/egl.h>
#include <EGL/eglext.h>

// EGL's entry points, looked up when they are first needed.
struct EGLLibrary {
  decltype(&eglGetCurrentContext) getCurrentContext = nullptr;
  decltype(&eglGetCurrentDisplay) getCurrentDisplay = nullptr;
  decltype(&eglGetCurrentSurface) getCurrentSurface = nullptr;
  decltype(&eglMakeCurrent) makeCurrent = nullptr;
  decltype(&eglGetProcAddress) getProcAddress = nullptr;
  decltype(&eglQueryString) queryString = nullptr;
  decltype(&eglInitialize) initialize = nullptr;
  decltype(&eglBindAPI) bindAPI = nullptr;
  decltype(&eglQueryAPI) queryAPI = nullptr;
  decltype(&eglChooseConfig) chooseConfig = nullptr;
  decltype(&eglCreateContext) createContext = nullptr;
  decltype(&eglDestroyContext) destroyContext = nullptr;

  static const EGLLibrary* shared();  // null when the machine has none
};
