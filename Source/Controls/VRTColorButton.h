// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/TarnKit/NSColor.h"

#include <QAbstractButton>
#include <functional>
#include <optional>

// A button that shows a color, which its click gives. Without a color it is an empty place that cannot be clicked.
class VRTColorButton : public QAbstractButton {
 public:
  explicit VRTColorButton(QWidget* parent);

  // The name is what people read, before the color in hexadecimal.
  void setColor(const std::optional<NSColor>& color, const QString& name);
  const std::optional<NSColor>& color() const { return color_; }
  void setAction(std::function<void(const NSColor&)> action);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::optional<NSColor> color_;
  std::function<void(const NSColor&)> action_;
};
