// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTColorFieldView.h"

#include "Controls/VRTLocalizedText.h"
#include "Controls/VRTPickerWindow.h"
#include "Platform/TarnKit/NSBezierPath.h"
#include "Platform/TarnKit/NSGraphicsContext.h"

#include <QKeyEvent>
#include <algorithm>
#include <cmath>

namespace {

using Kind = VRTColorField::Kind;

constexpr QPoint kOrigin(VRTColorFieldView::kMargin, VRTColorFieldView::kMargin);

struct Number {
  VRTColorComponent component;
  const char* name;
  double maximum;
};

std::vector<Number> numbersOf(Kind kind) {
  switch (kind) {
    case Kind::Square:
      return {{VRTColorComponent::Saturation, "Saturation", 100}, {VRTColorComponent::Value, "Value", 100}};
    case Kind::Hues:
      return {{VRTColorComponent::Hue, "Hue", 360}};
    case Kind::Grays:
    case Kind::Ramp:
      break;
  }
  return {{VRTColorComponent::Gray, "Gray", 255}};
}

const char* nameOf(Kind kind) {
  switch (kind) {
    case Kind::Square:
      return "Saturation and value";
    case Kind::Hues:
      return "Hue";
    case Kind::Grays:
    case Kind::Ramp:
      break;
  }
  return "Grays";
}

}  // namespace

VRTColorFieldView::VRTColorFieldView(VRTColorField field, VRTPickedColor& color, std::function<void()> changed,
                                     QWidget* parent)
    : NSTarnView({}, parent), field_(std::move(field)), color_(color), changed_(std::move(changed)) {
  setFrameSize({double(field_.size().width() + 2 * kMargin), double(field_.size().height() + 2 * kMargin)});
  setFocusPolicy(Qt::StrongFocus);
}

void VRTColorFieldView::refresh() {
  setNeedsDisplay(true);
  accessibilityChanged();
}

void VRTColorFieldView::drawRect(NSRect) {
  const NSGraphicsContext* context = NSGraphicsContext::currentContext();
  field_.draw(context->painter(), kOrigin, color_);
  if (hasFocus() && window()->testAttribute(Qt::WA_KeyboardFocusChange)) NSDrawFocusRing(bounds());
  field_.drawMark(context->painter(), kOrigin, color_);
}

void VRTColorFieldView::mouseDown(const NSEvent& event) {
  mouseDragged(event);
}

// The color under the pointer is that of the device pixel that it stands on.
void VRTColorFieldView::mouseDragged(const NSEvent& event) {
  const NSPoint middle = convertPointFromWindow(event.locationInWindow());
  const QPointF place(middle.x, middle.y - 0.5 / devicePixelRatioF());
  field_.pick(place - kOrigin, color_);
  changed_();
}

void VRTColorFieldView::keyDown(QKeyEvent& event) {
  const QPoint step = VRTStepOfKey(event);
  if (step.isNull()) return NSTarnView::keyDown(event);
  event.accept();
  field_.step(step, color_);
  changed_();
}

std::optional<QCursor> VRTColorFieldView::cursorAtPoint(NSPoint) const {
  return QCursor(Qt::CrossCursor);
}

QString VRTColorFieldView::accessibilityLabel() const {
  return VRTLocalizedText(nameOf(field_.kind()));
}

std::vector<NSAccessibilityElement> VRTColorFieldView::accessibilityElements() const {
  std::vector<NSAccessibilityElement> elements;
  for (const Number& number : numbersOf(field_.kind())) {
    NSAccessibilityElement element;
    element.name = VRTLocalizedText(number.name);
    element.value = color_.number(number.component);
    element.maximum = number.maximum;
    element.frame = bounds();
    elements.push_back(element);
  }
  return elements;
}

void VRTColorFieldView::setAccessibilityValue(std::size_t element, double value) {
  const std::vector<Number> numbers = numbersOf(field_.kind());
  if (element >= numbers.size() || std::isnan(value)) return;
  color_.setNumber(numbers[element].component, std::clamp(value, 0.0, numbers[element].maximum));
  changed_();
}

void VRTColorFieldView::focusInEvent(QFocusEvent* event) {
  NSTarnView::focusInEvent(event);
  setNeedsDisplay(true);
}

void VRTColorFieldView::focusOutEvent(QFocusEvent* event) {
  NSTarnView::focusOutEvent(event);
  setNeedsDisplay(true);
}
