// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"
#include "Platform/TarnKit/TarnThemeProvider.h"
#include "Platform/Visibility.h"

#include <QCursor>
#include <cstdint>
#include <memory>

// Theme drawing.
//
// Artwork is SVG, rendered at the device's pixel ratio and kept per atom, index, size in device pixels and light or
// dark. A picture that is unknown, missing or broken is reported once by its name on standard error; something plain is
// drawn instead.

class TarnTheme;  // one registered provider and its rendered pictures

// Makes a theme of a provider. The theme lives as long as the process; null for a null provider.
TARN_EXPORT TarnTheme* _RegisterThemeProvider(std::unique_ptr<TarnThemeProvider> provider);

// Draws into a rectangle of the view that is being drawn; outside drawRect, with a null theme or an empty rectangle
// nothing happens. Opacity is 0 to 1. No flags are defined: pass 0. Pictures stand upright in flipped views too.
TARN_EXPORT void DrawNinePartElementAtIndex(NSRect rect, TarnTheme* theme, std::uint32_t atom, int index,
                                            double opacity, int flag);
TARN_EXPORT void DrawThemeAtomAtIndex(NSRect rect, TarnTheme* theme, std::uint32_t atom, int index, double opacity,
                                      int flag);
// The arrow when the theme has no such cursor.
TARN_EXPORT QCursor CursorOfThemeAtomAtIndex(TarnTheme* theme, std::uint32_t atom, int index);

// One picture of a theme, as a button's image. A value.
class TARN_EXPORT TarnThemeImageSource {
 public:
  // containsValues states that the pictures of the atom show values of a control; it is kept for the interface's sake.
  TarnThemeImageSource(std::uint32_t atom, TarnTheme* theme, int index, bool containsValues);

  // What it was made with.
  std::uint32_t atom() const { return atom_; }
  int index() const { return index_; }
  bool containsValues() const { return containsValues_; }
  NSSize size() const;  // in points; 0 x 0 when there is no such picture
  // Centred in the rectangle at its own size.
  void drawInRect(NSRect rect, double opacity) const;

 private:
  std::uint32_t atom_;
  TarnTheme* theme_;
  int index_;
  bool containsValues_;
};
