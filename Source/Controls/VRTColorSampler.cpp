// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTColorSampler.h"

#include "Controls/VRTPickedColor.h"
#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"
#include "Platform/TarnKit/NSGraphicsContext.h"
#include "Platform/TarnKit/NSTarnColor.h"
#include "Platform/TarnKit/TarnTheme.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QScreen>
#include <QWidget>
#include <cmath>
#include <utility>

namespace {

constexpr int kAcross = 11;  // pixels in the glass
constexpr int kCell = 10;    // points that each of them gets
constexpr int kTextHeight = 20;
constexpr int kDistance = 18;  // from the pointer

constexpr int kGrid = 4;  // points that are whole device pixels at every quarter of a ratio

// What shows a part of the screen: the screen itself, where the window system lets programs see it, or one of this
// program's windows, painted once more.
struct Seen {
  QImage image;
  QPoint corner;  // of the image, in points of the screen
  double ratio = 1;
};

QRect onGrid(const QRect& rect) {
  const auto down = [](int value) { return int(std::floor(double(value) / kGrid)) * kGrid; };
  const QPoint corner(down(rect.left()), down(rect.top()));
  return {corner, QPoint(down(rect.right()) + kGrid - 1, down(rect.bottom()) + kGrid - 1)};
}

Seen seenOf(QScreen& screen, const QRect& points) {
  const QPoint origin = screen.geometry().topLeft();
  const QRect part = onGrid(points.translated(-origin)) & QRect(QPoint(), screen.geometry().size());
  const QPixmap pixels = screen.grabWindow(0, part.x(), part.y(), part.width(), part.height());
  return {pixels.toImage(), part.topLeft() + origin, screen.devicePixelRatio()};
}

Seen seenOf(QWidget& window, const QRect& points) {
  const QPoint origin = window.mapToGlobal(QPoint());
  const QRect part = onGrid(points.translated(-origin)) & window.rect();
  return {window.grab(part).toImage(), part.topLeft() + origin, window.devicePixelRatioF()};
}

Seen seenAround(QPoint point, const QRect& points) {
  QScreen* screen = QGuiApplication::screenAt(point);
  if (screen && QGuiApplication::platformName() == QLatin1String("xcb")) return seenOf(*screen, points);
  QWidget* window = QApplication::topLevelAt(point);
  return window ? seenOf(*window, points) : Seen{};
}

}  // namespace

QImage VRTPixelsOfScreen(QPointF globalPosition, int across) {
  const QPoint point(int(std::floor(globalPosition.x())), int(std::floor(globalPosition.y())));
  const int reach = across / 2 + 1;
  const Seen seen = seenAround(point, QRect(point - QPoint(reach, reach), point + QPoint(reach, reach)));
  if (seen.image.isNull()) return {};
  const QPointF middle = (globalPosition - seen.corner) * seen.ratio;
  const QPoint corner(int(std::floor(middle.x())) - across / 2, int(std::floor(middle.y())) - across / 2);
  QImage plain = seen.image.convertToFormat(QImage::Format_RGB32);
  plain.setDevicePixelRatio(1);
  return plain.copy(QRect(corner, QSize(across, across)));
}

// The pixels magnified, the one in the middle framed, its color below in hexadecimal.
class VRTColorSampler::Glass : public QWidget {
 public:
  explicit Glass(QWidget& owner)
      : QWidget(&owner, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowTransparentForInput) {
    setAttribute(Qt::WA_ShowWithoutActivating);
    setPalette(owner.palette());
    setFixedSize(kAcross * kCell + 2, kAcross * kCell + kTextHeight + 2);
  }

  std::optional<NSColor> color() const {
    if (pixels_.isNull()) return std::nullopt;
    const QRgb pixel = pixels_.pixel(kAcross / 2, kAcross / 2);
    return NSColor::colorWithCalibratedRed(qRed(pixel) / 255.0, qGreen(pixel) / 255.0, qBlue(pixel) / 255.0, 1);
  }

  // Stands beside the pointer, on the side that has room: it must not see itself.
  void follow(QPointF globalPosition) {
    pixels_ = VRTPixelsOfScreen(globalPosition, kAcross);
    const QPoint pointer = globalPosition.toPoint();
    QPoint corner = pointer + QPoint(kDistance, kDistance);
    if (const QScreen* screen = QGuiApplication::screenAt(pointer)) {
      const QRect room = screen->geometry();
      if (corner.x() + width() > room.right()) corner.setX(pointer.x() - kDistance - width());
      if (corner.y() + height() > room.bottom()) corner.setY(pointer.y() - kDistance - height());
    }
    move(corner);
    setVisible(!pixels_.isNull());
    update();
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const NSGraphicsContext context(painter, *this, true);
    painter.fillRect(rect(), NSTarnColor::controlOutlineColor().toQColor());
    const QRect picture(1, 1, kAcross * kCell, kAcross * kCell);
    painter.drawImage(picture, pixels_);
    const int middle = kAcross / 2 * kCell + 1;
    painter.setPen(Qt::black);
    painter.drawRect(middle - 1, middle - 1, kCell + 1, kCell + 1);
    painter.setPen(Qt::white);
    painter.drawRect(middle - 2, middle - 2, kCell + 3, kCell + 3);
    const QRect text(1, picture.bottom() + 1, picture.width(), kTextHeight);
    painter.fillRect(text, NSTarnColor::inspectorBackgroundColor().toQColor());
    painter.setPen(NSTarnColor::textColor().toQColor());
    if (const auto seen = color()) painter.drawText(text, Qt::AlignCenter, VRTHexOfColor(*seen));
  }

 private:
  QImage pixels_;
};

VRTColorSampler::VRTColorSampler(QWidget& owner, Done done) : glass_(new Glass(owner)), done_(std::move(done)) {
  QApplication::setOverrideCursor(CursorOfThemeAtomAtIndex(VRTTheme::theme(), VRTThemeAtomCursor, 0));
  qApp->installEventFilter(this);
}

VRTColorSampler::~VRTColorSampler() {
  finish(std::nullopt);
  delete glass_;
}

void VRTColorSampler::look(QPointF globalPosition) {
  if (glass_) glass_->follow(globalPosition);
}

// Mouse and keys are everybody's again before anybody is told.
void VRTColorSampler::finish(const std::optional<NSColor>& color) {
  const Done done = std::exchange(done_, nullptr);
  if (!done) return;
  qApp->removeEventFilter(this);
  QApplication::restoreOverrideCursor();
  if (glass_) glass_->hide();
  done(color);
}

// Mouse and keys are taken wherever they go first, to windows or to widgets.
bool VRTColorSampler::eventFilter(QObject*, QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseMove:
      look(static_cast<QMouseEvent*>(event)->globalPosition());
      return true;
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick: {
      const auto* press = static_cast<QMouseEvent*>(event);
      look(press->globalPosition());
      finish(press->button() == Qt::LeftButton && glass_ ? glass_->color() : std::nullopt);
      return true;
    }
    case QEvent::KeyPress:
      if (static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape) finish(std::nullopt);
      return true;
    case QEvent::MouseButtonRelease:
    case QEvent::KeyRelease:
    case QEvent::ShortcutOverride:
    case QEvent::Wheel:
      return true;
    default:
      return false;
  }
}
