// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/ParameterDocument.h"

#include <QWidget>
#include <memory>

namespace host {

class DocumentActions;
class MessageBar;
class ParameterSection;

// One state file's editor, alone on a window.
class StateWindow : public QWidget {
 public:
  explicit StateWindow(std::unique_ptr<ParameterDocument> document);

  DocumentActions& actions() { return *actions_; }
  MessageBar& messages() { return *messages_; }
  ParameterSection& section() { return *section_; }

 protected:
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void updateTitle();

  const std::unique_ptr<ParameterDocument> document_;
  MessageBar* messages_;
  DocumentActions* actions_ = nullptr;
  ParameterSection* section_ = nullptr;
};

}  // namespace host
