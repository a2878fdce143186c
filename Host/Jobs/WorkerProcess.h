// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Jobs/Task.h"
#include "Host/Processes/ChildProcess.h"

#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace host {

// How workers are started.
struct WorkerStart {
  std::vector<std::string> arguments;
  std::vector<int> slots;              // descriptors
  std::function<int()> standardInput;  // a descriptor that is the caller's to close, -1 for an empty one
  WorkerHello hello;
};

// A worker as its coordinator sees it: a process, and the tasks that it has not finished. A process that dies over a
// task is started again, once.
class WorkerProcess {
 public:
  // `start` outlives it. `isRetrying`: false where what a process has rendered matters to what it renders next.
  WorkerProcess(const WorkerStart& start, bool isRetrying) : start_(start), isRetrying_(isRetrying) {}

  void start();  // ahead of its first task
  std::size_t taskCount() const { return tasks_.size(); }
  void give(const FrameTask& task);

  int descriptor() const { return process_ ? process_->socket().descriptor() : -1; }
  // What it has said since; the failure of its first task when it died over it again. Nothing when there is none.
  std::optional<FrameResult> result();

  // After its last task. It ends by itself.
  void tellEnd();
  void waitForEnd();

 private:
  struct Task {
    FrameTask task;
    unsigned deaths = 0;
    std::string death = "";  // of the first process that had it
  };
  std::optional<FrameResult> mourn();

  const WorkerStart& start_;
  const bool isRetrying_;
  std::optional<ChildProcess> process_;
  std::deque<Task> tasks_;  // in the order in which they are rendered
};

}  // namespace host
