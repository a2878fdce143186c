// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/EffectWindow.h"

#include <QAction>

namespace host {

// The window's own actions. Those of the viewer, the player and the document belong to these.
struct EffectWindow::Actions {
  QAction* newWindow;
  QAction* open;
  QAction* openSequence;
  QAction* savePicture;
  QAction* exportFrames;
  QAction* close;
  QAction* chooseEffect;
  QAction* showInspector;
  QAction* showActivity;
  QAction* cancelRender;
  QAction* renderAgain;
  QAction* shortcuts;
  QAction* about;
};

}  // namespace host
