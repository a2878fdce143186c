// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Jobs/Worker.h"

#include "Host/Files/StandardInput.h"
#include "Host/Jobs/FrameOutput.h"
#include "Host/Jobs/SlotClips.h"
#include "Host/Jobs/Task.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/StandardErrorSilenced.h"
#include "Host/Processes/ChildProcess.h"
#include "Host/Rendering/Effects.h"

#include <fcntl.h>
#include <sys/socket.h>

#include <exception>
#include <memory>
#include <utility>

namespace host {
namespace {

std::optional<FailureReport> failureOf(const std::function<void()>& work) {
  try {
    work();
    return std::nullopt;
  } catch (const std::exception&) {
    const Failure failure = caughtFailure();
    return FailureReport{failure.code, failure.what()};
  }
}

class Worker {
 public:
  using Prepare = std::function<WorkerParts()>;
  Worker(const std::vector<std::string>& pythonFiles, const Prepare& prepare, const WorkerHello& hello)
      : slots_(kFirstInherited, hello.slots), failure_(failureOf([&] { begin(pythonFiles, prepare, hello); })) {}

  FrameResult rendered(const FrameTask& task) {
    FrameResult result;
    result.index = task.frame.index;
    result.remarks = std::exchange(firstRemarks_, {});
    result.failure = failure_;
    if (failure_) return result;
    const RemarksRedirected remarks([&](Remark remark) { result.remarks.push_back(std::move(remark)); });
    result.failure = failureOf([&] { render(task, &result); });
    return result;
  }

 private:
  void begin(const std::vector<std::string>& pythonFiles, const Prepare& prepare, const WorkerHello& hello) {
    {
      const StandardErrorSilenced silence;
      const RemarksRedirected nowhere([](const Remark&) {});
      loadEffects(pythonFiles);
      parts_.emplace(prepare());
      rendering_ = std::make_unique<FrameRendering>(parts_->setup);
    }
    clips_ = std::make_unique<SlotClips>(hello.clips, parts_->setup.inputs, slots_);
    const RemarksRedirected remarks([&](Remark remark) { firstRemarks_.push_back(std::move(remark)); });
    rendering_->begin(hello.first, clips_.get(), parts_->output.description());
  }

  void render(const FrameTask& task, FrameResult* result) {
    clips_->lieIn(task.slots);
    OutputDescription output = parts_->output.description();
    output.channels = task.channels;
    const OutputPicture picture = rendering_->render(task.frame, output);
    result->clippedPixels = leaveFrame(picture, task, parts_->output, slots_, &result->stored);
    if (result->clippedPixels > 0) result->clippedSpace = rendering_->inputs().colors().clippedSpace();
  }

  FrameSlots slots_;
  std::optional<WorkerParts> parts_;
  std::unique_ptr<FrameRendering> rendering_;
  std::unique_ptr<SlotClips> clips_;
  std::vector<Remark> firstRemarks_;      // from before the first task
  std::optional<FailureReport> failure_;  // before the first task: that of every one
};

MessageSocket connectionToCoordinator() {
  int type = 0;
  socklen_t size = sizeof type;
  if (::getsockopt(kChildSocket, SOL_SOCKET, SO_TYPE, &type, &size) != 0 ||
      ::fcntl(kChildSocket, F_SETFD, FD_CLOEXEC) != 0) {
    throw Failure(ExitCode::Usage, "--worker: this is how the program starts itself");
  }
  return MessageSocket(kChildSocket);
}

}  // namespace

void runWorker(const std::vector<std::string>& pythonFiles, const std::function<WorkerParts()>& prepare) {
  MessageSocket coordinator = connectionToCoordinator();
  Bytes message;
  if (!coordinator.receive(&message)) return;
  const WorkerOrder first = takeOrder(message);
  const auto* const hello = std::get_if<WorkerHello>(&first);
  if (!hello) return;
  if (hello->isInputKept) standardInputIsKept();
  Worker worker(pythonFiles, prepare, *hello);
  while (coordinator.receive(&message)) {
    const WorkerOrder order = takeOrder(message);
    const auto* const task = std::get_if<FrameTask>(&order);
    if (!task || !coordinator.send(messageOf(worker.rendered(*task)))) return;
  }
}

}  // namespace host
