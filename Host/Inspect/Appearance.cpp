// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/Appearance.h"

#include "Host/Inspect/InspectorStyle.h"

#include <QApplication>

namespace host {
namespace {

bool isDark(const QPalette& palette) {
  return palette.color(QPalette::Window).lightness() < 128;
}

struct Shades {
  QColor window, base, button, text, dim, highlight, highlightedText, light, mid, dark, shadow;
};

QPalette paletteOf(const Shades& shades) {
  QPalette palette;
  palette.setColor(QPalette::Window, shades.window);
  palette.setColor(QPalette::Base, shades.base);
  palette.setColor(QPalette::AlternateBase, shades.window);
  palette.setColor(QPalette::Button, shades.button);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
    palette.setColor(role, shades.text);
    palette.setColor(QPalette::Disabled, role, shades.dim);
  }
  palette.setColor(QPalette::BrightText, shades.text);
  palette.setColor(QPalette::PlaceholderText, shades.dim);
  palette.setColor(QPalette::ToolTipBase, shades.base);
  palette.setColor(QPalette::Highlight, shades.highlight);
  palette.setColor(QPalette::Disabled, QPalette::Highlight, shades.mid);
  palette.setColor(QPalette::HighlightedText, shades.highlightedText);
  palette.setColor(QPalette::Link, shades.highlight);
  palette.setColor(QPalette::Light, shades.light);
  palette.setColor(QPalette::Midlight, shades.light);
  palette.setColor(QPalette::Mid, shades.mid);
  palette.setColor(QPalette::Dark, shades.dark);
  palette.setColor(QPalette::Shadow, shades.shadow);
  return palette;
}

QPalette lightPalette() {
  return paletteOf({.window = "#ececed",
                    .base = "#ffffff",
                    .button = "#f7f7f8",
                    .text = "#1f2023",
                    .dim = "#6b6d73",
                    .highlight = "#2f72c4",
                    .highlightedText = "#ffffff",
                    .light = "#fafafa",
                    .mid = "#b9babd",
                    .dark = "#9c9da1",
                    .shadow = "#6f7074"});
}

QPalette darkPalette() {
  return paletteOf({.window = "#2a2b2e",
                    .base = "#1d1e20",
                    .button = "#3a3b3f",
                    .text = "#dddee1",
                    .dim = "#94969c",
                    .highlight = "#4b8fdf",
                    .highlightedText = "#ffffff",
                    .light = "#4a4b50",
                    .mid = "#232427",
                    .dark = "#17181a",
                    .shadow = "#0d0d0e"});
}

}  // namespace

void applyAppearance(QApplication& application, const std::string& appearance) {
  const bool dark = appearance.empty() ? isDark(application.palette()) : appearance == "dark";
  // The application takes the style over, which the analyzer does not see.
  // NOLINTBEGIN(clang-analyzer-cplusplus.NewDeleteLeaks)
  application.setStyle(new InspectorStyle);
  application.setPalette(dark ? darkPalette() : lightPalette());
  // NOLINTEND(clang-analyzer-cplusplus.NewDeleteLeaks)
}

InspectorColors inspectorColors(const QPalette& palette) {
  if (isDark(palette)) {
    return {.previewGround = "#18191a",
            .checkerLight = "#5c5d60",
            .checkerDark = "#47484b",
            .separator = "#1b1c1e",
            .dimText = "#94969c",
            .errorGround = "#5a2a2a",
            .errorText = "#ffdcdc"};
  }
  return {.previewGround = "#c6c7c9",
          .checkerLight = "#ffffff",
          .checkerDark = "#d9dadc",
          .separator = "#cfd0d3",
          .dimText = "#6b6d73",
          .errorGround = "#f8d9d9",
          .errorText = "#6d1414"};
}

}  // namespace host
