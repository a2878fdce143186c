// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Inspect/CoalescedCall.h"
#include "Host/Inspect/ParameterDocument.h"
#include "Host/Inspect/PortWatch.h"
#include "Platform/Foundation/NSNotificationCenter.h"

#include <functional>
#include <memory>
#include <vector>

namespace host {

// Watches the editors of a document at work: tells of every change, and makes steps of the history. What happens while
// the events at hand are handled is one step, and so is all between the start and the end of an interaction; a change
// that comes just before its start, in the same press of the button, belongs to it.
class EditRecorder {
 public:
  struct Told {
    std::function<void(QCPort& port)> valueChanged;
    std::function<void(QCPort& port)> interactionStarted;
    std::function<void()> historyChanged;
  };
  EditRecorder(ParameterDocument& document, Told told);

  void commitNow() { commit_.runNow(); }

 private:
  void watch(QCPort& port);

  ParameterDocument& document_;
  const Told told_;
  CoalescedCall commit_;
  std::vector<std::unique_ptr<PortWatch>> watches_;
  std::vector<NSNotificationCenter::Observation> observations_;
};

}  // namespace host
