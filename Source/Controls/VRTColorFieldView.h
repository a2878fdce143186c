// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTColorSwatch.h"
#include "Platform/TarnKit/NSTarnView.h"

#include <functional>

// One field of a picker's panel, edited by presses and drags, by the arrow keys (ten times as far with Shift), and by
// assistive technology. The field stands inside a margin that its marks reach into.
class VRTColorFieldView : public NSTarnView {
 public:
  // Changes the color, which must outlive the view, and then calls `changed`.
  VRTColorFieldView(VRTColorField field, VRTPickedColor& color, std::function<void()> changed, QWidget* parent);

  static constexpr int kMargin = VRTColorField::kMarkMargin;

  void refresh();  // the color has become another one

  bool isFlipped() const override { return true; }
  void drawRect(NSRect dirty) override;
  void mouseDown(const NSEvent& event) override;
  void mouseDragged(const NSEvent& event) override;
  void mouseUp(const NSEvent&) override {}
  void rightMouseDown(const NSEvent&) override {}
  void keyDown(QKeyEvent& event) override;
  std::optional<QCursor> cursorAtPoint(NSPoint point) const override;
  QString accessibilityLabel() const override;
  std::vector<NSAccessibilityElement> accessibilityElements() const override;
  void setAccessibilityValue(std::size_t element, double value) override;

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;

 private:
  VRTColorField field_;
  VRTPickedColor& color_;
  std::function<void()> changed_;
};
