// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/TarnTheme.h"

#include "Platform/TarnKit/NSGraphicsContext.h"
#include "Platform/TarnKit/NSTarnColor.h"
#include "Platform/TarnKit/TarnThemeImages.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPixmap>
#include <algorithm>
#include <cmath>
#include <vector>

namespace {

// What stands for a picture that cannot be drawn: a thin frame where it belongs.
void drawPlain(QPainter& painter, const QRectF& target) {
  QColor color = NSTarnColor::secondaryTextColor().toQColor();
  painter.setPen(Qt::NoPen);
  painter.fillRect(QRectF(target.left(), target.top(), target.width(), 1), color);
  painter.fillRect(QRectF(target.left(), target.bottom() - 1, target.width(), 1), color);
  painter.fillRect(QRectF(target.left(), target.top(), 1, target.height()), color);
  painter.fillRect(QRectF(target.right() - 1, target.top(), 1, target.height()), color);
}

template <class Render>
void draw(NSRect rect, TarnTheme* theme, double opacity, Render render) {
  const NSGraphicsContext* context = NSGraphicsContext::currentContext();
  if (!context || !theme || !(rect.size.width > 0) || !(rect.size.height > 0) || !(opacity > 0)) return;
  QSize pixels;
  const QRectF target = context->toWidgetAligned(rect, &pixels);
  const QImage image = render(*context, pixels);
  QPainter& painter = context->painter();
  painter.save();
  painter.setOpacity(painter.opacity() * std::min(opacity, 1.0));
  painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
  if (image.isNull()) {
    drawPlain(painter, target);
  } else {
    painter.drawImage(target, image);
  }
  painter.restore();
}

}  // namespace

TarnTheme* _RegisterThemeProvider(std::unique_ptr<TarnThemeProvider> provider) {
  static auto& themes = *new std::vector<std::unique_ptr<TarnTheme>>;  // for the life of the process
  if (!provider) return nullptr;
  return themes.emplace_back(std::make_unique<TarnTheme>(std::move(provider))).get();
}

void DrawNinePartElementAtIndex(NSRect rect, TarnTheme* theme, std::uint32_t atom, int index, double opacity, int) {
  draw(rect, theme, opacity, [&](const NSGraphicsContext& context, QSize pixels) {
    return theme->ninePartRendering({atom, index, NSTarnColor::isDark()}, pixels, context.devicePixelRatio());
  });
}

void DrawThemeAtomAtIndex(NSRect rect, TarnTheme* theme, std::uint32_t atom, int index, double opacity, int) {
  draw(rect, theme, opacity, [&](const NSGraphicsContext&, QSize pixels) {
    return theme->rendering({atom, index, NSTarnColor::isDark()}, pixels);
  });
}

QCursor CursorOfThemeAtomAtIndex(TarnTheme* theme, std::uint32_t atom, int index) {
  if (!theme || !qGuiApp) return {};
  const TarnThemeKey key{atom, index, NSTarnColor::isDark()};
  const TarnThemeArtwork& artwork = theme->picture(key).artwork;
  const double ratio = qGuiApp->devicePixelRatio();
  const QSize pixels(int(std::lround(artwork.size.width * ratio)), int(std::lround(artwork.size.height * ratio)));
  QPixmap pixmap = QPixmap::fromImage(theme->rendering(key, pixels));
  if (pixmap.isNull()) return {};
  pixmap.setDevicePixelRatio(ratio);
  return QCursor(pixmap, int(std::lround(artwork.hotSpot.x)), int(std::lround(artwork.hotSpot.y)));
}

TarnThemeImageSource::TarnThemeImageSource(std::uint32_t atom, TarnTheme* theme, int index, bool containsValues)
    : atom_(atom), theme_(theme), index_(index), containsValues_(containsValues) {}

NSSize TarnThemeImageSource::size() const {
  return theme_ ? theme_->picture({atom_, index_, NSTarnColor::isDark()}).artwork.size : NSSize{};
}

void TarnThemeImageSource::drawInRect(NSRect rect, double opacity) const {
  const NSSize own = size();
  const double x = rect.origin.x + std::floor((rect.size.width - own.width) / 2);
  const double y = rect.origin.y + std::floor((rect.size.height - own.height) / 2);
  DrawThemeAtomAtIndex(NSMakeRect(x, y, own.width, own.height), theme_, atom_, index_, opacity, 0);
}
