// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSViewAccessibility.h"

#include "Platform/TarnKit/NSTarnView.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPointer>
#include <algorithm>
#include <utility>

namespace {

constexpr double kSteps = 100;  // from a part's minimum to its maximum

// The part that has the keyboard when the view has it; -1 for none.
int selectedPart(const std::vector<NSAccessibilityElement>& parts) {
  const auto selected = std::find_if(parts.begin(), parts.end(), [](const auto& part) { return part.selected; });
  return selected == parts.end() ? -1 : int(selected - parts.begin());
}

bool haveEqualNames(const std::vector<NSAccessibilityElement>& a, const std::vector<NSAccessibilityElement>& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](const auto& x, const auto& y) { return x.name == y.name; });
}

NSAccessibilityListener& listener() {
  static auto& listening = *new NSAccessibilityListener;
  return listening;
}

// Whether anybody wants to know.
bool isHeard() {
  return listener() || QAccessible::isActive();
}

void tell(QAccessibleEvent&& event, int child = -1) {
  if (child >= 0) event.setChild(child);
  if (listener()) listener()(event);
  QAccessible::updateAccessibility(&event);
}

// One part of a view. The view's interface owns it; it tells nothing once the view is gone.
class ElementInterface : public QAccessibleInterface,
                         public QAccessibleValueInterface,
                         public QAccessibleActionInterface {
 public:
  ElementInterface(NSTarnView& view, std::size_t index) : view_(&view), index_(index) {}

  bool isValid() const override { return element().has_value(); }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return view_ ? view_->window()->windowHandle() : nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(view_); }
  QAccessibleInterface* child(int) const override { return nullptr; }
  int childCount() const override { return 0; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }
  QAccessible::Role role() const override { return QAccessible::Slider; }
  void setText(QAccessible::Text, const QString&) override {}

  QString text(QAccessible::Text kind) const override {
    const auto part = element();
    if (!part) return {};
    if (kind == QAccessible::Name) return part->name;
    if (kind == QAccessible::Description) return part->description;
    return kind == QAccessible::Value ? QString::number(part->value, 'g', 4) : QString();
  }

  QRect rect() const override {
    const auto part = element();
    if (!part) return {};
    const QRect local = view_->toWidget(part->frame);
    return {view_->mapToGlobal(local.topLeft()), local.size()};
  }

  QAccessible::State state() const override {
    QAccessible::State state;
    const auto part = element();
    state.invalid = !part;
    state.selectable = true;
    state.focusable = view_ && view_->focusPolicy() != Qt::NoFocus;
    state.selected = part && part->selected;
    state.focused = part && part->selected && view_->hasFocus();
    state.disabled = part && !view_->isEnabled();
    return state;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    if (type == QAccessible::ValueInterface) return static_cast<QAccessibleValueInterface*>(this);
    return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
  }

  QVariant currentValue() const override { return number(&NSAccessibilityElement::value); }
  QVariant maximumValue() const override { return number(&NSAccessibilityElement::maximum); }
  QVariant minimumValue() const override { return number(&NSAccessibilityElement::minimum); }
  QVariant minimumStepSize() const override {
    const auto part = element();
    return part ? QVariant(stepOf(*part)) : QVariant();
  }
  void setCurrentValue(const QVariant& value) override {
    bool isNumber = false;
    const double wanted = value.toDouble(&isNumber);
    if (isNumber && element()) view_->setAccessibilityValue(index_, wanted);
  }

  QStringList actionNames() const override { return {setFocusAction(), increaseAction(), decreaseAction()}; }
  QStringList keyBindingsForAction(const QString&) const override { return {}; }
  void doAction(const QString& name) override {
    const auto part = element();
    if (!part) return;
    if (name == increaseAction()) return view_->setAccessibilityValue(index_, part->value + stepOf(*part));
    if (name == decreaseAction()) return view_->setAccessibilityValue(index_, part->value - stepOf(*part));
    if (name != setFocusAction()) return;
    view_->setFocus(Qt::OtherFocusReason);
    if (view_) view_->takeAccessibilityFocus(index_);
  }

 private:
  static double stepOf(const NSAccessibilityElement& part) { return (part.maximum - part.minimum) / kSteps; }
  std::optional<NSAccessibilityElement> element() const {
    if (!view_) return std::nullopt;
    const std::vector<NSAccessibilityElement> all = view_->accessibilityElements();
    return index_ < all.size() ? std::optional(all[index_]) : std::nullopt;
  }
  QVariant number(double NSAccessibilityElement::*field) const {
    const auto part = element();
    return part ? QVariant((*part).*field) : QVariant();
  }

  QPointer<NSTarnView> view_;
  std::size_t index_;
};

// A view: its parts first, then the widgets inside it.
class ViewInterface : public QAccessibleWidget {
 public:
  explicit ViewInterface(NSTarnView& view) : QAccessibleWidget(&view, QAccessible::Grouping), view_(view) {}
  ~ViewInterface() override {
    for (const QAccessible::Id id : elements_) QAccessible::deleteAccessibleInterface(id);
  }

  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Name ? view_.accessibilityLabel() : QAccessibleWidget::text(kind);
  }
  int childCount() const override { return elementCount() + QAccessibleWidget::childCount(); }
  QAccessibleInterface* child(int index) const override {
    const int count = elementCount();
    return index >= 0 && index < count ? element(index) : QAccessibleWidget::child(index - count);
  }
  QAccessibleInterface* focusChild() const override {
    const int selected = view_.hasFocus() ? selectedPart(view_.accessibilityElements()) : -1;
    return selected < 0 ? QAccessibleWidget::focusChild() : element(selected);
  }
  int indexOfChild(const QAccessibleInterface* child) const override {
    const int count = elementCount();
    for (int index = 0; index < count; ++index) {
      if (element(index) == child) return index;
    }
    const int index = QAccessibleWidget::indexOfChild(child);
    return index < 0 ? index : index + count;
  }

 private:
  int elementCount() const { return int(view_.accessibilityElements().size()); }
  QAccessibleInterface* element(int index) const {
    while (int(elements_.size()) <= index) {
      auto* interface = new ElementInterface(view_, elements_.size());
      elements_.push_back(QAccessible::registerAccessibleInterface(interface));  // takes it over: NOLINT
    }
    return QAccessible::accessibleInterface(elements_[std::size_t(index)]);
  }

  NSTarnView& view_;
  mutable std::vector<QAccessible::Id> elements_;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
  auto* view = dynamic_cast<NSTarnView*>(object);
  return view ? new ViewInterface(*view) : nullptr;
}

}  // namespace

void NSListenToAccessibility(NSAccessibilityListener heard) {
  listener() = std::move(heard);
}

void NSInstallViewAccessibility() {
  static const bool installed = (QAccessible::installFactory(makeInterface), true);
  (void)installed;
}

QString NSTarnView::accessibilityLabel() const {
  return accessibleName();
}

std::vector<NSAccessibilityElement> NSTarnView::accessibilityElements() const {
  return {};
}

void NSTarnView::setAccessibilityValue(std::size_t, double) {}

void NSTarnView::takeAccessibilityFocus(std::size_t) {}

void NSTarnView::accessibilityChanged() {
  if (!isHeard()) return;
  const std::vector<NSAccessibilityElement> parts = accessibilityElements();
  const std::vector<NSAccessibilityElement> before = std::exchange(announcedParts_, parts);
  const bool isReordered = !haveEqualNames(before, parts);
  if (isReordered) tell(QAccessibleEvent(this, QAccessible::ObjectReorder));
  for (std::size_t i = 0; i < parts.size() && !isReordered; ++i) {
    if (parts[i].value != before[i].value) tell(QAccessibleValueChangeEvent(this, parts[i].value), int(i));
    if (parts[i].description != before[i].description) {
      tell(QAccessibleEvent(this, QAccessible::DescriptionChanged), int(i));
    }
  }
  if (isReordered || selectedPart(parts) != selectedPart(before)) announceFocusedPart();
}

void NSTarnView::announceFocusedPart() {
  const int selected = hasFocus() && isHeard() ? selectedPart(accessibilityElements()) : -1;
  if (selected >= 0) tell(QAccessibleEvent(this, QAccessible::Focus), selected);
}
