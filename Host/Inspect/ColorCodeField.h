// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/EntryField.h"
#include "Host/Texts/ColorText.h"

namespace host {

// A color in hexadecimal. Any color that a text can be (Host/Texts/ColorText.h) may be typed, three or six digits
// without the number sign too.
class ColorCodeField : public EntryField {
 public:
  using Changed = std::function<void(const Rgb& color)>;  // who is told may destroy the field
  ColorCodeField(Changed changed, QWidget* parent);
  void setColor(const std::optional<Rgb>& color);

 protected:
  QString take(const QString& typed) override;
  QString shownText() const override;
  QString help() const override;

 private:
  const Changed changed_;
  std::optional<Rgb> color_;
};

}  // namespace host
