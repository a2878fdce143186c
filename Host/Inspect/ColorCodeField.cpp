// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/ColorCodeField.h"

#include "Host/Inspect/ParameterClipboard.h"
#include "Host/Inspect/WindowText.h"

#include <QLineEdit>
#include <algorithm>

namespace host {

ColorCodeField::ColorCodeField(Changed changed, QWidget* parent) : EntryField(parent), changed_(std::move(changed)) {
  setLabel(QStringLiteral("#"));
  setName(windowText("Color in hexadecimal"));
}

void ColorCodeField::setColor(const std::optional<Rgb>& color) {
  color_ = color;
  showValue();
}

QString ColorCodeField::shownText() const {
  return color_ ? codeOfColor(*color_).mid(1) : QString();
}

QString ColorCodeField::help() const {
  const auto isBeyond = [](double component) { return !(component >= 0 && component <= 1); };
  const bool beyond = color_ && std::any_of(color_->begin(), color_->end(), isBeyond);
  return beyond ? windowText("Limited to 0 to 1; the numbers are exact") : QString();
}

QString ColorCodeField::take(const QString& typed) {
  const QString text = typed.trimmed();
  auto color = colorOfText(QStringLiteral("#") + text);
  if (!color) color = colorOfText(text);
  if (!color) return windowText("Type a color such as 1e90ff, orange or rgb(30 144 255)");
  if (color == color_) return {};
  const Changed changed = changed_;  // outlives the field
  changed(*color);
  return {};
}

}  // namespace host
