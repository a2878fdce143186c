// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/CGL/CGL.h"
#include "Platform/CGL/GLEnumerants.h"
#include "Platform/CGL/GraphicsCards.h"

#include <algorithm>
#include <limits>
#include <string_view>

struct CGLRendererInfoObject {
  std::uint64_t videoMemory = 0;  // bytes
};

namespace {

constexpr const char* kGraphicsCards = "/sys/class/drm";
constexpr std::uint32_t kMostDisplays = 32;  // one bit of a display mask each

// Asked before an extension's enumerant is used: an unknown one would leave an error in the host's context.
bool hasExtension(std::string_view wanted) {
  const char* const version = CGLGetString(gl::VERSION);
  if (!version || version[0] < '3' || version[0] > '9') return false;  // older contexts list them in another way
  std::int32_t count = 0;
  CGLGetIntegerv(gl::NUM_EXTENSIONS, &count);
  for (std::int32_t i = 0; i < count; ++i) {
    const char* const name = CGLGetStringi(gl::EXTENSIONS, static_cast<std::uint32_t>(i));
    if (name && name == wanted) return true;
  }
  return false;
}

// What the driver of the current context calls dedicated; 0 when it does not say.
std::uint64_t dedicatedMemoryOfContext() {
  if (!hasExtension("GL_NVX_gpu_memory_info")) return 0;
  std::int32_t kibibytes = 0;
  CGLGetIntegerv(gl::GPU_MEMORY_INFO_DEDICATED_VIDMEM, &kibibytes);
  return static_cast<std::uint64_t>(std::max(kibibytes, 0)) * 1024;
}

bool isSoftwareRenderer() {
  const char* const name = CGLGetString(gl::RENDERER);
  const std::string_view renderer = name ? name : "";
  return renderer.find("llvmpipe") != renderer.npos || renderer.find("softpipe") != renderer.npos ||
         renderer.find("Software") != renderer.npos;
}

std::uint64_t videoMemory() {
  if (const std::uint64_t dedicated = dedicatedMemoryOfContext()) return dedicated;
  if (!isSoftwareRenderer()) {
    if (const std::uint64_t dedicated = cgl::dedicatedMemory(kGraphicsCards)) return dedicated;
  }
  return cgl::mainMemory() / 2;
}

std::uint32_t displayCount() {
  return std::clamp(cgl::activeDisplays(kGraphicsCards), 1u, kMostDisplays);
}

}  // namespace

int CGGetActiveDisplayList(std::uint32_t maximum, CGDirectDisplayID* displays, std::uint32_t* count) {
  if (!count) return kCGLBadValue;
  *count = displayCount();
  if (displays) *count = std::min(*count, maximum);
  for (std::uint32_t i = 0; displays && i < *count; ++i) displays[i] = i + 1;
  return kCGLNoError;
}

CGDirectDisplayID CGMainDisplayID() {
  return 1;
}

CGOpenGLDisplayMask CGDisplayIDToOpenGLDisplayMask(CGDirectDisplayID display) {
  return display >= 1 && display <= kMostDisplays ? 1u << (display - 1) : 0;
}

CGLError CGLQueryRendererInfo(CGOpenGLDisplayMask mask, CGLRendererInfoObj* info, std::int32_t* count) {
  if (!info || !count || mask == 0) return kCGLBadValue;
  *info = new CGLRendererInfoObject{videoMemory()};
  *count = 1;
  return kCGLNoError;
}

CGLError CGLDescribeRenderer(CGLRendererInfoObj info, std::int32_t renderer, CGLRendererProperty property,
                             std::int32_t* value) {
  if (!info || renderer != 0) return kCGLBadRendererInfo;
  if (property != kCGLRPVideoMemory) return kCGLBadProperty;
  if (!value) return kCGLBadValue;
  constexpr std::uint64_t most = std::numeric_limits<std::int32_t>::max();
  *value = static_cast<std::int32_t>(std::min(info->videoMemory, most));
  return kCGLNoError;
}

CGLError CGLDestroyRendererInfo(CGLRendererInfoObj info) {
  delete info;
  return kCGLNoError;
}
