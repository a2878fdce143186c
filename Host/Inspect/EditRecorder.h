// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/CoalescedCall.h"
#include "Host/Inspect/ParameterDocument.h"
#include "Host/Inspect/PortWatch.h"
#include "Platform/Foundation/NSNotificationCenter.h"

#include <QObject>
#include <functional>
#include <memory>
#include <vector>

namespace host {

// Watches the editors of a document at work: tells of every change, and makes steps of the history. What one event of
// mouse or keyboard does is one step, and so is all between the start and the end of an interaction, or while a color
// picker is open; a change that comes just before its start, in the same press of the button, belongs to it. After
// every drop it looks for itself: colors that are dropped on an editor are announced by nobody.
class EditRecorder : public QObject {
 public:
  struct Told {
    std::function<void(QCPort& port)> valueChanged;
    std::function<void(QCPort& port)> interactionStarted;
    std::function<void()> interactionsChanged = {};  // whether any runs
    std::function<void()> historyChanged;
  };
  EditRecorder(ParameterDocument& document, Told told);

  void commitNow() { commit_.runNow(); }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;  // of the application

 private:
  void watch(QCPort& port);
  void watchPickers();
  void endInteraction(const void* source);
  void tellInteractions();
  void tellOfDrop();

  ParameterDocument& document_;
  const Told told_;
  CoalescedCall commit_;
  CoalescedCall dropped_;
  std::vector<std::unique_ptr<PortWatch>> watches_;
  std::vector<NSNotificationCenter::Observation> observations_;
};

}  // namespace host
