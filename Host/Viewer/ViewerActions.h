// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Viewer/ViewSettings.h"

#include <QKeySequence>
#include <QList>
#include <QObject>
#include <functional>
#include <vector>

class QAction;
class QActionGroup;

namespace host {

class Viewer;

// What can be done with a viewer, by keys and in menus. Keys with letters work in the whole window, the arrows where
// the viewer has the keyboard.
class ViewerActions : public QObject {
 public:
  explicit ViewerActions(Viewer& viewer);

  struct Group {
    QString title;
    QList<QAction*> actions;
  };
  const std::vector<Group>& groups() const { return groups_; }

  void update();  // checks what the settings say

  QAction* fit;
  QAction* actualSize;
  QAction* fullScreen;

 private:
  using Change = std::function<void(ViewSettings&)>;
  struct Choice {
    QAction* action;
    std::function<bool(const ViewSettings&)> isChosen;
  };

  QAction* add(const char* text, const QList<QKeySequence>& keys, const std::function<void()>& done);
  QAction* addChange(const char* text, const QList<QKeySequence>& keys, const Change& change);
  QAction* addChoice(const char* text, const QList<QKeySequence>& keys, const Change& change,
                     const std::function<bool(const ViewSettings&)>& isChosen);
  void beginGroup(const char* title);
  void addZoom();
  void addMoves();
  void addCompare();
  void addChannels();
  void addColors();
  void addGround();

  Viewer& viewer_;
  std::vector<Group> groups_;
  std::vector<Choice> choices_;
};

}  // namespace host
