// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PreviewLane.h"

#include <QElapsedTimer>
#include <algorithm>
#include <utility>

namespace host {
namespace {

constexpr int kReapMilliseconds = 20;
constexpr int kLongestReading = 8;  // milliseconds

// Of a report that finishes a task.
std::optional<std::uint64_t> finishedBy(const PreviewReport& report) {
  if (const auto* inputs = std::get_if<PreviewInputs>(&report)) return inputs->id;
  if (const auto* rendered = std::get_if<PreviewRendered>(&report)) return rendered->id;
  if (const auto* counts = std::get_if<PreviewCounts>(&report)) return counts->id;
  if (const auto* failed = std::get_if<PreviewFailed>(&report)) return failed->id;
  if (const auto* dropped = std::get_if<PreviewDropped>(&report)) return dropped->id;
  return std::nullopt;
}

}  // namespace

EndingProcesses::EndingProcesses() {
  timer_.setInterval(kReapMilliseconds);
  timer_.callOnTimeout([this] {
    std::erase_if(processes_, [](const auto& process) { return process->hasEnded(); });
    if (processes_.empty()) timer_.stop();
  });
}

EndingProcesses::~EndingProcesses() = default;

void EndingProcesses::end(std::unique_ptr<PreviewProcess> process) {
  process->kill();
  processes_.push_back(std::move(process));
  timer_.start();
}

void PreviewLane::start(const PreviewHello& hello) {
  stop();
  process_ = std::make_unique<PreviewProcess>(hello, releases_);
  started_.start();
  readable_ = std::make_unique<QSocketNotifier>(process_->descriptor(), QSocketNotifier::Read);
  writable_ = std::make_unique<QSocketNotifier>(process_->descriptor(), QSocketNotifier::Write);
  writable_->setEnabled(process_->wantsToWrite());
  QObject::connect(readable_.get(), &QSocketNotifier::activated, readable_.get(), [this] { read(); });
  QObject::connect(writable_.get(), &QSocketNotifier::activated, writable_.get(), [this] {
    process_->write();
    writable_->setEnabled(process_->wantsToWrite());
  });
}

// The notifiers may be at it: they go later.
void PreviewLane::stop() {
  ++starts_;
  for (auto* notifier : {&readable_, &writable_}) {
    if (!*notifier) continue;
    (*notifier)->setEnabled(false);
    notifier->release()->deleteLater();
  }
  if (process_) ending_.end(std::move(process_));
  isOpened_ = false;
  tasks_.clear();
  states_.clear();
  given_.reset();
}

std::size_t PreviewLane::countOf(PreviewTask::Kind kind) const {
  return static_cast<std::size_t>(std::ranges::count(tasks_, kind, &PreviewTask::kind));
}

void PreviewLane::send(const PreviewOrder& order) {
  process_->send(order);
  writable_->setEnabled(process_->wantsToWrite());
}

void PreviewLane::order(PreviewTask task, const PreviewOrder& order) {
  task.since.start();
  tasks_.push_back(std::move(task));
  send(order);
}

void PreviewLane::render(PreviewTask task, RenderOrder order, const std::vector<ParameterState>& states) {
  for (const ParameterState& state : states) {
    Bytes& sent = states_[state.key];
    if (sent == state.state) continue;
    sent = state.state;
    order.changed.push_back(state);
  }
  if (task.inputs && task.inputs != given_) {
    given_ = task.inputs;
    order.given = GivenInputs{given_->bitmaps, given_->depth, given_->resultSize};
  }
  this->order(std::move(task), std::move(order));
}

void PreviewLane::dropAhead() {
  if (process_ && countOf(PreviewTask::Kind::Ahead) > 0) send(DropOrder());
}

void PreviewLane::forgetAhead() {
  for (PreviewTask& task : tasks_) {
    if (task.kind == PreviewTask::Kind::Ahead) task.isForgotten = true;
  }
  dropAhead();
}

// What is heard may start or stop it. People come first: after a while the rest is read from another event.
void PreviewLane::read() {
  const std::uint64_t start = starts_;
  QElapsedTimer reading;
  reading.start();
  while (process_ && starts_ == start && reading.elapsed() < kLongestReading) {
    std::optional<PreviewReport> report = process_->next();
    if (!report) return;
    hear(*report);
  }
}

std::optional<PreviewTask> PreviewLane::finished(std::uint64_t id) {
  const auto found = std::ranges::find(tasks_, id, &PreviewTask::id);
  if (found == tasks_.end()) return std::nullopt;
  PreviewTask task = std::move(*found);
  tasks_.erase(found);
  return task;
}

void PreviewLane::hear(PreviewReport& report) {
  if (std::holds_alternative<PreviewOpened>(report)) isOpened_ = true;
  if (const auto* progress = std::get_if<PreviewProgress>(&report)) {
    const auto found = std::ranges::find(tasks_, progress->id, &PreviewTask::id);
    if (found != tasks_.end()) found->phase = progress->phase;
  }
  if (std::holds_alternative<PreviewDied>(report) || std::holds_alternative<PreviewRefused>(report)) {
    const std::deque<PreviewTask> tasks = std::move(tasks_);
    stop();
    // The first is what it was at.
    for (const PreviewTask& task : tasks) {
      PreviewReport dropped = PreviewDropped{task.id};
      heard_(&task == &tasks.front() ? report : dropped, &task);
    }
    return heard_(report, nullptr);
  }
  const auto id = finishedBy(report);
  if (!id) return heard_(report, nullptr);
  // Only those that were wanted finish something.
  if (const auto task = finished(*id)) heard_(report, &*task);
}

}  // namespace host
