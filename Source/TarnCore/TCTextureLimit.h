// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string_view>

// The rule behind VRTMaxTextureDimension, apart from the questions to the graphics device.
struct TCTextureLimit {
  int cachedMaximum = -1;          // pixels; -1 until the device was queried
  std::uint32_t displays = 1;      // 0 counts as 1
  bool isLimitedRenderer = false;  // takes no more than 2048, whatever it says

  bool wasAsked() const { return cachedMaximum != -1; }
  void setDevice(int hardwareMaximum, std::uint32_t displayCount, std::string_view rendererName);

  // The limit for a channel depth, given the renderer's video memory in bytes now. What the memory takes off the cached
  // maximum stays off for later calls.
  int limit(std::int64_t videoMemory, int bitsPerChannel);
};
