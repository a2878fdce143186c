// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstdint>

// What the graphics device can do: OpenGL contexts, displays and renderers, on EGL and what the kernel says of its
// graphics cards. EGL is loaded by the first question and not before; where it is missing or fails, there is no
// context, and the calls below say so and do no harm. To be called from one thread, the one that owns the contexts.

struct CGLContextObject;
using CGLContextObj = CGLContextObject*;
struct CGLRendererInfoObject;
using CGLRendererInfoObj = CGLRendererInfoObject*;
using CGDirectDisplayID = std::uint32_t;
using CGOpenGLDisplayMask = std::uint32_t;

// What the calls below return.
enum CGLError : int {
  kCGLNoError = 0,
  kCGLBadProperty = 10001,
  kCGLBadRendererInfo = 10003,
  kCGLBadContext = 10004,
  kCGLBadValue = 10008,
};

// What CGLDescribeRenderer() tells of a renderer.
enum CGLRendererProperty : int {
  kCGLRPVideoMemory = 120,  // bytes; 2147483647 stands for that and more
};

// The context current on this thread; null when there is none. The object stays good as long as the context does, and
// need not be given up.
TARN_EXPORT CGLContextObj CGLGetCurrentContext();
// Null makes none current.
TARN_EXPORT CGLError CGLSetCurrentContext(CGLContextObj context);
// A context that draws nowhere, for questions; null when the device offers none. Given up with CGLDestroyContext, which
// leaves contexts of others alone.
TARN_EXPORT CGLContextObj CGLCreateSurfacelessContext();
TARN_EXPORT CGLError CGLDestroyContext(CGLContextObj context);

// glGetIntegerv, glGetString and glGetStringi of the current context. Without one, *value stays and the strings are
// null.
TARN_EXPORT void CGLGetIntegerv(std::uint32_t name, std::int32_t* value);
TARN_EXPORT const char* CGLGetString(std::uint32_t name);
TARN_EXPORT const char* CGLGetStringi(std::uint32_t name, std::uint32_t index);

// The displays that show a picture, the main one first; *count is how many of them were stored. A machine that shows
// none counts as one with a single display.
TARN_EXPORT int CGGetActiveDisplayList(std::uint32_t maximum, CGDirectDisplayID* displays, std::uint32_t* count);
TARN_EXPORT CGDirectDisplayID CGMainDisplayID();
TARN_EXPORT CGOpenGLDisplayMask CGDisplayIDToOpenGLDisplayMask(CGDirectDisplayID display);

// The renderers that serve the displays of the mask: one here, that of the current context, or, when there is none, of
// the first graphics card. A renderer in software is one like the others.
TARN_EXPORT CGLError CGLQueryRendererInfo(CGOpenGLDisplayMask mask, CGLRendererInfoObj* info, std::int32_t* count);
// The video memory is what OpenGL or the kernel's driver calls dedicated. A renderer that has none of its own, in
// software or on a processor's graphics, keeps textures in main memory; half of that counts as its own.
TARN_EXPORT CGLError CGLDescribeRenderer(CGLRendererInfoObj info, std::int32_t renderer, CGLRendererProperty property,
                                         std::int32_t* value);
TARN_EXPORT CGLError CGLDestroyRendererInfo(CGLRendererInfoObj info);
