// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/TarnKit/TarnThemeProvider.h"

#include <QImage>
#include <QSize>
#include <compare>
#include <map>
#include <memory>

class QSvgRenderer;

// What of a theme is drawn: one picture in the light or the dark set.
struct TarnThemeKey {
  std::uint32_t atom = 0;
  int index = 0;
  bool dark = false;

  auto operator<=>(const TarnThemeKey&) const = default;  // NOLINT(modernize-use-nullptr)
};

// A registered provider, the artwork it named so far, and the renderings of it.
class TarnTheme {
 public:
  struct Picture {
    TarnThemeArtwork artwork;
    std::unique_ptr<QSvgRenderer> renderer;  // null when there is nothing to draw
  };

  explicit TarnTheme(std::unique_ptr<TarnThemeProvider> provider);
  ~TarnTheme();

  // Loaded on first use; faults are reported then.
  const Picture& picture(const TarnThemeKey& key);
  // The picture stretched to that many device pixels, as a whole or in nine parts. Null when there is nothing to draw.
  QImage rendering(const TarnThemeKey& key, QSize pixels);
  QImage ninePartRendering(const TarnThemeKey& key, QSize pixels, double devicePixelRatio);

 private:
  struct RenderingKey {
    TarnThemeKey picture;
    int width;
    int height;
    double sliceRatio;  // device pixels a point in the slices; 0 for the whole picture

    auto operator<=>(const RenderingKey&) const = default;  // NOLINT(modernize-use-nullptr)
  };

  Picture load(const TarnThemeKey& key) const;
  QImage cached(const RenderingKey& key);

  std::unique_ptr<TarnThemeProvider> provider_;
  std::map<TarnThemeKey, Picture> pictures_;
  std::map<RenderingKey, QImage> renderings_;
  qsizetype renderedBytes_ = 0;
};
