// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Texts/StateKind.h"

#include <QWidget>

class QCPort;

namespace host {

class FlatButton;
class PresetTray;

// The presets of a parameter, folded away until they are wanted: a button that opens the tray beneath it. The tray is
// made then, so that files are read by those alone who look for them.
//
// The port must outlive it.
class PresetPart : public QWidget {
 public:
  PresetPart(QCPort& port, StateKind kind, QWidget* parent);

  void setOpen(bool open);
  PresetTray* tray() const { return tray_; }  // null until it was opened

 private:
  QCPort& port_;
  const StateKind kind_;
  FlatButton* button_;
  PresetTray* tray_ = nullptr;
};

}  // namespace host
