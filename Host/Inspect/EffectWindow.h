// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/CoalescedCall.h"
#include "Host/Inspect/EffectSession.h"

#include <QMainWindow>

namespace host {

class DocumentActions;
class InspectorColumn;
class MessageBar;
class TransportBar;
class Viewer;

// An effect's full inspector: the preview, which is rendered again after every change, and the column of parameters.
// Rendering is coalesced: while it takes its time any number of changes make one more.
class EffectWindow : public QMainWindow {
 public:
  explicit EffectWindow(EffectSession& session);

  // The preview as it would be once all that is pending was done.
  void renderNow() { render_.runNow(); }
  const Viewer& preview() const { return *preview_; }
  MessageBar& messages() { return *messages_; }
  TransportBar& transport() { return *transport_; }
  InspectorColumn& column() { return *column_; }
  DocumentActions& actions() { return *actions_; }
  int renderCount() const { return renderCount_; }

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void dragEnterEvent(QDragEnterEvent* event) override;
  void dropEvent(QDropEvent* event) override;
  void closeEvent(QCloseEvent* event) override;

 private:
  void layOut();
  void addMenus();
  bool goTo(std::uint64_t position);
  bool render();
  void savePicture();
  void updateTitle();

  EffectSession& session_;
  CoalescedCall render_;
  Viewer* preview_;
  MessageBar* messages_;
  TransportBar* transport_ = nullptr;
  DocumentActions* actions_ = nullptr;
  InspectorColumn* column_ = nullptr;
  int renderCount_ = 0;
};

}  // namespace host
