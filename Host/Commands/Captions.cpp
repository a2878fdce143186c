// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Commands/Captions.h"

#include "Host/Files/ImageFileLoader.h"
#include "Host/Messages/Utf8.h"
#include "TarnCore/TCBitmap.h"

#include <cstdio>
#include <filesystem>

namespace host {
namespace {

constexpr const char* kFontFiles[] = {"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf",
                                      "/usr/share/fonts/dejavu-sans-fonts/DejaVuSans.ttf",
                                      "/usr/share/fonts/TTF/DejaVuSans.ttf"};

std::string findFont() {
  for (const char* file : kFontFiles) {
    std::error_code error;
    if (std::filesystem::exists(file, error)) return file;
  }
  std::fputs("vorto: warning: the font DejaVu Sans is not installed; the sheet has no captions\n", stderr);
  return "";
}

const TextStyle& captionStyle() {
  static const TextStyle style{findFont(), 19, 0.82f};
  return style;
}

bool fits(const std::string& text) {
  return drawingModule().textWidth(text, captionStyle()) <= static_cast<int>(SheetLayout::PictureWidth);
}

void removeLastCharacter(std::string& text) {
  while (!text.empty() && (static_cast<unsigned char>(text.back()) & 0xC0) == 0x80) text.pop_back();
  if (!text.empty()) text.pop_back();
}

std::string shortened(std::string text) {
  if (fits(text)) return text;
  while (!text.empty() && !fits(text + "…")) removeLastCharacter(text);
  return text + "…";
}

constexpr std::size_t kLongestCaption = 400;  // bytes; more is never visible

}  // namespace

void drawCaption(const std::string& text, const SheetLayout::Cell& cell, VortoBitmap& sheet) {
  if (captionStyle().fontFile.empty() || text.empty()) return;
  const std::string caption = shortened(printable(text.substr(0, kLongestCaption)));
  std::string reason;
  const DrawingSurface surface{sheet.data, sheet.width, sheet.height};
  if (!drawingModule().drawText(surface, static_cast<int>(cell.captionX), static_cast<int>(cell.captionBaseline),
                                caption, captionStyle(), &reason)) {
    std::fprintf(stderr, "vorto: warning: a caption could not be drawn: %s\n", reason.c_str());
  }
}

}  // namespace host
