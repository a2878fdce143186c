// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/UndoHistory.h"

#include "Platform/QuartzComposer/QCPort.h"
#include "Ports/VRTStateKeys.h"

#include <utility>

namespace host {
namespace {

constexpr std::size_t kMostSteps = 500;
using VRTStateKeys::kSelectedChannel;

}  // namespace

std::optional<PropertyList> editedState(const QCPort& port) {
  return editedState(port.stateValue());
}

std::optional<PropertyList> editedState(std::optional<PropertyList> state) {
  if (state && state->find(kSelectedChannel)) state->set(kSelectedChannel, PropertyList::integer(0));
  return state;
}

void setEditedState(QCPort& port, const std::optional<PropertyList>& state) {
  if (!state) {
    port.setValue(nullptr);
    return;
  }
  PropertyList whole = *state;
  const auto present = port.stateValue();
  const PropertyList* onView = present ? present->find(kSelectedChannel) : nullptr;
  if (onView && whole.find(kSelectedChannel)) whole.set(kSelectedChannel, *onView);
  port.setStateValue(whole, nullptr);
}

UndoHistory::UndoHistory(std::vector<QCPort*> ports) : ports_(std::move(ports)) {
  forget();
}

void UndoHistory::forget() {
  steps_.clear();
  position_ = 0;
  committed_.clear();
  for (const QCPort* port : ports_) committed_.push_back(editedState(*port));
}

std::vector<QCPort*> UndoHistory::changedPorts() const {
  std::vector<QCPort*> changed;
  for (std::size_t i = 0; i < ports_.size(); ++i) {
    if (editedState(*ports_[i]) != committed_[i]) changed.push_back(ports_[i]);
  }
  return changed;
}

bool UndoHistory::commit() {
  if (isInteracting()) return false;
  Step step;
  for (std::size_t i = 0; i < ports_.size(); ++i) {
    State now = editedState(*ports_[i]);
    if (now == committed_[i]) continue;
    step.push_back({i, std::move(committed_[i]), now});
    committed_[i] = std::move(now);
  }
  if (step.empty()) return false;
  steps_.resize(position_);
  steps_.push_back(std::move(step));
  if (steps_.size() > kMostSteps) steps_.erase(steps_.begin());
  position_ = steps_.size();
  return true;
}

bool UndoHistory::prepare() {
  commit();
  return !isInteracting();
}

void UndoHistory::undo() {
  if (!prepare() || !canUndo()) return;
  const Step step = steps_[--position_];
  for (const Change& change : step) give(change.port, change.before);
}

void UndoHistory::redo() {
  if (!prepare() || !canRedo()) return;
  const Step step = steps_[position_++];
  for (const Change& change : step) give(change.port, change.after);
}

void UndoHistory::give(std::size_t port, const State& state) {
  setEditedState(*ports_[port], state);
  committed_[port] = editedState(*ports_[port]);
}

}  // namespace host
