// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QWidget>

class QCPort;
class QAbstractButton;
class QToolButton;

namespace host {

class DocumentActions;
class EditorSlot;

// A parameter that brings its own editor: its name, which folds the editor away, a menu of what can be done with its
// state, and the editor.
class ParameterSection : public QWidget {
 public:
  enum class Folding { Possible, None };
  ParameterSection(QCPort& port, DocumentActions& actions, Folding folding, QWidget* parent);

  QCPort& port() { return port_; }
  EditorSlot& slot() { return *slot_; }
  void setFolded(bool folded);
  void updateTitle();  // a dot tells that the state differs from its file

 private:
  void addMenu();

  QCPort& port_;
  DocumentActions& actions_;
  QAbstractButton* title_;
  QToolButton* menu_;
  EditorSlot* slot_;
};

}  // namespace host
