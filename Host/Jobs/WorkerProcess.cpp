// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Jobs/WorkerProcess.h"

#include <unistd.h>

#include <chrono>
#include <utility>

namespace host {
namespace {

// Also where the file was replaced since.
constexpr const char* kThisProgram = "/proc/self/exe";

FrameResult failed(const FrameTask& task, const std::string& what) {
  FrameResult result;
  result.index = task.frame.index;
  result.failure = {ExitCode::Effect, "frame " + std::to_string(task.frame.number) + ": " + what};
  return result;
}

}  // namespace

void WorkerProcess::start() {
  const int input = start_.standardInput();
  try {
    process_.emplace(kThisProgram, start_.arguments, start_.slots, input);
  } catch (...) {
    if (input >= 0) ::close(input);
    throw;
  }
  if (input >= 0) ::close(input);
  process_->socket().send(messageOf(start_.hello));
  for (const Task& each : tasks_) process_->socket().send(messageOf(each.task));
}

// One that is gone is found to be so when its results are waited for.
void WorkerProcess::give(const FrameTask& task) {
  tasks_.push_back({task, 0, ""});
  if (process_) {
    process_->socket().send(messageOf(task));
  } else {
    start();
  }
}

std::optional<FrameResult> WorkerProcess::result() {
  if (!process_) return std::nullopt;
  Bytes message;
  switch (process_->socket().receive(&message, std::chrono::milliseconds(0))) {
    case MessageSocket::Received::Nothing:
      return std::nullopt;
    case MessageSocket::Received::End:
      return mourn();
    case MessageSocket::Received::Message:
      break;
  }
  FrameResult result = takeResult(message);
  if (tasks_.empty() || tasks_.front().task.frame.index != result.index) {
    throw Failure(ExitCode::Unexpected, "a process that renders gave a frame that nobody wanted");
  }
  if (const Task& task = tasks_.front(); task.deaths > 0) {
    const std::string text = "frame " + std::to_string(task.task.frame.number) + ": the process that rendered it " +
                             task.death + " and started again";
    result.remarks.insert(result.remarks.begin(), {text, text});
  }
  tasks_.pop_front();
  return result;
}

std::optional<FrameResult> WorkerProcess::mourn() {
  const std::string cause = process_->cause();
  const std::string ending = process_->ending();
  process_.reset();
  if (tasks_.empty()) return std::nullopt;
  Task& task = tasks_.front();
  ++task.deaths;
  if (isRetrying_ && task.deaths == 1) {
    task.death = ending.substr(ending.find(' ') + 1);  // without "it"
    start();
    return std::nullopt;
  }
  FrameResult result = failed(task.task, isRetrying_ ? "the process that rendered it was ended twice: " + cause
                                                     : "the process that rendered it was ended: " + cause);
  tasks_.clear();
  return result;
}

void WorkerProcess::tellEnd() {
  if (process_) process_->socket().send(messageOf(WorkerEnd()));
}

void WorkerProcess::waitForEnd() {
  if (process_) process_->ending();
  process_.reset();
}

}  // namespace host
