// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include <QWidget>
#include <vector>

class QAbstractButton;
class QAction;
class QCPort;
class QKeySequence;
class QMenu;
class QMimeData;
class QToolButton;
class QVBoxLayout;

namespace host {

class DocumentActions;
class EditorSlot;
class ParameterFields;

// A parameter that brings its own editor: its name, which folds everything else away, a menu of what can be done with
// its state, the editor, its numbers and choices, and what the window puts beneath.
//
// Copy and paste (Control-C, Control-V while something in the section has the keyboard) are for the whole parameter. A
// color that is pasted goes to what is selected in the editor.
class ParameterSection : public QWidget {
 public:
  enum class Folding { Possible, None };
  ParameterSection(QCPort& port, DocumentActions& actions, Folding folding, QWidget* parent);

  QCPort& port() { return port_; }
  EditorSlot& slot() { return *slot_; }
  ParameterFields* fields() const { return fields_; }  // null for an editor without
  void addPart(QWidget* part);                         // beneath everything; owned from here on
  void setFolded(bool folded);

  void copy();
  void copyAsCss();
  void paste();  // says in the message bar what cannot be pasted
  void paste(const QMimeData& mime);
  // The same for what is pasted into one of its fields: false for what is to be typed there.
  bool pasteIntoField(const QMimeData& mime);
  void updateTitle();  // a dot tells that the state differs from its file

 protected:
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  void addMenu();
  void addFields();
  QAction* addEdit(const char* text, const QKeySequence& keys, void (ParameterSection::*done)());

  QCPort& port_;
  DocumentActions& actions_;
  QAbstractButton* title_;
  QToolButton* menu_;
  QMenu* actionsMenu_;
  QVBoxLayout* body_;
  EditorSlot* slot_;
  ParameterFields* fields_ = nullptr;
  std::vector<QWidget*> parts_;  // what folds away
};

}  // namespace host
