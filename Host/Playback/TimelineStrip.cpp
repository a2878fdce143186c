// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/TimelineStrip.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/WindowText.h"
#include "Host/Playback/Player.h"

#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr int kHeight = 44;
constexpr double kLabelGap = 28;   // points between labels of the ruler, at least
constexpr double kLineHeight = 3;  // of what is in memory
constexpr double kHeadHalf = 5;    // of the playhead
constexpr double kHeadRises = 5;   // above the track
constexpr double kFineFrames = 1;  // frames for a point of a fine drag
constexpr double kLeastCell = 4;   // points of a cell that is shown

QColor mixed(const QColor& a, const QColor& b, float part) {
  return QColor::fromRgbF(a.redF() + (b.redF() - a.redF()) * part, a.greenF() + (b.greenF() - a.greenF()) * part,
                          a.blueF() + (b.blueF() - a.blueF()) * part);
}

struct StripColors {
  QColor outside, inside, edge, mark, text, rendered, decoded, playhead, point;
};

StripColors colorsOf(const QPalette& palette) {
  const QColor ground = palette.color(QPalette::Window);
  const QColor ink = palette.color(QPalette::WindowText);
  const bool isDark = ground.lightness() < 128;
  const QColor green = isDark ? QColor("#58b078") : QColor("#2f8f57");
  return {.outside = mixed(ground, ink, isDark ? 0.04f : 0.06f),
          .inside = mixed(ground, ink, isDark ? 0.14f : 0.15f),
          .edge = inspectorColors(palette).separator,
          .mark = mixed(ground, ink, 0.35f),
          .text = palette.color(QPalette::PlaceholderText),
          .rendered = green,
          .decoded = mixed(mixed(ground, ink, 0.15f), green, 0.45f),
          .playhead = palette.color(QPalette::Highlight),
          .point = mixed(ground, ink, 0.72f)};
}

}  // namespace

TimelineStrip::TimelineStrip(Player& player, QWidget* parent) : QAbstractSlider(parent), player_(player) {
  setOrientation(Qt::Horizontal);
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  setMouseTracking(true);
  setAttribute(Qt::WA_OpaquePaintEvent);
  setAccessibleName(windowText("Time"));
  QObject::connect(this, &QAbstractSlider::valueChanged, this, [this](int value) {
    if (!isFollowing_) player_.goTo(static_cast<std::uint64_t>(value));
  });
  player_.listen(*this, {.positionChanged = [this] { updatePlayhead(); },
                         .stateChanged = [this] { follow(); },
                         .cacheChanged =
                             [this] {
                               rendered_ = player_.cache().spans();
                               decoded_ = player_.source().decoded();
                               update();
                             }});
  follow();
}

QSize TimelineStrip::sizeHint() const {
  return {480, kHeight};
}

QSize TimelineStrip::minimumSizeHint() const {
  return {120, kHeight};
}

void TimelineStrip::setUnit(PositionUnit unit) {
  unit_ = unit;
  updateTicks();
  setAccessibleDescription(positionText(player_.times(), player_.position(), unit_));
}

void TimelineStrip::follow() {
  isFollowing_ = true;
  const std::uint64_t before = count_;
  count_ = player_.times().count();
  setRange(0, static_cast<int>(std::min<std::uint64_t>(player_.times().last(), 1u << 30)));
  setSingleStep(static_cast<int>(player_.times().stride()));
  setPageStep(10 * singleStep());
  isFollowing_ = false;
  if (before != count_) updateTicks();
  updatePlayhead();
  update();
}

void TimelineStrip::updatePlayhead() {
  isFollowing_ = true;
  setValue(static_cast<int>(player_.position()));
  isFollowing_ = false;
  setAccessibleDescription(positionText(player_.times(), player_.position(), unit_));
  if (painted_ == player_.position()) return;
  for (const std::uint64_t frame : {painted_, player_.position()}) {
    update(playheadRect(frame).united(cellRect(frame)).toAlignedRect().adjusted(-1, 0, 1, 0));
  }
  painted_ = player_.position();
}

void TimelineStrip::updateTicks() {
  const double apart =
      fontMetrics().horizontalAdvance(positionText(player_.times(), player_.times().last(), unit_)) + kLabelGap;
  ticks_ = timelineTicks(player_.times(), unit_, geometryNow().track().width(), apart);
  update();
}

void TimelineStrip::resizeEvent(QResizeEvent*) {
  updateTicks();
}

void TimelineStrip::changeEvent(QEvent* event) {
  if (event->type() == QEvent::FontChange) updateTicks();
  QAbstractSlider::changeEvent(event);
  update();
}

QRectF TimelineStrip::playheadRect(std::uint64_t frame) const {
  const TimelineGeometry geometry = geometryNow();
  const double top = geometry.rulerBottom() - kHeadRises;
  return {geometry.center(frame) - kHeadHalf, top, 2 * kHeadHalf, geometry.track().bottom() + 2 - top};
}

QRectF TimelineStrip::cellRect(std::uint64_t frame) const {
  const TimelineGeometry geometry = geometryNow();
  return {geometry.left(frame), geometry.track().top(), geometry.cellWidth(), geometry.track().height()};
}

void TimelineStrip::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  painter.fillRect(event->rect(), palette().color(QPalette::Window));
  const TimelineGeometry geometry = geometryNow();
  paintTrack(painter, geometry);
  paintRuler(painter, geometry, event->rect());
  paintPlayhead(painter, geometry);
}

void TimelineStrip::paintTrack(QPainter& painter, const TimelineGeometry& geometry) {
  const StripColors colors = colorsOf(palette());
  const QRectF& track = geometry.track();
  const double in = geometry.left(player_.inPoint());
  const double out = geometry.left(player_.outPoint() + 1);
  painter.fillRect(track, colors.outside);
  painter.fillRect(QRectF(in, track.top(), out - in, track.height()), colors.inside);
  paintSpans(painter, geometry, decoded_, colors.decoded, kLineHeight);
  paintSpans(painter, geometry, rendered_, colors.rendered, kLineHeight);

  painter.setRenderHint(QPainter::Antialiasing);
  const auto part = held_ ? held_ : hovered_;
  const auto drawPoint = [&](double x, double toward, bool isHot) {
    const QColor color = isHot ? colors.playhead : colors.point;
    painter.fillRect(QRectF(toward > 0 ? x : x - 2, track.top(), 2, track.height()), color);
    for (const double y : {track.top(), track.bottom() - 2}) {
      painter.fillRect(QRectF(toward > 0 ? x : x - 5, y, 5, 2), color);
    }
  };
  drawPoint(in, 1, part == TimelineGeometry::Part::In);
  drawPoint(out, -1, part == TimelineGeometry::Part::Out);
  painter.setRenderHint(QPainter::Antialiasing, false);
}

// Spans that fall on the same device pixels are painted once.
void TimelineStrip::paintSpans(QPainter& painter, const TimelineGeometry& geometry, const std::vector<FrameSpan>& spans,
                               const QColor& color, double height) {
  const double pixel = 1 / devicePixelRatioF();
  const double y = geometry.track().bottom() - height;
  double painted = 0;
  for (const FrameSpan& span : spans) {
    if (span.first >= count_) break;
    const double left = std::max(geometry.left(span.first), painted);
    const double right = std::max(geometry.left(std::min(span.last, count_ - 1) + 1), left + pixel);
    if (right <= painted + pixel / 2) continue;
    painter.fillRect(QRectF(left, y, right - left, height), color);
    painted = right;
  }
}

void TimelineStrip::paintRuler(QPainter& painter, const TimelineGeometry& geometry, const QRect& exposed) {
  const StripColors colors = colorsOf(palette());
  const double bottom = geometry.rulerBottom();
  const double pixel = 1 / devicePixelRatioF();
  QFont small = font();
  small.setPointSizeF(small.pointSizeF() * 0.86);
  painter.setFont(small);
  const QFontMetricsF metrics(small, this);
  for (const TimelineTick& tick : ticks_) {
    const double x = geometry.track().left() + (tick.frame + 0.5) * geometry.cellWidth();
    const double width = tick.label.isEmpty() ? 0 : metrics.horizontalAdvance(tick.label);
    if (x + width < exposed.left() - 8 || x - width > exposed.right() + 8) continue;
    const double length = tick.label.isEmpty() ? 3 : 5;
    const double snapped = std::floor(x / pixel) * pixel;
    painter.fillRect(QRectF(snapped, bottom - length, pixel * std::round(devicePixelRatioF()), length), colors.mark);
    if (tick.label.isEmpty()) continue;
    painter.setPen(colors.text);
    const double left = std::clamp(x - width / 2, 4.0, std::max(4.0, this->width() - width - 4));
    painter.drawText(QPointF(left, bottom - 6 - metrics.descent() / 2), tick.label);
  }
}

void TimelineStrip::paintPlayhead(QPainter& painter, const TimelineGeometry& geometry) {
  const StripColors colors = colorsOf(palette());
  const std::uint64_t frame = player_.position();
  if (geometry.cellWidth() >= kLeastCell) {
    QColor tint = colors.playhead;
    tint.setAlpha(70);
    painter.fillRect(cellRect(frame), tint);
  }
  const QRectF rect = playheadRect(frame);
  const double x = rect.center().x();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.fillRect(QRectF(x - 0.75, rect.top() + 2, 1.5, rect.height() - 2), colors.playhead);
  QPainterPath head(QPointF(rect.left(), rect.top()));
  head.lineTo(rect.right(), rect.top());
  head.lineTo(rect.right(), rect.top() + 5);
  head.lineTo(x, rect.top() + 10);
  head.lineTo(rect.left(), rect.top() + 5);
  head.closeSubpath();
  painter.fillPath(head, colors.playhead);
  if (hasFocus()) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(palette().color(QPalette::Window), 1));
    painter.drawLine(QPointF(x, rect.top() + 2), QPointF(x, rect.top() + 6));
  }
  painter.setRenderHint(QPainter::Antialiasing, false);
}

void TimelineStrip::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) return event->ignore();
  held_ = geometryNow().partAt(event->position(), player_.inPoint(), player_.outPoint());
  lastX_ = event->position().x();
  fineFrame_ = static_cast<double>(player_.position());
  if (held_ == TimelineGeometry::Part::Playhead) {
    player_.beginScrubbing();
    moveTo(event->position(), event->modifiers());
  }
  update();
}

void TimelineStrip::mouseMoveEvent(QMouseEvent* event) {
  if (held_) return moveTo(event->position(), event->modifiers());
  const auto part = geometryNow().partAt(event->position(), player_.inPoint(), player_.outPoint());
  if (std::exchange(hovered_, part) == part) return;
  setCursor(part == TimelineGeometry::Part::Playhead ? Qt::ArrowCursor : Qt::SplitHCursor);
  update();
}

// With Shift a point is a frame, wherever the pointer is.
void TimelineStrip::moveTo(const QPointF& at, Qt::KeyboardModifiers modifiers) {
  const TimelineGeometry geometry = geometryNow();
  std::uint64_t frame = geometry.frameAt(at.x());
  if (held_ == TimelineGeometry::Part::Playhead && modifiers.testFlag(Qt::ShiftModifier)) {
    fineFrame_ = std::clamp(fineFrame_ + (at.x() - lastX_) * kFineFrames, 0.0, static_cast<double>(count_ - 1));
    frame = static_cast<std::uint64_t>(std::lround(fineFrame_));
  } else {
    fineFrame_ = static_cast<double>(frame);
  }
  lastX_ = at.x();
  if (held_ == TimelineGeometry::Part::In) {
    player_.setInPoint(std::min(frame, player_.outPoint()));
  } else if (held_ == TimelineGeometry::Part::Out) {
    player_.setOutPoint(std::max(frame, player_.inPoint()));
  } else {
    player_.goTo(frame);
  }
}

void TimelineStrip::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !held_) return;
  if (std::exchange(held_, std::nullopt) == TimelineGeometry::Part::Playhead) {
    player_.endScrubbing();
  }
  update();
}

void TimelineStrip::leaveEvent(QEvent*) {
  hovered_.reset();
  update();
}

void TimelineStrip::keyPressEvent(QKeyEvent* event) {
  const bool isFar = event->modifiers().testFlag(Qt::ShiftModifier);
  switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
      return player_.step(event->key() == Qt::Key_Left ? (isFar ? -10 : -1) : (isFar ? 10 : 1));
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
      return player_.step(event->key() == Qt::Key_PageUp ? -10 : 10);
    case Qt::Key_Home:
      return player_.goTo(0);
    case Qt::Key_End:
      return player_.goTo(player_.times().last());
    default:
      event->ignore();
  }
}

void TimelineStrip::wheelEvent(QWheelEvent* event) {
  const QPoint turned = event->angleDelta();
  const int way = std::abs(turned.x()) > std::abs(turned.y()) ? turned.x() : turned.y();
  constexpr int notch = 120;
  turned_ += way;
  if (const int steps = turned_ / notch) {
    turned_ -= steps * notch;
    player_.step(-steps);
  }
  event->accept();
}

}  // namespace host
