// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSTarnButton.h"

#include "Platform/TarnKit/NSBezierPath.h"
#include "Platform/TarnKit/NSGraphicsContext.h"
#include "Platform/TarnKit/NSTarnColor.h"
#include "Platform/TarnKit/NSTarnView.h"

#include <QEvent>
#include <QPainter>

namespace {

constexpr double kPlateRadius = 3;
constexpr double kDisabledOpacity = 0.4;

// How much of the text color shows in the plate.
double plateStrength(const NSTarnButton& button) {
  if (!button.isEnabled()) return 0;
  if (button.isDown()) return 0.22;
  return button.isRolledOver() ? 0.12 : 0;
}

}  // namespace

NSTarnButtonCell::~NSTarnButtonCell() = default;

void NSTarnButtonCell::setImageSource(std::optional<TarnThemeImageSource> source) {
  source_ = source;
  button_.updateGeometry();
  button_.update();
}

void NSTarnButtonCell::setTitle(const std::optional<QString>& title) {
  title_ = title;
  button_.updateGeometry();
  button_.update();
}

void NSTarnButtonCell::drawPlate(NSRect frame) const {
  const double strength = plateStrength(button_);
  const NSGraphicsContext* context = NSGraphicsContext::currentContext();
  if (!context || !(strength > 0)) return;
  QColor color = NSTarnColor::textColor().toQColor();
  color.setAlphaF(float(strength));
  QPainter& painter = context->painter();
  painter.save();
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(color);
  painter.drawRoundedRect(context->toWidget(frame), kPlateRadius, kPlateRadius);
  painter.restore();
}

void NSTarnButtonCell::drawTitle(NSRect frame) const {
  const NSGraphicsContext* context = NSGraphicsContext::currentContext();
  if (!context || !title_) return;
  QPainter& painter = context->painter();
  painter.save();
  painter.setOpacity(button_.isEnabled() ? 1 : kDisabledOpacity);
  painter.setPen(NSTarnColor::textColor().toQColor());
  painter.drawText(context->toWidget(frame), Qt::AlignCenter, *title_);
  painter.restore();
}

void NSTarnButtonCell::drawWithFrame(NSRect frame) {
  drawPlate(frame);
  if (const auto& source = currentImageSource()) {
    source->drawInRect(frame, button_.isEnabled() ? 1 : kDisabledOpacity);
  } else {
    drawTitle(frame);
  }
  if (button_.hasFocus()) NSDrawFocusRing(frame);
}

NSTarnButton::NSTarnButton(NSRect frame, QWidget* parent)
    : QAbstractButton(parent), cell_(std::make_unique<NSTarnButtonCell>(*this)) {
  setFocusPolicy(Qt::TabFocus);
  setAttribute(Qt::WA_Hover);
  NSSetFrame(*this, frame);
  // A copy runs: the action may delete the button, or replace the action.
  connect(this, &QAbstractButton::clicked, this, [this] {
    const std::function<void()> action = action_;
    if (action) action();
  });
}

NSTarnButton::~NSTarnButton() = default;

void NSTarnButton::setAction(std::function<void()> action) {
  action_ = std::move(action);
}

void NSTarnButton::setCell(std::unique_ptr<NSTarnButtonCell> cell) {
  if (!cell) return;
  cell_ = std::move(cell);
  update();
}

bool NSTarnButton::isRolledOver() const {
  return underMouse();
}

QSize NSTarnButton::sizeHint() const {
  constexpr int margin = 6;
  QSize size(0, 0);
  if (const auto& source = cell_->imageSource()) {
    size = QSize(int(source->size().width), int(source->size().height));
  } else if (const auto& title = cell_->title()) {
    size = fontMetrics().size(0, *title);
  }
  return size + QSize(margin, margin);
}

bool NSTarnButton::event(QEvent* event) {
  if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave) update();
  return QAbstractButton::event(event);
}

void NSTarnButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const NSGraphicsContext context(painter, *this, false);
  cell_->drawWithFrame(NSMakeRect(0, 0, width(), height()));
}
