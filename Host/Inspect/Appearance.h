// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QColor>
#include <QPalette>
#include <string>

class QApplication;

namespace host {

// The look of the inspector: the style, a light and a dark palette, and the colors that no palette has.
//
// `appearance` is "light", "dark", or empty for the lightness of the desktop's own palette.
void applyAppearance(QApplication& application, const std::string& appearance);

struct InspectorColors {
  QColor previewGround;
  QColor checkerLight, checkerDark;
  QColor separator;
  QColor dimText;
  QColor errorGround, errorText;
};
InspectorColors inspectorColors(const QPalette& palette);

}  // namespace host
