// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/TarnThemeImages.h"

#include "Platform/TarnKit/TarnReport.h"

#include <QFile>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace {

// A window that is resized leaves a rendering for every size that it went through.
constexpr qsizetype kMostRenderedBytes = 16 << 20;

std::string nameOf(const TarnThemeKey& key) {
  char name[64];
  std::snprintf(name, sizeof name, "atom 0x%08X, index %d", key.atom, key.index);
  return name;
}

// One axis of a nine-part picture: where its three parts begin and end, in points of the artwork and in device pixels.
struct Cuts {
  std::array<double, 4> source;
  std::array<int, 4> target;
};

Cuts cut(double size, double first, double last, int pixels, double ratio) {
  int near = first > 0 ? std::max(1, int(std::lround(first * ratio))) : 0;
  int far = last > 0 ? std::max(1, int(std::lround(last * ratio))) : 0;
  if (near + far > std::max(pixels, 0)) {
    near = pixels * near / (near + far);
    far = pixels - near;
  }
  return {{0, first, size - last, size}, {0, near, pixels - far, pixels}};
}

void renderPart(QPainter& painter, QSvgRenderer& renderer, NSSize size, const Cuts& across, const Cuts& down,
                int column, int row) {
  const QRect target(QPoint(across.target[column], down.target[row]),
                     QPoint(across.target[column + 1] - 1, down.target[row + 1] - 1));
  const double width = across.source[column + 1] - across.source[column];
  const double height = down.source[row + 1] - down.source[row];
  if (target.isEmpty() || !(width > 0) || !(height > 0)) return;
  const double scaleX = target.width() / width;
  const double scaleY = target.height() / height;
  painter.setClipRect(target);
  renderer.render(&painter, QRectF(target.x() - across.source[column] * scaleX, target.y() - down.source[row] * scaleY,
                                   size.width * scaleX, size.height * scaleY));
}

void renderNineParts(QPainter& painter, const TarnTheme::Picture& picture, QSize pixels, double ratio) {
  const TarnThemeArtwork& art = picture.artwork;
  const Cuts across = cut(art.size.width, art.slices.left, art.slices.right, pixels.width(), ratio);
  const Cuts down = cut(art.size.height, art.slices.top, art.slices.bottom, pixels.height(), ratio);
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      renderPart(painter, *picture.renderer, art.size, across, down, column, row);
    }
  }
}

}  // namespace

TarnThemeProvider::~TarnThemeProvider() = default;

TarnTheme::TarnTheme(std::unique_ptr<TarnThemeProvider> provider) : provider_(std::move(provider)) {}
TarnTheme::~TarnTheme() = default;

const TarnTheme::Picture& TarnTheme::picture(const TarnThemeKey& key) {
  auto found = pictures_.find(key);
  if (found == pictures_.end()) found = pictures_.emplace(key, load(key)).first;
  return found->second;
}

TarnTheme::Picture TarnTheme::load(const TarnThemeKey& key) const {
  const std::optional<TarnThemeArtwork> artwork = provider_->artworkForAtom(key.atom, key.index, key.dark);
  if (!artwork) {
    TarnReportOnce("The theme has no picture for " + nameOf(key) + ".");
    return {};
  }
  Picture picture{*artwork, nullptr};
  QFile file(QString::fromStdString(artwork->file));
  if (!file.open(QIODevice::ReadOnly)) {
    TarnReportOnce("Cannot read theme artwork " + artwork->file + ": " + file.errorString().toStdString());
    return picture;
  }
  auto renderer = std::make_unique<QSvgRenderer>();
  if (!renderer->load(file.readAll()) || !renderer->isValid()) {
    TarnReportOnce("Theme artwork " + artwork->file + " is no SVG picture.");
    return picture;
  }
  picture.renderer = std::move(renderer);
  return picture;
}

QImage TarnTheme::rendering(const TarnThemeKey& key, QSize pixels) {
  return cached({key, pixels.width(), pixels.height(), 0});
}

QImage TarnTheme::ninePartRendering(const TarnThemeKey& key, QSize pixels, double devicePixelRatio) {
  return cached({key, pixels.width(), pixels.height(), devicePixelRatio});
}

QImage TarnTheme::cached(const RenderingKey& key) {
  if (const auto found = renderings_.find(key); found != renderings_.end()) return found->second;
  const Picture& source = picture(key.picture);
  const QSize pixels(key.width, key.height);
  QImage image(source.renderer ? pixels : QSize(), QImage::Format_ARGB32_Premultiplied);
  if (image.isNull()) return {};
  image.fill(Qt::transparent);
  QPainter painter(&image);
  painter.setRenderHint(QPainter::Antialiasing);
  if (key.sliceRatio > 0) {
    renderNineParts(painter, source, pixels, key.sliceRatio);
  } else {
    source.renderer->render(&painter, QRectF(QPointF(), QSizeF(pixels)));
  }
  painter.end();
  if (renderedBytes_ + image.sizeInBytes() > kMostRenderedBytes) {
    renderings_.clear();
    renderedBytes_ = 0;
  }
  renderedBytes_ += image.sizeInBytes();
  renderings_.emplace(key, image);
  return image;
}
