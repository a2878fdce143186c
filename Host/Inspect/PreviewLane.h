// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Preview/PreviewProcess.h"
#include "TarnCore/TCHash128.h"

#include <QElapsedTimer>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <cstdint>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace host {

// Processes that were killed and have not ended yet: a large one takes its time. Nobody waits for them but the
// destructor.
class EndingProcesses {
 public:
  EndingProcesses();
  ~EndingProcesses();
  void end(std::unique_ptr<PreviewProcess> process);

 private:
  std::vector<std::unique_ptr<PreviewProcess>> processes_;
  QTimer timer_;
};

// An order that a process has, and what its report will be about.
struct PreviewTask {
  enum class Kind { Inputs, Full, Quick, Ahead, Count };
  std::uint64_t id = 0;
  Kind kind = Kind::Full;
  std::uint64_t frame = 0;
  std::uint64_t serial = 0;                     // of the state that is rendered
  VortoHash128 fingerprint;                     // of the same
  bool isForgotten = false;                     // nobody wants it any more
  std::shared_ptr<const PreviewInputs> inputs;  // of quick pictures
  PreviewPhase phase = PreviewPhase::Rendering;
  QElapsedTimer since;
};

// A process that renders previews, as it is used on the event thread, and what it has to do. One that died is started
// again when it is told to be.
class PreviewLane {
 public:
  // Takes a report, and the task that it is about: null where there is none. A process that died is reported of the
  // task that it was at, then of none; its other tasks are dropped.
  using Heard = std::function<void(PreviewReport& report, const PreviewTask* task)>;
  PreviewLane(EndingProcesses& ending, std::shared_ptr<BitmapReleases> releases, Heard heard)
      : ending_(ending), releases_(std::move(releases)), heard_(std::move(heard)) {}
  ~PreviewLane() { stop(); }
  PreviewLane(const PreviewLane&) = delete;
  PreviewLane& operator=(const PreviewLane&) = delete;

  void start(const PreviewHello& hello);  // another one, in place of what there is; throws Failure
  void stop();

  bool isRunning() const { return process_ != nullptr; }
  bool isReady() const { return process_ && isOpened_; }
  const std::deque<PreviewTask>& tasks() const { return tasks_; }
  bool isIdle() const { return isReady() && tasks_.empty(); }
  std::size_t countOf(PreviewTask::Kind kind) const;
  const QElapsedTimer& startedAt() const { return started_; }

  void order(PreviewTask task, const PreviewOrder& order);
  // The same, with those of the states that it does not have yet.
  void render(PreviewTask task, RenderOrder order, const std::vector<ParameterState>& states);
  void dropAhead();    // those that have not begun are reported as dropped
  void forgetAhead();  // in addition nobody wants those that have

 private:
  void read();
  void hear(PreviewReport& report);
  std::optional<PreviewTask> finished(std::uint64_t id);
  void send(const PreviewOrder& order);

  EndingProcesses& ending_;
  const std::shared_ptr<BitmapReleases> releases_;
  const Heard heard_;
  std::unique_ptr<PreviewProcess> process_;
  std::unique_ptr<QSocketNotifier> readable_;
  std::unique_ptr<QSocketNotifier> writable_;
  QElapsedTimer started_;
  bool isOpened_ = false;
  std::uint64_t starts_ = 0;
  std::deque<PreviewTask> tasks_;  // in the order in which they are done
  std::unordered_map<std::string, Bytes> states_;
  std::shared_ptr<const PreviewInputs> given_;
};

}  // namespace host
