// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Viewer/BarControls.h"

#include "Host/Inspect/WindowText.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>

namespace host {
namespace {

constexpr int kHeight = 24;
constexpr int kSide = 8;    // points before and after a text
constexpr int kArrow = 12;  // points that a menu's arrow takes
constexpr int kDrawing = 16;
constexpr double kPointsOfStep = 6;  // of a drag

QColor withAlpha(QColor color, float alpha) {
  color.setAlphaF(alpha);
  return color;
}

// Numbers with a sign, on no ground of their own.
class FlatBox : public QDoubleSpinBox {
 public:
  FlatBox(bool isSigned, QWidget* parent) : QDoubleSpinBox(parent), isSigned_(isSigned) {
    setButtonSymbols(NoButtons);
    setFrame(false);
    setKeyboardTracking(false);
    setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
  }
  QString textFromValue(double value) const override {
    const QString text = QDoubleSpinBox::textFromValue(value == 0 ? 0.0 : value);
    return isSigned_ && value > 0 ? '+' + text : text;
  }
  QSize sizeHint() const override { return {fontMetrics().horizontalAdvance(textFromValue(maximum())) + 8, 20}; }
  QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent*) override {
    if (!hasFocus() && !underMouse()) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(withAlpha(palette().color(QPalette::WindowText), 0.07f));
    painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Highlight)) : QPen(Qt::NoPen));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
  }
  void keyPressEvent(QKeyEvent* event) override {
    if (event->key() == Qt::Key_Escape) return clearFocus();
    QDoubleSpinBox::keyPressEvent(event);
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) return;
    event->accept();
    clearFocus();  // keys are the window's again
  }

 private:
  const bool isSigned_;
};

}  // namespace

BarButton::BarButton(const QString& name, QWidget* parent) : QAbstractButton(parent) {
  setAccessibleName(name);
  setToolTip(name);
  setFocusPolicy(Qt::TabFocus);
  setSizePolicy(QSizePolicy::Maximum, QSizePolicy::Fixed);
}

void BarButton::setMenu(QMenu* menu) {
  menu_ = menu;
  QObject::connect(this, &QAbstractButton::clicked, this, [this] {
    menu_->popup(mapToGlobal(QPoint(0, height() + 2)));
    update();
  });
}

void BarButton::setDrawing(std::function<void(QPainter&, const QRectF&, const QColor&)> drawing) {
  drawing_ = std::move(drawing);
}

QSize BarButton::sizeHint() const {
  const int content = drawing_ ? kDrawing : std::min(widest_, fontMetrics().horizontalAdvance(text()));
  const int side = drawing_ || text().size() == 1 ? kSide - 2 : kSide;
  return {content + 2 * side + (menu_ ? kArrow : 0), kHeight};
}

QSize BarButton::minimumSizeHint() const {
  return {std::min(sizeHint().width(), 72), kHeight};
}

void BarButton::keyPressEvent(QKeyEvent* event) {
  if (menu_ && (event->key() == Qt::Key_Down || event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
    return click();
  }
  QAbstractButton::keyPressEvent(event);
}

void BarButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QColor ink = palette().color(isEnabled() ? QPalette::Normal : QPalette::Disabled, QPalette::WindowText);
  const bool isActive = isDown() || (menu_ && menu_->isVisible());
  const float strength = isChecked() ? 0.16f : isActive ? 0.13f : underMouse() && isEnabled() ? 0.07f : 0.0f;
  painter.setPen(hasFocus() ? QPen(palette().color(QPalette::Highlight)) : QPen(Qt::NoPen));
  painter.setBrush(withAlpha(ink, strength));
  if (strength > 0 || hasFocus()) painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);

  QRect content = rect().adjusted(0, 0, menu_ ? -kArrow : 0, 0);
  if (menu_) {
    const QPointF middle(width() - kArrow / 2.0 - 3.5, height() / 2.0 + 0.5);
    painter.setPen(QPen(withAlpha(ink, 0.6f), 1.4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    painter.drawPolyline(QPolygonF({middle + QPointF(-3, -1.5), middle + QPointF(0, 1.5), middle + QPointF(3, -1.5)}));
  }
  if (drawing_) {
    const QRectF square(content.center().x() + 1 - kDrawing / 2.0, (height() - kDrawing) / 2.0, kDrawing, kDrawing);
    return drawing_(painter, square, ink);
  }
  QFont font = this->font();
  if (isChecked()) font.setWeight(QFont::DemiBold);
  painter.setFont(font);
  painter.setPen(textColor_.isValid() && isEnabled() ? textColor_ : ink);
  const int side = text().size() == 1 ? 2 : kSide;
  const QString shown = QFontMetrics(font).elidedText(text(), Qt::ElideMiddle, content.width() - side);
  painter.drawText(content, Qt::AlignCenter, shown);
}

BarNumber::BarNumber(const QString& sign, const QString& name, const Range& range, std::function<void(double)> changed,
                     QWidget* parent)
    : QWidget(parent), range_(range), changed_(std::move(changed)) {
  auto* label = new QLabel(sign, this);
  label->setCursor(Qt::SizeHorCursor);
  label->setToolTip(windowText("%1: drag to change, double-click to reset").arg(name));
  label->setForegroundRole(QPalette::PlaceholderText);
  label->installEventFilter(this);
  sign_ = label;
  box_ = new FlatBox(range.isSigned, this);
  box_->setRange(range.least, range.most);
  box_->setSingleStep(range.step);
  box_->setDecimals(range.decimals);
  box_->setValue(range.usual);
  box_->setAccessibleName(name);
  box_->setToolTip(name);
  QObject::connect(box_, &QDoubleSpinBox::valueChanged, this, [this](double value) {
    showValue();
    changed_(value);
  });
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(2);
  row->addWidget(label);
  row->addWidget(box_);
  setFixedHeight(kHeight);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  showValue();
}

void BarNumber::setValue(double value) {
  if (box_->value() == value) return;
  const QSignalBlocker quiet(box_);
  box_->setValue(value);
  showValue();
}

void BarNumber::showValue() {
  QPalette own = box_->parentWidget()->palette();
  const bool isUsual = std::abs(box_->value() - range_.usual) < 1e-9;
  own.setColor(QPalette::Text, own.color(isUsual ? QPalette::WindowText : QPalette::Highlight));
  own.setColor(QPalette::Base, Qt::transparent);
  box_->setPalette(own);
}

bool BarNumber::dragSign(const QMouseEvent& mouse) {
  if (mouse.type() == QEvent::MouseButtonPress && mouse.button() == Qt::LeftButton) {
    dragFrom_ = mouse.globalPosition().x();
    dragValue_ = box_->value();
    return true;
  }
  if (mouse.type() != QEvent::MouseMove || !(mouse.buttons() & Qt::LeftButton)) return false;
  const double steps = std::round((mouse.globalPosition().x() - dragFrom_) / kPointsOfStep);
  box_->setValue(dragValue_ + steps * 0.1);
  return true;
}

bool BarNumber::eventFilter(QObject* watched, QEvent* event) {
  if (watched != sign_) return QWidget::eventFilter(watched, event);
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
      if (dragSign(*static_cast<QMouseEvent*>(event))) return true;
      break;
    case QEvent::MouseButtonDblClick:
      box_->setValue(range_.usual);
      return true;
    default:
      break;
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace host
