// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/Viewer.h"

#include "Host/Inspect/Appearance.h"
#include "Host/Inspect/WindowText.h"
#include "Host/Viewer/NoticeCard.h"
#include "Host/Viewer/ViewerActions.h"

#include <QCoreApplication>
#include <QResizeEvent>
#include <algorithm>
#include <cmath>
#include <utility>

namespace host {
namespace {

constexpr int kMargin = 16;  // points around a picture that fits
constexpr int kCell = 8;     // points of the checkerboard
constexpr QRgb kGray = qRgb(119, 119, 119);

// But for which of the pictures are wanted.
bool isSameView(const DisplayOrder& a, const DisplayOrder& b) {
  return a.picture == b.picture && a.place == b.place && a.ground == b.ground && a.channels == b.channels &&
         a.colors == b.colors;
}

DisplayGround plainGround(QRgb color) {
  return {color, color, 1};
}

}  // namespace

Viewer::Viewer(QWidget* parent)
    : QWidget(parent), thread_([this] {
        QMetaObject::invokeMethod(
            this, [this] { takeFrame(); }, Qt::QueuedConnection);
      }) {
  setAccessibleName(windowText("Preview"));
  setAttribute(Qt::WA_OpaquePaintEvent);
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  notice_ = new NoticeCard(this);
  actions_ = new ViewerActions(*this);
}

Viewer::~Viewer() {
  setPeeking(false);
}

void Viewer::setPicture(PreviewPictureRef picture) {
  picture_ = std::move(picture);
  if (!picture_) {
    frame_.reset();
    whole_.reset();
  }
  order();
  pointAt(pointer_);
  update();
  changed_.tell();
}

void Viewer::setSettings(const ViewSettings& settings) {
  if (settings == settings_) return;
  settings_ = settings;
  actions_->update();
  order();
  pointAt(pointer_);
  update();
  changed_.tell();
}

QPoint Viewer::deviceOrigin() const {
  return (QPointF(mapTo(window(), QPoint())) * devicePixelRatioF()).toPoint();
}

QPointF Viewer::deviceOf(QPointF point) const {
  return QPointF(mapTo(window(), QPoint()) + point) * devicePixelRatioF() - deviceOrigin();
}

ViewArea Viewer::area() const {
  const double ratio = devicePixelRatioF();
  const QSize size =
      picture_ ? QSize(static_cast<int>(picture_->size.width), static_cast<int>(picture_->size.height)) : QSize();
  return {size, QSize(static_cast<int>(width() * ratio), static_cast<int>(height() * ratio)),
          static_cast<int>(kMargin * ratio)};
}

QRect Viewer::place() const {
  return placeOf(settings_, area());
}

double Viewer::zoom() const {
  return zoomOf(settings_, area());
}

void Viewer::zoomAt(double factor, QPointF point) {
  setSettings(zoomedAt(settings_, area(), factor, deviceOf(point)));
}

void Viewer::zoomTo(double factor) {
  zoomAt(factor, QRectF(rect()).center());
}

void Viewer::stepZoom(bool isIn) {
  if (picture_) zoomTo(steppedZoom(zoom(), isIn));
}

void Viewer::pan(double right, double down) {
  const ViewArea view = area();
  setSettings(panned(settings_, view, {-right * view.area.width(), -down * view.area.height()}));
}

void Viewer::setPeeking(bool peeks) {
  if (peeks == isPeeking_) return;
  isPeeking_ = peeks;
  // The key may be let go anywhere.
  if (peeks) {
    QCoreApplication::instance()->installEventFilter(this);
  } else {
    QCoreApplication::instance()->removeEventFilter(this);
  }
  order();
  update();
}

CompareMode Viewer::shownCompare() const {
  if (!picture_ || !picture_->before) return CompareMode::Result;
  if (!picture_->result) return CompareMode::Before;
  return isPeeking_ ? CompareMode::Before : settings_.compare;
}

DisplayGround Viewer::ground() const {
  const InspectorColors colors = inspectorColors(palette());
  switch (settings_.ground) {
    case Ground::Checkerboard:
      break;
    case Ground::Black:
      return plainGround(qRgb(0, 0, 0));
    case Ground::Gray:
      return plainGround(kGray);
    case Ground::White:
      return plainGround(qRgb(255, 255, 255));
    case Ground::Color:
      return plainGround(0xFF000000u | settings_.groundColor);
  }
  return {colors.checkerLight.rgb(), colors.checkerDark.rgb(),
          std::max(1, static_cast<int>(std::lround(kCell * devicePixelRatioF())))};
}

void Viewer::order() {
  if (!picture_) {
    ordered_ = {};
    return;
  }
  const ViewArea view = area();
  const QRect place = placeOf(settings_, view);
  const CompareMode compare = shownCompare();
  DisplayOrder next;
  next.picture = picture_;
  next.place = {place, place & QRect(QPoint(), view.area)};
  next.ground = ground();
  next.channels = settings_.channels;
  next.colors = {settings_.display, settings_.exposure, settings_.gamma, settings_.channels == ChannelView::Luminance};
  next.wantsResult = compare != CompareMode::Before;
  next.wantsBefore = compare != CompareMode::Result;
  if (isSameView(next, ordered_)) {
    next.wantsResult |= ordered_.wantsResult;
    next.wantsBefore |= ordered_.wantsBefore;
    if (next.wantsResult == ordered_.wantsResult && next.wantsBefore == ordered_.wantsBefore) return;
  }
  ordered_ = next;
  thread_.order(std::move(next));
}

void Viewer::takeFrame() {
  std::unique_ptr<DisplayFrame> frame = thread_.take();
  if (!frame || !picture_) {
    changed_.tell();  // the views are known
    return;
  }
  frame_ = std::move(frame);
  if (frame_->order.place.visible == frame_->order.place.place) whole_ = std::make_shared<DisplayFrame>(*frame_);
  if (!frame_->failure.empty()) {
    setNotice(QString::fromStdString(frame_->failure), NoticeKind::Failed);
    saysFailure_ = true;
  } else if (saysFailure_) {
    setNotice({}, NoticeKind::None);
  }
  update();
  changed_.tell();
}

void Viewer::showNow() {
  order();
  thread_.waitUntilIdle();
  takeFrame();
}

QString Viewer::shownAs() const {
  if (!frame_ || frame_->shownAs.empty()) return windowText("as it is");
  return QString::fromStdString(frame_->shownAs);
}

QString Viewer::shownAsReason() const {
  return frame_ ? QString::fromStdString(frame_->reason) : QString();
}

void Viewer::setNotice(const QString& text, NoticeKind kind, std::function<void()> cancel, double seconds) {
  saysFailure_ = false;
  notice_->set(text, kind, std::move(cancel), seconds);
}

Viewer::NoticeKind Viewer::notice() const {
  return notice_->kind();
}

void Viewer::toggleFullScreen() const {
  if (fullScreen_) fullScreen_();
}

void Viewer::pointAt(std::optional<QPointF> point) {
  pointer_ = point;
  std::optional<PixelReadout> readout;
  if (picture_ && point) {
    const ViewArea view = area();
    if (const QRect where = placeOf(settings_, view); !where.isEmpty()) {
      const QPointF pixel = pictureAt(where, view.picture, deviceOf(*point));
      readout = readPixel(*picture_, static_cast<std::int64_t>(std::floor(pixel.x())),
                          static_cast<std::int64_t>(std::floor(pixel.y())));
    }
  }
  readout_ = readout;
  pointed_.tell();
}

void Viewer::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  notice_->placeIn(size());
  order();
  changed_.tell();
}

void Viewer::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::PaletteChange) order();
}

}  // namespace host
