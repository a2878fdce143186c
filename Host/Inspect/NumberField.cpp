// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/NumberField.h"

#include "Controls/VRTInteractions.h"
#include "Host/Inspect/WindowText.h"
#include "Host/Texts/NumberExpression.h"
#include "Platform/QuartzComposer/QCPort.h"

#include <QKeyEvent>
#include <QLineEdit>
#include <QLocale>
#include <QPointer>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace host {
namespace {

constexpr double kFine = 0.1;
constexpr double kCoarse = 10;
constexpr double kPointsBeforeScrub = 3;
constexpr double kStepsOfPoint = 0.5;  // when scrubbing
constexpr double kWheelNotch = 120;
constexpr int kWheelRest = 500;  // milliseconds without a turn, after which it has come to its end
constexpr double kLargestRounded = 1e6;
constexpr double kRounding = 1e9;

double scaleOf(Qt::KeyboardModifiers modifiers) {
  return modifiers & Qt::ShiftModifier ? kFine : modifiers & Qt::ControlModifier ? kCoarse : 1;
}

// Without what steps add in the last digits.
double rounded(double value) {
  return std::abs(value) < kLargestRounded ? std::round(value * kRounding) / kRounding : value;
}

QString faultText(const ExpressionValue& value, const std::string& text) {
  const QString part = QString::fromUtf8(text.data() + value.at, static_cast<qsizetype>(value.length));
  switch (value.fault) {
    case ExpressionFault::None:
      return {};
    case ExpressionFault::Empty:
      return windowText("Type a number");
    case ExpressionFault::TooLong:
      return windowText("The expression is too long");
    case ExpressionFault::TooDeep:
      return windowText("Too many parentheses");
    case ExpressionFault::NoNumber:
      return part.isEmpty() ? windowText("A number is missing at the end")
                            : windowText("A number was expected, not \u201c%1\u201d").arg(part);
    case ExpressionFault::Unexpected:
      return windowText("\u201c%1\u201d was not expected").arg(part);
    case ExpressionFault::NotClosed:
      return windowText("A parenthesis is not closed");
    case ExpressionFault::Ambiguous:
      return windowText("\u201c%1\u201d could mean two numbers; write it without separators of thousands").arg(part);
    case ExpressionFault::DivisionByZero:
      return windowText("Division by zero");
    case ExpressionFault::NotFinite:
      break;
  }
  return windowText("That is more than a number holds");
}

}  // namespace

NumberField::NumberField(QCPort& port, const Numbers& numbers, Told told, QWidget* parent)
    : EntryField(parent), port_(port), numbers_(numbers), told_(std::move(told)) {
  setFocusPolicy(Qt::TabFocus);  // a click gives it the keyboard when it is let go, a drag does not
  setCursor(Qt::SizeHorCursor);
  line().setCursor(Qt::SizeHorCursor);
  wheelRests_.setSingleShot(true);
  wheelRests_.setInterval(kWheelRest);
  wheelRests_.callOnTimeout([this] {
    if (interactsBy_ == By::Wheel) end();
  });
}

NumberField::~NumberField() {
  if (isInteracting()) VRTPostEndInteraction(&port_);
}

void NumberField::setValue(std::optional<double> value) {
  value_ = value;
  showValue();
}

QString NumberField::textOf(double value) const {
  const double size = std::abs(value);
  int decimals = numbers_.isWhole ? 0 : numbers_.decimals;
  for (double limit = 10; decimals > 0 && size >= limit && limit < 1e9; limit *= 10) --decimals;
  QLocale notation = locale();
  notation.setNumberOptions(QLocale::OmitGroupSeparator);
  if (size >= 1e9) return notation.toString(value, 'g', 6);
  QString text = notation.toString(value, 'f', decimals);
  const QString point = notation.decimalPoint();
  if (text.contains(point)) {
    while (text.endsWith('0')) text.chop(1);
    if (text.endsWith(point)) text.chop(point.size());
  }
  return text == QStringLiteral("-0") ? QStringLiteral("0") : text;
}

QString NumberField::shownText() const {
  return value_ ? textOf(*value_) : QString();
}

QString NumberField::help() const {
  if (!value_) return {};
  QLocale notation = locale();
  notation.setNumberOptions(QLocale::OmitGroupSeparator);
  const QString exact = notation.toString(*value_, 'g', QLocale::FloatingPointShortest);
  return exact.size() > textOf(*value_).size() ? exact : QString();
}

QString NumberField::take(const QString& typed) {
  const std::string text = typed.toStdString();
  const bool hasComma = locale().decimalPoint() == QStringLiteral(",");
  const ExpressionValue read = valueOfExpression(text, hasComma ? ',' : '.');
  if (read.fault != ExpressionFault::None) return faultText(read, text);
  double value = std::clamp(read.number, numbers_.minimum, numbers_.maximum);
  if (numbers_.isWhole) value = std::round(value);
  if (told_.refusal) {
    if (QString refusal = told_.refusal(value); !refusal.isEmpty()) return refusal;
  }
  if (value == value_) return {};
  const QPointer<NumberField> self(this);
  end();
  if (!self || !start(By::Keys)) return {};
  give(value);
  if (self) end();
  return {};
}

bool NumberField::start(By by) {
  if (interactsBy_ == by && !isLost_) return true;
  const QPointer<NumberField> self(this);
  end();
  if (!self) return false;
  interactsBy_ = by;
  hasChanged_ = false;
  before_ = value_;
  VRTPostStartInteraction(&port_);
  return self && interactsBy_ == by;
}

void NumberField::end() {
  if (!isInteracting()) return;
  const QPointer<NumberField> self(this);
  const auto settled = told_.settled;  // outlives the field
  if (hasChanged_ && settled) settled();
  if (!self || !isInteracting()) return;
  interactsBy_ = By::Nothing;
  isLost_ = false;
  heldKeys_.clear();
  QCPort& port = port_;
  VRTPostEndInteraction(&port);
}

void NumberField::lose() {
  letGo();
  if (!isInteracting() || isLost_) return;
  isLost_ = true;
  QTimer::singleShot(0, this, [this] {
    if (isLost_) end();
  });
}

void NumberField::give(double value) {
  if (value == value_) return;
  hasChanged_ = true;
  const QPointer<NumberField> self(this);
  const auto changed = told_.changed;  // outlives the field
  changed(value);
  if (self) showValueAnew();
}

void NumberField::stepBy(double steps) {
  if (!value_) return;
  double value = rounded(*value_ + steps * numbers_.step);
  if (numbers_.isWhole) value = std::round(*value_ + (std::abs(steps) < 1 ? std::copysign(1, steps) : steps));
  give(std::clamp(value, numbers_.minimum, numbers_.maximum));
}

void NumberField::addHandle(QWidget& label) {
  label.setCursor(Qt::SizeHorCursor);
  label.installEventFilter(this);
}

bool NumberField::eventFilter(QObject* watched, QEvent* event) {
  const bool isMouse = event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseMove ||
                       event->type() == QEvent::MouseButtonRelease;
  if (watched != &line() && !isMouse) return false;
  switch (event->type()) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseMove:
    case QEvent::MouseButtonRelease:
      if (filterMouse(*watched, *event)) return true;
      break;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
      if (filterStepKey(*event)) return true;
      break;
    case QEvent::Wheel:
      turnWheel(static_cast<QWheelEvent&>(*event));
      return true;
    case QEvent::FocusIn:
      line().setCursor(Qt::IBeamCursor);
      break;
    case QEvent::FocusOut:
      line().setCursor(Qt::SizeHorCursor);
      if (interactsBy_ == By::Keys || interactsBy_ == By::Wheel) lose();
      break;
    case QEvent::ShortcutOverride: {
      const QPointer<NumberField> self(this);
      if (interactsBy_ == By::Wheel) end();  // before it is undone
      if (!self) return true;
      break;
    }
    default:
      break;
  }
  return EntryField::eventFilter(watched, event);
}

bool NumberField::isOwnKey(int key) const {
  const bool steps = key == Qt::Key_Up || key == Qt::Key_Down || key == Qt::Key_PageUp || key == Qt::Key_PageDown;
  return steps || (key == Qt::Key_Escape && scrubs_) || EntryField::isOwnKey(key);
}

bool NumberField::filterStepKey(QEvent& event) {
  const auto& key = static_cast<QKeyEvent&>(event);
  const bool isUp = key.key() == Qt::Key_Up || key.key() == Qt::Key_PageUp;
  const bool isDown = key.key() == Qt::Key_Down || key.key() == Qt::Key_PageDown;
  const bool isPress = event.type() == QEvent::KeyPress;
  if (isPress && key.key() == Qt::Key_Escape && scrubs_) {
    putBack();
    return true;
  }
  if (!isUp && !isDown) return false;
  if (!isPress) {
    if (!key.isAutoRepeat() && heldKeys_.erase(key.key()) > 0 && heldKeys_.empty() && interactsBy_ == By::Keys) end();
    return true;
  }
  const bool isPage = key.key() == Qt::Key_PageUp || key.key() == Qt::Key_PageDown;
  if (interactsBy_ == By::Mouse || !value_) return true;
  if (isTyping()) {  // from what is there so far
    const QPointer<NumberField> self(this);
    const bool isKept = keep();
    if (!self || !isKept) return true;
  }
  if (!start(By::Keys)) return true;
  heldKeys_.insert(key.key());
  stepBy((isUp ? 1 : -1) * (isPage ? kCoarse : scaleOf(key.modifiers())));
  return true;
}

void NumberField::turnWheel(QWheelEvent& event) {
  if (!line().hasFocus() || !value_ || interactsBy_ == By::Mouse || isTyping()) {
    event.ignore();
    return;
  }
  event.accept();
  const QPoint angle = event.angleDelta();
  const double notches = (angle.y() != 0 ? angle.y() : angle.x()) / kWheelNotch;
  if (notches == 0 || !start(By::Wheel)) return;
  wheelRests_.start();
  stepBy(notches * scaleOf(event.modifiers()));
}

// A field without the keyboard is dragged; one that has it selects text.
bool NumberField::filterMouse(const QObject& watched, const QEvent& event) {
  const auto& mouse = static_cast<const QMouseEvent&>(event);
  if (event.type() == QEvent::MouseButtonPress) {
    const bool selects = &watched == &line() && line().hasFocus();
    if (mouse.button() != Qt::LeftButton || selects || !isEnabled()) return false;
    press(mouse.globalPosition());
    return true;
  }
  if (!isPressed_) return false;
  if (event.type() == QEvent::MouseMove) {
    scrubTo(mouse.globalPosition(), mouse.modifiers());
  } else if (mouse.button() == Qt::LeftButton) {
    release();
  }
  return true;
}

void NumberField::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) press(event->globalPosition());
}

void NumberField::mouseMoveEvent(QMouseEvent* event) {
  if (isPressed_) scrubTo(event->globalPosition(), event->modifiers());
}

void NumberField::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton && isPressed_) release();
}

void NumberField::press(QPointF global) {
  isPressed_ = true;
  scrubs_ = false;
  lastX_ = global.x();
}

void NumberField::scrubTo(QPointF global, Qt::KeyboardModifiers modifiers) {
  if (!value_) return;
  const double points = global.x() - lastX_;
  if (!scrubs_) {
    if (std::abs(points) < kPointsBeforeScrub) return;
    if (isTyping()) showValueAnew();
    if (!start(By::Mouse)) return;
    scrubs_ = true;
    scrubbed_ = *value_;
    line().grabKeyboard();  // for Escape
  }
  if (interactsBy_ != By::Mouse || isLost_) return;
  lastX_ = global.x();
  // Back from beyond an end the value moves at once.
  scrubbed_ = std::clamp(scrubbed_ + points * kStepsOfPoint * numbers_.step * scaleOf(modifiers),
                         std::min(numbers_.minimum, *value_), std::max(numbers_.maximum, *value_));
  const double value = numbers_.isWhole ? std::round(scrubbed_) : rounded(scrubbed_);
  give(std::clamp(value, numbers_.minimum, numbers_.maximum));
}

void NumberField::letGo() {
  if (scrubs_) line().releaseKeyboard();
  isPressed_ = scrubs_ = false;
}

void NumberField::release() {
  const bool scrubbed = scrubs_;
  letGo();
  if (scrubbed) {
    if (interactsBy_ == By::Mouse) end();
    return;
  }
  line().setFocus(Qt::MouseFocusReason);
  line().selectAll();
}

void NumberField::putBack() {
  const std::optional<double> before = before_;
  letGo();
  const QPointer<NumberField> self(this);
  if (before) give(*before);
  if (self) end();
}

void NumberField::hideEvent(QHideEvent* event) {
  EntryField::hideEvent(event);
  lose();
}

void NumberField::changeEvent(QEvent* event) {
  EntryField::changeEvent(event);
  if (event->type() == QEvent::EnabledChange && !isEnabled()) lose();
}

}  // namespace host
