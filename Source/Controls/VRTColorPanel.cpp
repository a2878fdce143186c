// SPDX-License-Identifier: BSD-3-Clause
#include "Controls/VRTColorPanel.h"

#include "Controls/VRTLocalizedText.h"
#include "Controls/VRTRecentColors.h"
#include "Controls/VRTRolloverButton.h"
#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"

#include <QMouseEvent>
#include <QPointer>
#include <algorithm>
#include <array>
#include <span>

namespace {

using Kind = VRTColorSwatch::Kind;

constexpr int kMargin = 12;
constexpr int kGap = 8;
constexpr int kRowHeight = 24;
constexpr int kHexWidth = 96;
constexpr int kNumbersInRow = 3;
constexpr int kRecentSide = 24;
constexpr int kRecentHeight = 20;
constexpr int kDistance = 16;  // from the point that stays in sight

constexpr std::array<VRTColorNumberEntry::Layout, 6> kColorNumbers{{
    {VRTColorComponent::Red, "R", "Red", 255, 0, ""},
    {VRTColorComponent::Green, "G", "Green", 255, 0, ""},
    {VRTColorComponent::Blue, "B", "Blue", 255, 0, ""},
    {VRTColorComponent::Hue, "H", "Hue", 360, 1, "°"},
    {VRTColorComponent::Saturation, "S", "Saturation", 100, 1, "%"},
    {VRTColorComponent::Value, "V", "Value", 100, 1, "%"},
}};

constexpr std::array<VRTColorNumberEntry::Layout, 2> kGrayNumbers{{
    {VRTColorComponent::Gray, "Level", "Gray level", 255, 0, ""},
    {VRTColorComponent::Value, "White", "Part of white", 100, 2, "%"},
}};

std::span<const VRTColorNumberEntry::Layout> numbersOf(Kind kind) {
  if (kind == Kind::color) return kColorNumbers;
  return kGrayNumbers;
}

// As bright as the color is to the eye: BT.601's luma.
NSColor grayOf(const NSColor& color) {
  const double gray = 0.299 * color.redComponent() + 0.587 * color.greenComponent() + 0.114 * color.blueComponent();
  return NSColor::colorWithCalibratedRed(gray, gray, gray, 1);
}

}  // namespace

VRTColorPanel::VRTColorPanel(QWidget& owner, Kind kind, QPoint globalPosition, const std::optional<NSColor>& oldColor,
                             Handlers handlers)
    : VRTPickerWindow(owner, kind, oldColor, std::move(handlers)) {
  int y = kMargin;
  addFields(y);
  addOldAndNew(oldColor, y);
  addNumbers(y);
  addRecentColors(y);
  setFixedSize(swatch_.size().width() + 2 * kMargin, y + kMargin);
  showColor(nullptr);
  const QPoint below = globalPosition + QPoint(-width() / 2, kDistance);
  moveOnScreen(below, globalPosition);
  if (pos().y() < globalPosition.y()) moveOnScreen(below - QPoint(0, height() + 2 * kDistance), globalPosition);
}

VRTColorPanel::~VRTColorPanel() = default;

void VRTColorPanel::addFields(int& y) {
  const int margin = VRTColorFieldView::kMargin;
  for (const VRTColorSwatch::Place& place : swatch_.fields()) {
    auto* view = new VRTColorFieldView(
        place.field, picked_, [this] { changed(nullptr); }, this);
    view->move(QPoint(kMargin, y) + place.rect.topLeft() - QPoint(margin, margin));
    fieldViews_.push_back({place.field.kind(), view});
  }
  y += swatch_.size().height() + kMargin;
  // The main field is the first one that the keyboard reaches.
  VRTColorFieldView& main = fieldView(swatch_.mainField().field.kind());
  setFocusProxy(&main);
  QWidget* before = &main;
  for (const Field& field : fieldViews_) {
    if (field.view == &main) continue;
    setTabOrder(before, field.view);
    before = field.view;
  }
}

void VRTColorPanel::addOldAndNew(const std::optional<NSColor>& oldColor, int& y) {
  const bool isColor = swatch_.kind() == Kind::color;
  const int width = swatch_.size().width();
  const int wells = width - kRowHeight - kGap - (isColor ? kHexWidth + kGap : 0);
  newColor_ = new VRTColorButton(this);
  newColor_->setFocusPolicy(Qt::NoFocus);
  newColor_->setGeometry(kMargin, y, oldColor ? wells / 2 + 1 : wells, kRowHeight);
  if (oldColor) {
    auto* old = new VRTColorButton(this);
    old->setColor(oldColor, VRTLocalizedText("Back to the old color"));
    old->setAction([this](const NSColor& color) { setColor(color); });
    old->setGeometry(kMargin + wells / 2, y, wells - wells / 2, kRowHeight);
  }
  auto* eyedropper = new VRTRolloverButton(NSMakeRect(0, 0, kRowHeight, kRowHeight), this);
  eyedropper->cell().setImageSource(TarnThemeImageSource(VRTThemeAtomPickerButton, VRTTheme::theme(), 0, false));
  eyedropper->setToolTip(VRTLocalizedText("Take a color from the screen"));
  eyedropper->setAccessibleName(eyedropper->toolTip());
  eyedropper->setAction([this] { pickFromScreen(); });
  eyedropper->move(kMargin + wells + kGap, y);
  if (isColor) {
    hex_ = new VRTColorHexEntry(
        [this](const NSColor& color) {
          picked_.setColor(color);
          changed(hex_);
        },
        this);
    hex_->setGeometry(kMargin + width - kHexWidth, y, kHexWidth, kRowHeight);
  }
  y += kRowHeight + kGap;
}

void VRTColorPanel::addNumbers(int& y) {
  const std::span<const VRTColorNumberEntry::Layout> layouts = numbersOf(swatch_.kind());
  const int columns = std::min(kNumbersInRow, int(layouts.size()));
  const int width = (swatch_.size().width() - (columns - 1) * kGap) / columns;
  int column = 0;
  for (const auto& layout : layouts) {
    auto* entry = new VRTColorNumberEntry(
        layout,
        [this](VRTColorComponent component, double number) {
          picked_.setNumber(component, number);
          changed(&numberEntry(component));
        },
        this);
    entry->setGeometry(kMargin + column * (width + kGap), y, width, kRowHeight);
    numbers_.push_back({layout.component, entry});
    if (++column < columns) continue;
    column = 0;
    y += kRowHeight + kGap;
  }
  y += kMargin - kGap;
}

void VRTColorPanel::addRecentColors(int& y) {
  const std::vector<NSColor>& recent = VRTRecentColors::ofKind(swatch_.kind()).colors();
  const int width = swatch_.size().width();
  const int count = std::min(int(VRTRecentColors::kMost), (width + kGap / 2) / (kRecentSide + kGap / 2));
  for (int i = 0; i < count; ++i) {
    auto* button = new VRTColorButton(this);
    const bool exists = std::size_t(i) < recent.size();
    button->setColor(exists ? std::optional(recent[std::size_t(i)]) : std::nullopt, VRTLocalizedText("Recent color"));
    button->setAction([this](const NSColor& color) { setColor(color); });
    const int x = (width - kRecentSide) * i / std::max(1, count - 1);
    button->setGeometry(kMargin + x, y, kRecentSide, kRecentHeight);
    recentButtons_.push_back(button);
  }
  y += kRecentHeight;
}

VRTColorFieldView& VRTColorPanel::fieldView(VRTColorField::Kind kind) const {
  return *std::find_if(fieldViews_.begin(), fieldViews_.end(), [&](const Field& each) {
            return each.kind == kind;
          })->view;
}

VRTColorNumberEntry& VRTColorPanel::numberEntry(VRTColorComponent component) const {
  return *std::find_if(numbers_.begin(), numbers_.end(), [&](const Number& each) {
            return each.component == component;
          })->entry;
}

void VRTColorPanel::setColor(const NSColor& color) {
  picked_.setColor(color);
  changed(nullptr);
}

void VRTColorPanel::changed(const VRTColorEntry* typedIn) {
  showColor(typedIn);
  report();
}

void VRTColorPanel::showColor(const VRTColorEntry* typedIn) {
  for (const Field& field : fieldViews_) field.view->refresh();
  for (const Number& number : numbers_) {
    if (number.entry != typedIn) number.entry->show(picked_);
  }
  if (hex_) hex_->show(picked_);
  newColor_->setColor(picked_.color(), VRTLocalizedText("New color"));
}

void VRTColorPanel::pickFromScreen() {
  sampler_ = std::make_unique<VRTColorSampler>(*this, [this](const std::optional<NSColor>& color) {
    sampler_.release()->deleteLater();
    if (color) setColor(swatch_.kind() == Kind::color ? *color : grayOf(*color));
  });
}

void VRTColorPanel::mousePressEvent(QMouseEvent* event) {
  event->accept();
  if (!rect().contains(event->position().toPoint())) finish(true);
}
