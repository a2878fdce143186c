// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/TarnKit/NSTarnView.h"

#include <QPointer>
#include <QWidget>

class QCPort;

namespace host {

// The place of the editor that a port makes for itself (ParameterView). It is as large as the editor, which may change
// its size. An editor that nobody sees is detached from the port where it can be, so that it costs nothing: that of
// levels would count every image that flows.
//
// The port must outlive it.
class EditorSlot : public QWidget {
 public:
  EditorSlot(QCPort& port, QWidget* parent);

  NSTarnView* editor() const { return editor_; }  // null when the port has none; the slot says so
  bool isAttached() const { return attached_; }
  // Attaches anew, for what an editor reads from its port only then.
  void refresh();

  QSize sizeHint() const override;

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void attach(bool on);

  QCPort& port_;
  QPointer<NSTarnView> editor_;
  bool attached_ = true;
};

}  // namespace host
