// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QToolButton>
#include <cstdint>

class QAction;

namespace host {

class Player;

// Says how much memory the frames take and may take, and has the menu for it.
class MemoryButton : public QToolButton {
 public:
  // `more` follow the budgets in the menu.
  MemoryButton(Player& player, const QList<QAction*>& more, QWidget* parent = nullptr);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  void addBudget(const QString& text, std::uint64_t bytes);
  void follow();

  Player& player_;
};

// "1.2 of 6 GB", in the form of the locale; a GB has 2^30 bytes.
QString memoryText(std::uint64_t bytes, std::uint64_t budget);

}  // namespace host
