// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/TarnKit/TarnTheme.h"
#include "Platform/Visibility.h"

#include <QAbstractButton>
#include <functional>
#include <memory>
#include <optional>

class NSTarnButton;

// What a button shows. Owned by its button.
class TARN_EXPORT NSTarnButtonCell {
 public:
  explicit NSTarnButtonCell(NSTarnButton& button) : button_(button) {}
  virtual ~NSTarnButtonCell();
  NSTarnButtonCell(const NSTarnButtonCell&) = delete;
  NSTarnButtonCell& operator=(const NSTarnButtonCell&) = delete;

  // The picture; none for a button with a title alone.
  void setImageSource(std::optional<TarnThemeImageSource> source);
  const std::optional<TarnThemeImageSource>& imageSource() const { return source_; }
  void setTitle(const std::optional<QString>& title);  // empty: an image-only button
  const std::optional<QString>& title() const { return title_; }

  // Draws into the current context: a quiet plate (stronger under the pointer, sunk while pressed), then image or
  // title.
  virtual void drawWithFrame(NSRect frame);

 protected:
  // The picture to draw now.
  virtual const std::optional<TarnThemeImageSource>& currentImageSource() const { return source_; }
  // The button that it draws.
  NSTarnButton& button() const { return button_; }

 private:
  void drawPlate(NSRect frame) const;
  void drawTitle(NSRect frame) const;

  NSTarnButton& button_;
  std::optional<TarnThemeImageSource> source_;
  std::optional<QString> title_;
};

// A push button: by mouse, or by Space when it has the keyboard (Tab reaches it). The action runs on every click; it
// may delete the button. Set an accessible name or a tooltip when it has no title.
class TARN_EXPORT NSTarnButton : public QAbstractButton {
 public:
  explicit NSTarnButton(NSRect frame, QWidget* parent = nullptr);
  ~NSTarnButton() override;

  // What draws the button, which owns it.
  NSTarnButtonCell& cell() const { return *cell_; }
  // What a click does; empty for nothing.
  void setAction(std::function<void()> action);
  bool isRolledOver() const;  // the pointer is above it

  QSize sizeHint() const override;

 protected:
  void setCell(std::unique_ptr<NSTarnButtonCell> cell);  // null is ignored
  bool event(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  std::unique_ptr<NSTarnButtonCell> cell_;
  std::function<void()> action_;
};
