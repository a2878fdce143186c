// SPDX-License-Identifier: BSD-3-Clause
#include "TarnCore/TCTextureLimit.h"

#include "Platform/CGL/CGL.h"
#include "Platform/CGL/GLEnumerants.h"
#include "TarnCore/TCPixelFormat.h"

#include <algorithm>
#include <limits>

namespace {

constexpr std::int64_t kMebibyte = 1048576;
constexpr std::string_view kLimitedRendererName = "ATI Radeon X1600";
constexpr std::size_t kComparedNameLength = 16;
constexpr int kUnknownHardwareMaximum = 2048;  // pixels; what every device of the last decades takes
constexpr std::uint32_t kMostDisplays = 4;

int memoryLimit(std::int64_t mebibytesPerDisplay) {
  if (mebibytesPerDisplay < 33) return 1920;
  if (mebibytesPerDisplay > 64) return 2048;
  return 1920;
}

int depthLimit(std::int64_t mebibytesPerDisplay, int bitsPerChannel) {
  if (bitsPerChannel != 16 && bitsPerChannel != 32) return std::numeric_limits<int>::max();
  const bool isFloat = bitsPerChannel == 32;
  if (mebibytesPerDisplay < 33) return isFloat ? 707 : 1024;
  if (mebibytesPerDisplay <= 64) return isFloat ? 1024 : 1414;
  if (mebibytesPerDisplay <= 128) return isFloat ? 1414 : 2048;
  return isFloat ? 2048 : 2828;
}

// The renderer of the main display. Its memory is queried again and again and is never given up.
CGLRendererInfoObj mainRenderer = nullptr;

void askDevice(CGLContextObj context, TCTextureLimit& limit) {
  const CGLContextObj previous = CGLGetCurrentContext();
  CGLContextObj own = nullptr;
  if (!context && !previous) own = CGLCreateSurfacelessContext();
  if (own) context = own;

  std::int32_t maximum = 0;
  const char* name = nullptr;
  if (context) CGLSetCurrentContext(context);
  CGLGetIntegerv(gl::MAX_TEXTURE_SIZE, &maximum);
  name = CGLGetString(gl::RENDERER);

  CGDirectDisplayID displays[kMostDisplays];
  std::uint32_t displayCount = 0;
  CGGetActiveDisplayList(kMostDisplays, displays, &displayCount);
  std::int32_t rendererCount = 0;
  CGLQueryRendererInfo(CGDisplayIDToOpenGLDisplayMask(CGMainDisplayID()), &mainRenderer, &rendererCount);
  limit.setDevice(maximum > 0 ? maximum : kUnknownHardwareMaximum, displayCount, name ? name : "");

  if (context) CGLSetCurrentContext(previous);
  if (own) CGLDestroyContext(own);
}

}  // namespace

void TCTextureLimit::setDevice(int hardwareMaximum, std::uint32_t displayCount, std::string_view rendererName) {
  cachedMaximum = hardwareMaximum;
  displays = displayCount;
  isLimitedRenderer = rendererName.substr(0, kComparedNameLength).find(kLimitedRendererName) != std::string_view::npos;
}

int TCTextureLimit::limit(std::int64_t videoMemory, int bitsPerChannel) {
  const std::int64_t perDisplay = videoMemory / kMebibyte / std::max<std::int64_t>(displays, 1);
  if (cachedMaximum >= 2049 && perDisplay < 128) cachedMaximum = perDisplay < 33 ? 1920 : 2048;
  if (isLimitedRenderer) cachedMaximum = std::min(cachedMaximum, 2048);
  cachedMaximum = std::min(cachedMaximum, memoryLimit(perDisplay));
  return std::min(cachedMaximum, depthLimit(perDisplay, bitsPerChannel));
}

int VRTMaxTextureDimension(CGLContextObj context, int bitsPerChannel) {
  static TCTextureLimit limit;
  if (!limit.wasAsked()) askDevice(context, limit);
  std::int32_t videoMemory = 0;
  CGLDescribeRenderer(mainRenderer, 0, kCGLRPVideoMemory, &videoMemory);
  return limit.limit(videoMemory, bitsPerChannel);
}
