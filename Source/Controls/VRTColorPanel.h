// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTColorButton.h"
#include "Controls/VRTColorEntry.h"
#include "Controls/VRTColorFieldView.h"
#include "Controls/VRTColorSampler.h"
#include "Controls/VRTPickerWindow.h"

#include <memory>
#include <vector>

class NSTarnButton;

// The picker that stays: the fields of colors, the old color beside the new one, an eyedropper, the color in
// hexadecimal and in numbers, and the colors taken last. Every change shows at once. Enter and a click outside keep the
// color, Escape puts the old one back.
class VRTColorPanel : public VRTPickerWindow {
 public:
  // Stands below or above a point of the screen, which stays in sight.
  VRTColorPanel(QWidget& owner, VRTColorSwatch::Kind kind, QPoint globalPosition,
                const std::optional<NSColor>& oldColor, Handlers handlers);
  ~VRTColorPanel() override;

  // For tests: the parts by what they are.
  VRTColorFieldView& fieldView(VRTColorField::Kind kind) const;
  VRTColorNumberEntry& numberEntry(VRTColorComponent component) const;
  const std::vector<VRTColorButton*>& recentButtons() const { return recentButtons_; }

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  bool keepsColorWhenClosed() const override { return true; }

 private:
  void addFields(int& y);
  void addOldAndNew(const std::optional<NSColor>& oldColor, int& y);
  void addNumbers(int& y);
  void addRecentColors(int& y);
  void pickFromScreen();

  void pickedByKey() override { changed(nullptr); }
  void setColor(const NSColor& color);
  // The color has become another one, in a text field or elsewhere: everything else shows it, and it is reported.
  void changed(const VRTColorEntry* typedIn);
  void showColor(const VRTColorEntry* typedIn);

  struct Field {
    VRTColorField::Kind kind;
    VRTColorFieldView* view;
  };
  struct Number {
    VRTColorComponent component;
    VRTColorNumberEntry* entry;
  };
  std::vector<Field> fieldViews_;
  std::vector<Number> numbers_;
  VRTColorButton* newColor_ = nullptr;
  VRTColorHexEntry* hex_ = nullptr;  // null for grays
  std::vector<VRTColorButton*> recentButtons_;
  std::unique_ptr<VRTColorSampler> sampler_;
};
