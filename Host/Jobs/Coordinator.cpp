// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Jobs/Coordinator.h"

#include "Host/Files/StandardInput.h"
#include "Host/Jobs/ClipWindow.h"
#include "Host/Jobs/ResultOutput.h"
#include "Host/Jobs/WorkerProcess.h"
#include "Host/Messages/Failure.h"
#include "Host/Messages/Progress.h"
#include "Host/Messages/Remark.h"
#include "Host/Rendering/ColorFlow.h"

#include <poll.h>
#include <sched.h>

#include <algorithm>
#include <cerrno>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace host {
namespace {

// A worker has one frame in work and the next one waiting.
constexpr std::size_t kTasksOfWorker = 2;

// A reader or writer of clips that keeps silent is waited for by itself, with its own patience, when nothing else goes
// on for so long.
constexpr int kSilence = 1000;  // milliseconds

std::size_t slotsForResults(unsigned workers, bool usesSlots) {
  return usesSlots ? kTasksOfWorker * workers + 2 : 0;
}

WorkerHello helloOf(const JobRun& run, std::size_t slots) {
  WorkerHello hello;
  hello.slots = static_cast<std::uint32_t>(slots);
  for (const ClipInfo* info : run.clips->infos()) {
    hello.clips.push_back(info ? std::make_shared<const ClipInfo>(*info) : nullptr);
  }
  hello.first = run.plan->frame(0);
  hello.isInputKept = isStandardInputKept();
  return hello;
}

// Frames are counted in the order in which they are rendered.
class Coordinator {
 public:
  explicit Coordinator(const JobRun& run);
  void render();

 private:
  struct Done {
    FrameResult result;
    std::size_t slot = 0;
    ClipWindow::Damage damage;
  };
  struct Watched {
    pollfd poll;
    std::function<void()> react;
  };

  std::uint64_t count() const { return run_.frames.count(); }
  PlannedFrame frame(std::uint64_t number) const { return run_.plan->frame(run_.frames[number]); }
  bool isOver() const { return used_ == end_; }

  void renderAll();
  void giveTasks();
  bool giveTask(WorkerProcess& worker);
  void takeResult(WorkerProcess& worker);
  void takeFailure(std::uint64_t number, const FailureReport& failure);
  void takeClipFailures();
  void useResults();
  void use(std::uint64_t number, const Done& done);
  void say(const std::vector<Remark>& remarks);
  void wait();
  std::vector<Watched> watched();
  void waitForSilentClips();
  void finish();

  const JobRun& run_;
  FrameSlots resultSlots_;
  ResultOutput output_;
  ClipWindow clips_;
  WorkerStart start_;
  std::deque<WorkerProcess> workers_;
  std::map<std::uint64_t, std::size_t> slots_;  // of frames that are rendered: where the results go
  std::map<std::uint64_t, Done> done_;
  const std::uint64_t ahead_;  // how many frames further than they are given clips are looked through
  std::uint64_t given_ = 0;    // frames below this one were given to workers
  std::uint64_t used_ = 0;     // frames below this one have arrived
  std::uint64_t end_;          // the first frame that failed, or the number of frames
  std::optional<FailureReport> failure_;
  std::set<std::string> told_;
  std::uint64_t clippedPixels_ = 0;
  std::string clippedSpace_;
};

Coordinator::Coordinator(const JobRun& run)
    : run_(run),
      resultSlots_(slotsForResults(run.workers, run.output.usesSlots())),
      output_(run.output, resultSlots_),
      clips_(*run.clips, *run.plan, run.frames),
      ahead_(kTasksOfWorker * run.workers + slotsOfClip(run.workers)),
      end_(run.frames.count()) {
  for (std::size_t i = 0; i < run.clips->inputs(); ++i) {
    if (const FrameSlots* const slots = run.clips->slots(i)) {
      const std::vector<int> own = slots->descriptors();
      start_.slots.insert(start_.slots.end(), own.begin(), own.end());
    }
  }
  const std::vector<int> results = resultSlots_.descriptors();
  start_.slots.insert(start_.slots.end(), results.begin(), results.end());
  start_.hello = helloOf(run, start_.slots.size());
  start_.arguments = run.arguments;
  start_.standardInput = openedStandardInput;
  for (unsigned i = 0; i < run.workers; ++i) workers_.emplace_back(start_, !run.keepsState).start();
}

void Coordinator::render() {
  try {
    renderAll();
  } catch (const Failure&) {
    clips_.tellOfDamage();
    throw;
  }
  clips_.tellOfDamage();
  tellOfClipping(clippedPixels_, clippedSpace_);
}

void Coordinator::renderAll() {
  Progress progress(count());
  while (!isOver()) {
    clips_.wantAhead(std::min(end_, given_ + ahead_));
    takeClipFailures();
    giveTasks();
    if (!isOver()) wait();
    useResults();
    progress.finished(used_);
  }
  if (failure_) throw Failure(failure_->code, failure_->message);
  finish();
}

// Those without work first.
void Coordinator::giveTasks() {
  for (std::size_t tasks = 0; tasks < kTasksOfWorker; ++tasks) {
    for (WorkerProcess& worker : workers_) {
      if (worker.taskCount() == tasks && !giveTask(worker)) return;
    }
  }
}

bool Coordinator::giveTask(WorkerProcess& worker) {
  const bool mustWaitForFirst = output_.decidesWithFirst() && given_ > 0 && used_ == 0;
  if (given_ >= end_ || mustWaitForFirst || !clips_.isReady(given_)) return false;
  FrameTask task;
  if (output_.usesSlots()) {
    const auto slot = output_.freeSlot();
    if (!slot) return false;
    slots_[given_] = *slot;
    task.outputSlot = static_cast<std::uint32_t>(start_.slots.size() - resultSlots_.count() + *slot);
  }
  task.frame = frame(given_);
  task.slots = clips_.slotsOf(given_);
  task.channels = output_.channels();
  task.isFirst = given_ == 0;
  ++given_;
  worker.give(task);
  return true;
}

void Coordinator::takeResult(WorkerProcess& worker) {
  auto result = worker.result();
  if (!result) return;
  const std::uint64_t number = run_.frames.placeOf(result->index);
  ClipWindow::Damage damage = clips_.damageIn(number);
  clips_.release(number);
  if (result->failure) takeFailure(number, *result->failure);
  const auto slot = slots_.find(number);
  done_[number] = {std::move(*result), slot == slots_.end() ? 0 : slot->second, std::move(damage)};
}

// The first one in order ends the run. What comes behind it is not begun any more.
void Coordinator::takeFailure(std::uint64_t number, const FailureReport& failure) {
  if (number >= end_) return;
  end_ = number;
  failure_ = failure;
}

void Coordinator::takeClipFailures() {
  if (const auto& broken = clips_.broken()) takeFailure(broken->frame, broken->failure);
}

void Coordinator::useResults() {
  for (auto next = done_.find(used_); next != done_.end() && used_ < end_; next = done_.find(used_)) {
    use(used_, next->second);
    slots_.erase(used_);
    done_.erase(next);
    ++used_;
  }
  const auto failed = done_.find(end_);
  if (isOver() && failed != done_.end()) say(failed->second.result.remarks);
}

void Coordinator::use(std::uint64_t number, const Done& done) {
  say(done.result.remarks);
  clips_.noteDamage(done.damage);
  clippedPixels_ += done.result.clippedPixels;
  if (clippedSpace_.empty()) clippedSpace_ = done.result.clippedSpace;
  output_.use(frame(number), done.result.stored, done.slot);
}

void Coordinator::say(const std::vector<Remark>& remarks) {
  for (const Remark& each : remarks) {
    if (told_.insert(each.about).second) remark(each.text);
  }
}

std::vector<Coordinator::Watched> Coordinator::watched() {
  std::vector<Watched> all;
  const auto watch = [&](int descriptor, std::function<void()> react) {
    if (descriptor >= 0) all.push_back({{descriptor, POLLIN, 0}, std::move(react)});
  };
  for (WorkerProcess& worker : workers_) watch(worker.descriptor(), [&] { takeResult(worker); });
  for (std::size_t i = 0; i < run_.clips->inputs(); ++i) {
    if (clips_.isAwaited(i)) watch(clips_.descriptor(i), [this, i] { clips_.take(i); });
  }
  watch(output_.descriptor(), [this] { output_.takeBack(); });
  return all;
}

void Coordinator::wait() {
  const std::vector<Watched> all = watched();
  std::vector<pollfd> polls;
  polls.reserve(all.size());
  for (const Watched& each : all) polls.push_back(each.poll);
  const int found = ::poll(polls.data(), polls.size(), kSilence);
  if (found < 0 && errno != EINTR) throw Failure(ExitCode::Unexpected, "cannot wait for the processes that render");
  if (found == 0) waitForSilentClips();
  for (std::size_t i = 0; found > 0 && i < all.size(); ++i) {
    if (polls[i].revents != 0) all[i].react();
  }
}

// Workers take as long as their effect does. While none works, a clip is what all wait for: the one that is written
// first, as it needs nothing else to go on.
void Coordinator::waitForSilentClips() {
  const bool isAnyAtWork =
      std::ranges::any_of(workers_, [](const WorkerProcess& worker) { return worker.taskCount() > 0; });
  if (isAnyAtWork) return;
  if (output_.descriptor() >= 0) return output_.takeBack();
  for (std::size_t i = 0; i < run_.clips->inputs(); ++i) {
    if (clips_.isAwaited(i)) return clips_.take(i);
  }
  throw Failure(ExitCode::Unexpected, "nothing is left that could render the next frame");
}

void Coordinator::finish() {
  for (WorkerProcess& worker : workers_) worker.tellEnd();
  output_.finish(run_.end);
  for (WorkerProcess& worker : workers_) worker.waitForEnd();
}

}  // namespace

std::size_t slotsOfClip(unsigned workers) {
  return std::size_t{workers} + 2;
}

// A child has those of slots twice until it is its program.
unsigned workersThatFit(unsigned workers, std::size_t clips, bool usesSlots) {
  constexpr std::size_t others = 24;  // streams, modules, files that are read and written
  const std::size_t most = mostDescriptors();
  const auto needed = [&](unsigned count) {
    return others + count + 2 * (clips * slotsOfClip(count) + slotsForResults(count, usesSlots));
  };
  while (workers > 1 && needed(workers) > most) --workers;
  return workers;
}

void renderInJobs(const JobRun& run) {
  Coordinator(run).render();
}

unsigned usualJobs() {
  cpu_set_t cores;
  CPU_ZERO(&cores);
  if (::sched_getaffinity(0, sizeof cores, &cores) != 0) return 1;
  return static_cast<unsigned>(std::max(CPU_COUNT(&cores), 1));
}

}  // namespace host
