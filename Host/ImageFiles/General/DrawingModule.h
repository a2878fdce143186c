// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <cstdint>
#include <string>

namespace host {

struct TextStyle {
  std::string fontFile;
  int pixelSize = 0;
  float gray = 1;  // 0 to 1
};

// RGBA at 8 bits, rows from the top without padding.
struct DrawingSurface {
  std::uint8_t* pixels = nullptr;
  std::uint32_t width = 0;
  std::uint32_t height = 0;
};

// Text in pictures, by the general module. As there nothing throws.
class DrawingModule {
 public:
  virtual ~DrawingModule() = default;
  // One line of UTF-8 text, centred on `x`, its base line at `baseline`.
  virtual bool drawText(const DrawingSurface& surface, int x, int baseline, const std::string& text,
                        const TextStyle& style, std::string* reason) = 0;
  // How wide drawText() would draw, in pixels; negative when the font cannot be used.
  virtual int textWidth(const std::string& text, const TextStyle& style) = 0;
};

inline constexpr const char* kDrawingModuleEntry = "VortoDrawingModule";
using DrawingModuleFunction = DrawingModule* (*)();

}  // namespace host
