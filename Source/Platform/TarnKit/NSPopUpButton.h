// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"
#include "Platform/Visibility.h"

#include <QComboBox>

// A button that pops up a list and shows the item chosen from it.
class TARN_EXPORT NSPopUpButton : public QComboBox {
 public:
  explicit NSPopUpButton(NSRect frame, QWidget* parent = nullptr);

  // The items; the first one that is added becomes the chosen one.
  void removeAllItems();
  void addItemWithTitle(const QString& title);
  void selectItemAtIndex(int index);  // an index that does not exist changes nothing
  int indexOfSelectedItem() const;    // -1 without items
};
