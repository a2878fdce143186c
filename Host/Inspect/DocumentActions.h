// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/EditRecorder.h"
#include "Host/Inspect/ParameterDocument.h"

#include <QObject>
#include <functional>
#include <string>

class QAction;
class QWidget;

namespace host {

class MessageBar;

// What a window does with the parameters of its document: open, save, reset, undo, redo, with their keys. What fails is
// shown in the message bar. The window accepts dropped state files through accepts() and drop().
class DocumentActions : public QObject {
 public:
  struct Told {
    std::function<void(QCPort& port)> valueChanged;
    std::function<void(QCPort& port)> loaded;  // the value is another file's: editors read it anew
    std::function<void(bool held)> held = {};  // a hand drags, or a picker is open; and no longer
    std::function<void()> changed;             // what is modified, what can be undone, which file it is
  };
  DocumentActions(ParameterDocument& document, MessageBar& messages, QWidget& window, Told told);

  ParameterDocument& document() { return document_; }
  QCPort* activePort() const { return active_; }  // the one edited last; at first, the first that has a state file

  // Does something that may fail; true when it did not.
  bool tried(const std::function<void()>& work);
  void open(QCPort* port);
  void save(QCPort& port);
  void saveAs(QCPort& port);
  void reset(QCPort& port);
  void load(const std::string& path, QCPort* preferred);
  // Before the window closes: offers to save what is not saved. False when it must stay open, because people want that
  // or something could not be saved.
  bool mayClose();

  QAction* openAction;
  QAction* saveAction;
  QAction* saveAsAction;
  QAction* undoAction;
  QAction* redoAction;
  QAction* resetAction;
  QAction* quitAction;

 private:
  QAction* addAction(const char* text, const QKeySequence& keys, const std::function<void()>& done);
  void updateActions();

  ParameterDocument& document_;
  MessageBar& messages_;
  QWidget& window_;
  const Told told_;
  QCPort* active_ = nullptr;
  EditRecorder recorder_;
};

}  // namespace host
