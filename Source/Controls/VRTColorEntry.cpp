// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTColorEntry.h"

#include "Controls/VRTLocalizedText.h"
#include "Platform/TarnKit/NSGraphicsContext.h"
#include "Platform/TarnKit/NSTarnColor.h"

#include <QDoubleSpinBox>
#include <QEvent>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QSignalBlocker>
#include <algorithm>

namespace {

constexpr int kLabelGap = 6;
constexpr double kRadius = 3;
constexpr double kFineScrub = 0.1;
constexpr int kDigits = 6;
constexpr int kShortDigits = 3;

}  // namespace

VRTColorEntry::VRTColorEntry(const QString& label, const QString& name, QWidget* parent)
    : QWidget(parent), label_(label) {
  setToolTip(name);
}

void VRTColorEntry::setEditor(QWidget& editor) {
  editor_ = &editor;
  editor.setAccessibleName(toolTip());
  editor.installEventFilter(this);
  QPalette palette = this->palette();
  palette.setColor(QPalette::Window, palette.color(QPalette::Base));
  editor.setPalette(palette);
}

int VRTColorEntry::labelWidth() const {
  return std::max(fontMetrics().horizontalAdvance(label_), fontMetrics().horizontalAdvance('M')) + kLabelGap;
}

QRect VRTColorEntry::frame() const {
  return rect().adjusted(labelWidth(), 0, 0, 0);
}

void VRTColorEntry::resizeEvent(QResizeEvent*) {
  if (editor_) editor_->setGeometry(frame().adjusted(3, 2, -3, -2));
}

void VRTColorEntry::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  const NSGraphicsContext context(painter, *this, true);
  const bool focused = editor_ && editor_->hasFocus();
  painter.setPen(NSTarnColor::secondaryTextColor().toQColor());
  painter.drawText(rect().adjusted(0, 0, -frame().width(), 0), Qt::AlignLeft | Qt::AlignVCenter, label_);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(palette().color(QPalette::Base));
  painter.setPen(QPen((focused ? NSTarnColor::selectionColor() : NSTarnColor::controlOutlineColor()).toQColor(),
                      focused ? 1.5 : 1));
  painter.drawRoundedRect(QRectF(frame()).adjusted(0.75, 0.75, -0.75, -0.75), kRadius, kRadius);
}

bool VRTColorEntry::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) update();
  return QWidget::eventFilter(watched, event);
}

VRTColorNumberEntry::VRTColorNumberEntry(const Layout& layout, Changed changed, QWidget* parent)
    : VRTColorEntry(VRTLocalizedText(layout.label), VRTLocalizedText(layout.name), parent),
      component_(layout.component),
      box_(new QDoubleSpinBox(this)) {
  box_->setFrame(false);
  box_->setButtonSymbols(QAbstractSpinBox::NoButtons);
  box_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  box_->setDecimals(layout.decimals);
  box_->setRange(0, layout.maximum);
  box_->setSuffix(QString::fromUtf8(layout.suffix));
  box_->setAccelerated(true);
  box_->setCursor(Qt::IBeamCursor);
  QObject::connect(
      box_, &QDoubleSpinBox::valueChanged, this,
      [changed = std::move(changed), component = component_](double number) { changed(component, number); });
  setCursor(Qt::SizeHorCursor);
  setEditor(*box_);
}

void VRTColorNumberEntry::show(const VRTPickedColor& color) {
  const QSignalBlocker quiet(box_);
  box_->setValue(color.number(component_));
}

void VRTColorNumberEntry::mousePressEvent(QMouseEvent* event) {
  scrubbedFrom_ = box_->value();
  scrubStart_ = event->position().x();
}

void VRTColorNumberEntry::mouseMoveEvent(QMouseEvent* event) {
  if (!(event->buttons() & Qt::LeftButton)) return;
  const double scale = event->modifiers() & Qt::ShiftModifier ? kFineScrub : 1;
  box_->setValue(scrubbedFrom_ + scale * (event->position().x() - scrubStart_));
}

VRTColorHexEntry::VRTColorHexEntry(Changed changed, QWidget* parent)
    : VRTColorEntry(QStringLiteral("#"), VRTLocalizedText("Hexadecimal"), parent),
      changed_(std::move(changed)),
      line_(new QLineEdit(this)) {
  line_->setFrame(false);
  line_->setMaxLength(16);
  QObject::connect(line_, &QLineEdit::textEdited, this, [this] { take(kDigits); });
  QObject::connect(line_, &QLineEdit::editingFinished, this, [this] {
    take(kShortDigits);
    line_->setText(shown_);
  });
  setEditor(*line_);
}

void VRTColorHexEntry::take(int fewestDigits) {
  const std::optional<NSColor> color = VRTColorOfHex(line_->text(), fewestDigits);
  if (color && VRTHexOfColor(*color) != VRTHexOfColor(shownColor_)) changed_(*color);
}

// What is being typed stays as it is typed.
void VRTColorHexEntry::show(const VRTPickedColor& color) {
  shownColor_ = color.color();
  shown_ = VRTHexOfColor(shownColor_).mid(1);
  const std::optional<NSColor> typed = VRTColorOfHex(line_->text());
  const bool isTyped = line_->hasFocus() && typed && VRTHexOfColor(*typed) == VRTHexOfColor(shownColor_);
  if (!isTyped) line_->setText(shown_);
}
