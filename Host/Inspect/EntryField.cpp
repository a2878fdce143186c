// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/EntryField.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QPointer>
#include <QToolTip>

namespace host {
namespace {

constexpr int kHeight = 22;
constexpr int kInset = 6;
constexpr int kGap = 4;
constexpr double kRadius = 3;
constexpr int kLongestText = 65536;
constexpr float kDimmed = 0.55f;

}  // namespace

EntryField::EntryField(QWidget* parent) : QWidget(parent), line_(new QLineEdit(this)) {
  line_->setFrame(false);
  line_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  line_->setTextMargins(0, 0, 0, 0);
  line_->setMaxLength(kLongestText);
  QPalette clear;
  clear.setColor(QPalette::Base, Qt::transparent);
  line_->setPalette(clear);
  line_->setContextMenuPolicy(Qt::NoContextMenu);  // it has the menu of what it is in
  line_->setAcceptDrops(false);
  line_->installEventFilter(this);
  setFocusProxy(line_);
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  QObject::connect(line_, &QLineEdit::textEdited, this, [this] { setFault({}); });
}

void EntryField::setLabel(const QString& label) {
  label_ = label;
  resizeEvent(nullptr);
  update();
}

void EntryField::setPicture(int width, Picture picture) {
  pictureWidth_ = width;
  picture_ = std::move(picture);
  resizeEvent(nullptr);
  update();
}

void EntryField::setName(const QString& name) {
  name_ = name;
  line_->setAccessibleName(name);
  updateToolTip();
}

void EntryField::setHint(const QString& hint) {
  hint_ = hint;
  updateToolTip();
}

QString EntryField::text() const {
  return line_->text();
}

QString EntryField::help() const {
  return {};
}

QSize EntryField::sizeHint() const {
  return {labelWidth() + 60, kHeight};
}

QSize EntryField::minimumSizeHint() const {
  return {labelWidth() + 30, kHeight};
}

int EntryField::labelWidth() const {
  if (picture_) return kInset + pictureWidth_ + kGap;
  return label_.isEmpty() ? kInset - 1 : kInset + fontMetrics().horizontalAdvance(label_) + kGap;
}

void EntryField::resizeEvent(QResizeEvent*) {
  line_->setGeometry(rect().adjusted(labelWidth(), 1, -kInset + 2, -1));
}

void EntryField::changeEvent(QEvent* event) {
  QWidget::changeEvent(event);
  if (event->type() == QEvent::EnabledChange || event->type() == QEvent::PaletteChange) update();
  if (event->type() == QEvent::FontChange) resizeEvent(nullptr);
}

void EntryField::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QPalette& colors = palette();
  const bool focused = line_->hasFocus();
  const bool isDark = colors.color(QPalette::Window).lightness() < 128;
  QColor frame = colors.color(isDark ? QPalette::Light : QPalette::Mid);
  if (!isEnabled()) frame.setAlphaF(kDimmed);
  if (focused) frame = colors.color(QPalette::Highlight);
  if (!fault_.isEmpty()) frame = QColor("#d8442f");
  painter.setPen(QPen(frame, focused || !fault_.isEmpty() ? 1.5 : 1));
  painter.setBrush(isEnabled() ? colors.color(QPalette::Base) : Qt::transparent);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.75, 0.75, -0.75, -0.75), kRadius, kRadius);
  if (picture_) {
    const QRectF place(kInset, 0, pictureWidth_, height());
    painter.setOpacity(isEnabled() ? 1 : kDimmed);
    return picture_(painter, place);
  }
  painter.setPen(colors.color(QPalette::PlaceholderText));
  painter.setOpacity(isEnabled() ? 1 : kDimmed);
  painter.drawText(rect().adjusted(kInset, 0, 0, 0), Qt::AlignLeft | Qt::AlignVCenter, label_);
}

bool EntryField::isTyping() const {
  return line_->isModified();
}

void EntryField::showValueAnew() {
  setFault({});
  line_->setText(shownText());
  line_->setModified(false);
  line_->setCursorPosition(0);
  updateToolTip();
  if (line_->hasFocus()) line_->selectAll();
}

void EntryField::forgetTyping() {
  if (isTyping()) showValueAnew();
}

void EntryField::showValue() {
  if (isTyping()) return;
  if (line_->text() != shownText()) showValueAnew();
  updateToolTip();
}

void EntryField::setFault(const QString& fault) {
  if (fault == fault_) return;
  fault_ = fault;
  line_->setAccessibleDescription(fault);
  updateToolTip();
  update();
}

void EntryField::updateToolTip() {
  QStringList lines{name_, fault_.isEmpty() ? help() : fault_, hint_};
  lines.removeAll(QString());
  setToolTip(lines.join('\n'));
}

bool EntryField::keep(bool goesElsewhere) {
  if (!isTyping()) return true;
  const QPointer<EntryField> self(this);
  const QString typed = line_->text();
  const QString fault = take(typed);
  if (!self) return true;
  if (fault.isEmpty()) {
    showValueAnew();
    return true;
  }
  if (goesElsewhere) {
    showValueAnew();
  } else {
    setFault(fault);
    line_->selectAll();
  }
  if (isVisible()) QToolTip::showText(mapToGlobal(QPoint(0, height() - 8)), fault, this);
  return false;
}

bool EntryField::eventFilter(QObject* watched, QEvent* event) {
  switch (event->type()) {
    case QEvent::FocusIn:
      update();
      if (static_cast<QFocusEvent*>(event)->reason() == Qt::MouseFocusReason) break;
      QMetaObject::invokeMethod(line_, &QLineEdit::selectAll, Qt::QueuedConnection);
      break;
    case QEvent::FocusOut: {
      update();
      // Back from a menu or another window people go on typing.
      const Qt::FocusReason reason = static_cast<QFocusEvent*>(event)->reason();
      if (reason == Qt::PopupFocusReason || reason == Qt::ActiveWindowFocusReason) break;
      const QPointer<EntryField> self(this);
      keep(true);
      if (!self) return true;
      break;
    }
    case QEvent::ShortcutOverride:
    case QEvent::KeyPress:
      if (filterKey(*event)) return true;
      break;
    default:
      break;
  }
  return QWidget::eventFilter(watched, event);
}

// Keys on which a window may have shortcuts, which are the field's while it has the keyboard.
bool EntryField::isOwnKey(int key) const {
  switch (key) {
    case Qt::Key_Left:
    case Qt::Key_Right:
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return true;
    case Qt::Key_Escape:
      return isTyping() || !fault_.isEmpty();
    default:
      return false;
  }
}

// Keys that a line of text would take for itself, or leave to the window.
bool EntryField::filterKey(QEvent& event) {
  auto& key = static_cast<QKeyEvent&>(event);
  const bool isPress = event.type() == QEvent::KeyPress;
  const bool isControlY = key.modifiers() == Qt::ControlModifier && key.key() == Qt::Key_Y;
  const bool isHistory = key.matches(QKeySequence::Undo) || key.matches(QKeySequence::Redo) || isControlY;
  const bool isForWindow = isHistory && !isTyping();
  const bool isCopyOfNothing = key.matches(QKeySequence::Copy) && !line_->hasSelectedText();
  if (isForWindow || isCopyOfNothing) {
    event.ignore();
    return true;
  }
  if (key.matches(QKeySequence::Paste)) {
    if (!isPress) {
      event.accept();  // not the window's, nor the section's
      return true;
    }
    const QMimeData* mime = QApplication::clipboard()->mimeData();
    const Paste paste = paste_;  // outlives the field
    return mime && paste && paste(*mime);
  }
  if (!isPress) {
    const bool isOwn = isOwnKey(key.key());
    if (isOwn) event.accept();
    return isOwn;
  }
  switch (key.key()) {
    case Qt::Key_Return:
    case Qt::Key_Enter: {
      const QPointer<EntryField> self(this);
      if (keep(false) && self) line_->selectAll();
      return true;
    }
    case Qt::Key_Escape:
      if (!isTyping() && fault_.isEmpty()) return false;
      showValueAnew();
      return true;
    default:
      return false;
  }
}

}  // namespace host
