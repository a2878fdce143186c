// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSPopUpButton.h"

#include "Platform/TarnKit/NSTarnView.h"

NSPopUpButton::NSPopUpButton(NSRect frame, QWidget* parent) : QComboBox(parent) {
  NSSetFrame(*this, frame);
}

void NSPopUpButton::removeAllItems() {
  clear();
}

void NSPopUpButton::addItemWithTitle(const QString& title) {
  addItem(title);
}

void NSPopUpButton::selectItemAtIndex(int index) {
  if (index >= 0 && index < count()) setCurrentIndex(index);
}

int NSPopUpButton::indexOfSelectedItem() const {
  return currentIndex();
}
