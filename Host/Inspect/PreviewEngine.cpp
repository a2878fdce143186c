// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Inspect/PreviewEngine.h"

#include "Host/Inspect/PreviewLane.h"
#include "Host/Messages/Failure.h"
#include "Host/Preview/PreviewMessages.h"
#include "Host/Preview/QuickSize.h"
#include "Host/Processes/ChildProcess.h"
#include "Platform/QuartzComposer/QCPort.h"
#include "TarnCore/TCBitmap.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <unordered_map>
#include <utility>

namespace host {
namespace {

using Timing = PreviewOpened::Timing;
using Kind = PreviewTask::Kind;

// A full picture that takes less is on the screen as fast as a quick one would be, though it is to be made smaller
// there.
constexpr double kCheapMilliseconds = 3;
// What full pictures are taken to need before one was rendered.
constexpr double kMillisecondsPerMegabyte = 0.6;

constexpr int kRestMilliseconds = 150;    // a hand that holds something rests
constexpr int kResizeMilliseconds = 200;  // the view has its size
constexpr int kBusyMilliseconds = 500;    // between reports; the first comes after two of these
constexpr int kStaleMilliseconds = 2000;
constexpr int kMostDeaths = 3;
constexpr std::size_t kAheadOfLane = 2;  // one that is rendered, and one that waits

std::uint64_t bytesOfMemory() {
  return static_cast<std::uint64_t>(::sysconf(_SC_PHYS_PAGES)) * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

PictureSize sizeOf(const VortoBitmap& bitmap) {
  return {bitmap.width, bitmap.height};
}

void add(VortoHash128* print, const Bytes& bytes) {
  const auto size = static_cast<std::uint32_t>(bytes.size());
  print->addData(reinterpret_cast<const unsigned char*>(&size), sizeof size);
  print->addData(bytes.data(), size);
}

}  // namespace

class PreviewEngine::Work {
 public:
  explicit Work(Told told);

  void open(const PreviewSetup& setup);
  void setParameters(const std::vector<QCPort*>& ports);
  void setHeld(bool held);
  void setViewSize(const PictureSize& size);
  void goTo(std::uint64_t frame);
  void change();
  void dropStale();
  void cancel();
  bool isSettled() const;
  std::size_t mostAhead() const;
  void orderAhead(std::uint64_t frame);
  void dropAhead();

  std::vector<Told> listeners;
  PreviewSetup setup;
  std::optional<PreviewOpened> opened;
  std::optional<PreviewFailure> refusal;
  std::optional<PreviewFailure> failure;
  std::uint64_t frame = 0;
  VortoHash128 fingerprint;
  PreviewPictureRef shown;
  std::uint64_t inputBudget = bytesOfMemory() / 8;
  PreviewPictureRef fullPicture() const { return shownSerial_ == serial_ && shown && shown->isFull ? shown : nullptr; }

 private:
  template <class Member, class... Arguments>
  void tell(Member member, const Arguments&... arguments) {
    for (std::size_t i = 0; i < listeners.size(); ++i) {
      const auto function = listeners[i].*member;
      if (function) function(arguments...);
    }
  }
  struct Ahead {
    std::uint64_t frame = 0;
    VortoHash128 fingerprint;
  };
  PreviewHello hello(bool takesInputs) const;
  void start(PreviewLane& lane);
  void startAnew();
  void findFingerprint();
  void findBusy();

  void pump();
  void pumpFull();
  void pumpQuick();
  void pumpAhead();
  bool orderNextAhead();
  bool isFullWanted() const;
  bool areInputsWanted() const;
  bool isCountWanted() const;
  bool isQuickWorthwhile() const;
  bool isCheap() const { return fullCost_ < kCheapMilliseconds; }
  bool isResting() const { return !isHeld_ || hasRested_; }
  std::uint64_t inputsKey() const { return opened->timing == Timing::Frames ? frame : 0; }
  PreviewTask task(Kind kind);
  void orderFull();
  void orderInputs();

  void hearFull(PreviewReport& report, const PreviewTask* task);
  void hearQuick(PreviewReport& report, const PreviewTask* task);
  void hearAhead(PreviewReport& report, const PreviewTask* task);
  void hearCommon(PreviewLane& lane, PreviewReport& report, const PreviewTask* task);
  void begin(PreviewOpened& report);
  void refuse(PreviewFailure failure);
  void takeFull(PreviewRendered& rendered, const PreviewTask& task);
  void takeQuick(PreviewRendered& rendered, const PreviewTask& task);
  void takeAhead(PreviewReport& report, const PreviewTask& task);
  void takeInputs(PreviewInputs& inputs);
  void takeFailure(const PreviewTask& task, PreviewFailure failure);
  void failAhead(const std::deque<Ahead>& frames, PreviewFailure cause);
  void show(PreviewPictureRef picture, const PreviewTask& task);
  void mourn(PreviewLane& lane, const std::string& cause);
  PreviewFailure deathOf(const PreviewTask& task, const std::string& cause) const;

  EndingProcesses ending_;  // outlives the lanes
  std::shared_ptr<BitmapReleases> releases_ = BitmapReleases::shared();
  PreviewLane full_;
  PreviewLane quick_;
  PreviewLane ahead_;
  int deaths_ = 0;  // without anything in between that came

  std::vector<ParameterState> states_;
  std::optional<double> startTime_;  // of the effect, for the frame that a transition between stills begins with
  std::uint64_t serial_ = 1;         // of what is wanted: frame and states
  std::uint64_t lastId_ = 0;
  std::uint64_t fullDone_ = 0;  // serials: of what was rendered or has failed, what is shown, what was counted
  std::uint64_t quickDone_ = 0;
  std::uint64_t shownSerial_ = 0;
  std::uint64_t countable_ = 0;
  std::uint64_t counted_ = 0;

  PictureSize viewSize_;
  std::shared_ptr<const PreviewInputs> inputs_;
  PictureSize inputsViewSize_;
  std::optional<std::uint64_t> failedInputs_;  // of that frame
  PreviewPictureRef lastFull_;
  double fullCost_ = 0;  // milliseconds
  bool isHeld_ = false;
  bool hasRested_ = false;
  QTimer rest_;
  QTimer resize_;

  std::deque<Ahead> aheadWanted_;
  std::unordered_map<std::uint64_t, PreviewLane*> readers_;  // of frames: who has decoded them last
  std::set<std::string> remarks_;

  QTimer busy_;
  bool isBusyTold_ = false;
  bool isAheadOff_ = false;  // it was refused or died: one process does all, until something is opened anew
};

PreviewEngine::Work::Work(Told told)
    : full_(ending_, releases_, [this](PreviewReport& report, const PreviewTask* task) { hearFull(report, task); }),
      quick_(ending_, releases_, [this](PreviewReport& report, const PreviewTask* task) { hearQuick(report, task); }),
      ahead_(ending_, releases_, [this](PreviewReport& report, const PreviewTask* task) { hearAhead(report, task); }) {
  listeners.push_back(std::move(told));
  mostDescriptors();  // pictures have one each
  rest_.setSingleShot(true);
  rest_.callOnTimeout([this] {
    hasRested_ = true;
    pump();
  });
  resize_.setSingleShot(true);
  resize_.callOnTimeout([this] { pump(); });
  busy_.setInterval(kBusyMilliseconds);
  busy_.callOnTimeout([this] { findBusy(); });
}

// What is wanted.

PreviewHello PreviewEngine::Work::hello(bool takesInputs) const {
  return {setup, takesInputs, takesInputs ? 0 : inputBudget / 2};
}

void PreviewEngine::Work::open(const PreviewSetup& wanted) {
  setup = wanted;
  for (PreviewLane* lane : {&full_, &quick_, &ahead_}) lane->stop();
  opened.reset();
  refusal.reset();
  failure.reset();
  shown.reset();
  lastFull_.reset();
  inputs_.reset();
  failedInputs_.reset();
  aheadWanted_.clear();
  readers_.clear();
  remarks_.clear();
  startTime_.reset();
  frame = 0;
  deaths_ = 0;
  isAheadOff_ = false;
  fullCost_ = 0;
  ++serial_;
  findFingerprint();
  startAnew();
  busy_.start();
}

void PreviewEngine::Work::start(PreviewLane& lane) {
  try {
    lane.start(hello(&lane == &quick_));
  } catch (const Failure& cause) {
    refuse({PreviewFailure::Cause::Died, PreviewPhase::Starting, cause.code, cause.what(), frame});
  }
}

void PreviewEngine::Work::startAnew() {
  if (!full_.isRunning()) start(full_);
  // Not in the way of the first picture.
  if (opened && !quick_.isRunning() && !setup.inputs.empty()) start(quick_);
}

void PreviewEngine::Work::findFingerprint() {
  fingerprint = {};
  add(&fingerprint, messageOf(PreviewHello{setup, false, 0}, -1));
  for (const ParameterState& state : states_) {
    add(&fingerprint, Bytes(state.key.begin(), state.key.end()));
    add(&fingerprint, state.state);
  }
  if (startTime_) add(&fingerprint, Bytes{1});
}

void PreviewEngine::Work::setParameters(const std::vector<QCPort*>& ports) {
  std::vector<ParameterState> states;
  for (const QCPort* port : ports) {
    const auto state = port->stateValue();
    auto bytes = state ? PropertyListToBytes(*state, PropertyListFormat::Binary, nullptr) : std::nullopt;
    states.push_back({port->key(), bytes ? std::move(*bytes) : Bytes()});
  }
  if (states == states_) return;
  states_ = std::move(states);
  if (!setup.effect.empty()) change();  // else open() is still to come
}

// Something that pictures depend on is another.
void PreviewEngine::Work::change() {
  ++serial_;
  findFingerprint();
  aheadWanted_.clear();
  hasRested_ = false;
  if (isHeld_) rest_.start(kRestMilliseconds);
  if (refusal && refusal->cause == PreviewFailure::Cause::Failed) return;
  refusal.reset();
  dropStale();
  startAnew();
  pump();
}

// A render that nobody waits for any more, and that takes long, gives way: what was read is read again.
void PreviewEngine::Work::dropStale() {
  if (full_.tasks().empty()) return;
  const PreviewTask& task = full_.tasks().front();
  const bool renders = task.kind == Kind::Full && task.phase == PreviewPhase::Rendering;
  if (renders && task.since.elapsed() > kStaleMilliseconds) full_.stop();
}

void PreviewEngine::Work::setHeld(bool held) {
  if (isHeld_ == held) return;
  isHeld_ = held;
  hasRested_ = false;
  if (held) rest_.start(kRestMilliseconds);
  pump();
}

void PreviewEngine::Work::setViewSize(const PictureSize& size) {
  if (viewSize_ == size) return;
  viewSize_ = size;
  if (inputs_) {
    resize_.start(kResizeMilliseconds);
  } else {
    pump();
  }
}

void PreviewEngine::Work::goTo(std::uint64_t wanted) {
  if (opened) wanted = std::min(wanted, opened->count - 1);
  if (wanted == frame) return;
  frame = wanted;
  startTime_.reset();
  change();
}

void PreviewEngine::Work::cancel() {
  bool isAny = false;
  std::deque<Ahead> aheads = std::exchange(aheadWanted_, {});
  for (PreviewLane* lane : {&full_, &quick_, &ahead_}) {
    if (!lane->isRunning() || lane->isIdle()) continue;
    isAny = true;
    for (const PreviewTask& task : lane->tasks()) {
      if (task.kind == Kind::Ahead && !task.isForgotten) aheads.push_back({task.frame, task.fingerprint});
    }
    lane->stop();
  }
  if (!isAny) return;
  PreviewFailure cancelled{PreviewFailure::Cause::Cancelled, PreviewPhase::Rendering, ExitCode::Effect,
                           "the rendering of \"" + setup.effect + "\" was cancelled", frame};
  fullDone_ = quickDone_ = serial_;
  if (!opened) {
    cancelled.phase = PreviewPhase::Starting;
    return refuse(std::move(cancelled));
  }
  startAnew();  // so that the next change finds it ready
  failure = cancelled;
  tell(&Told::failed, cancelled);
  failAhead(aheads, cancelled);
  findBusy();
}

bool PreviewEngine::Work::isSettled() const {
  if (refusal) return true;
  if (!opened || fullDone_ != serial_) return false;
  const auto isNeeded = [](const PreviewTask& task) { return task.kind != Kind::Ahead && task.kind != Kind::Inputs; };
  return std::ranges::none_of(full_.tasks(), isNeeded) && std::ranges::none_of(quick_.tasks(), isNeeded) &&
         !isCountWanted();
}

std::size_t PreviewEngine::Work::mostAhead() const {
  return kAheadOfLane * (ahead_.isRunning() ? 2 : 1);
}

void PreviewEngine::Work::orderAhead(std::uint64_t wanted) {
  const auto isIt = [&](const auto& one) { return one.frame == wanted && one.fingerprint == fingerprint; };
  const auto isUnderWay = [&](const PreviewLane& lane) {
    return std::ranges::any_of(lane.tasks(), [&](const PreviewTask& task) {
      return task.kind == Kind::Ahead && !task.isForgotten && isIt(task);
    });
  };
  if (std::ranges::any_of(aheadWanted_, isIt) || isUnderWay(full_) || isUnderWay(ahead_)) return;
  aheadWanted_.push_back({wanted, fingerprint});
  pump();
}

void PreviewEngine::Work::dropAhead() {
  aheadWanted_.clear();
  for (PreviewLane* lane : {&full_, &ahead_}) lane->forgetAhead();
}

// What is ordered next.

void PreviewEngine::Work::pump() {
  if (!opened || refusal) return;
  pumpQuick();
  pumpFull();
  pumpAhead();
  if (!busy_.isActive() && !(full_.isIdle() && quick_.tasks().empty() && ahead_.tasks().empty())) busy_.start();
}

bool PreviewEngine::Work::isFullWanted() const {
  return fullDone_ != serial_ && (isResting() || !isQuickWorthwhile() || !quick_.isRunning());
}

bool PreviewEngine::Work::isQuickWorthwhile() const {
  if (setup.inputs.empty() || isCheap() || viewSize_.width == 0 || viewSize_.height == 0) return false;
  if (failedInputs_ == inputsKey()) return false;
  const PictureSize full = inputs_     ? inputs_->fullResult
                           : lastFull_ ? lastFull_->size
                                       : PictureSize{opened->inputs[0].info.width, opened->inputs[0].info.height};
  return full.width > 0 && full.height > 0 && quickSize(full, viewSize_) != full;
}

bool PreviewEngine::Work::areInputsWanted() const {
  if (!isQuickWorthwhile()) return false;
  if (!inputs_ || inputs_->frame != inputsKey()) return true;
  return inputsViewSize_ != viewSize_ && !resize_.isActive();
}

bool PreviewEngine::Work::isCountWanted() const {
  return isResting() && countable_ == serial_ && counted_ != serial_;
}

PreviewTask PreviewEngine::Work::task(Kind kind) {
  PreviewTask task;
  task.id = ++lastId_;
  task.kind = kind;
  task.frame = frame;
  task.serial = serial_;
  task.fingerprint = fingerprint;
  return task;
}

void PreviewEngine::Work::pumpFull() {
  if (!full_.isReady() || full_.countOf(Kind::Ahead) != full_.tasks().size()) return;
  const bool areInputsMissing = areInputsWanted();
  const bool areInputsUrgent = areInputsMissing && fullDone_ != serial_ && (!inputs_ || inputs_->frame != inputsKey());
  if (areInputsUrgent || (areInputsMissing && !isFullWanted())) {
    orderInputs();
  } else if (isFullWanted()) {
    orderFull();
  } else if (isCountWanted()) {
    const PreviewTask counting = task(Kind::Count);
    full_.order(counting, CountOrder{counting.id});
  }
}

void PreviewEngine::Work::orderInputs() {
  full_.dropAhead();
  const PreviewTask scaling = task(Kind::Inputs);
  inputsViewSize_ = viewSize_;
  full_.order(scaling, InputsOrder{scaling.id, inputsKey(), viewSize_});
}

void PreviewEngine::Work::orderFull() {
  full_.dropAhead();
  const PreviewTask rendering = task(Kind::Full);
  RenderOrder order;
  order.id = rendering.id;
  order.frame = frame;
  order.time = startTime_;
  full_.render(rendering, std::move(order), states_);
}

void PreviewEngine::Work::pumpQuick() {
  if (!quick_.isIdle() || quickDone_ == serial_ || fullDone_ == serial_) return;
  if (!isQuickWorthwhile() || !inputs_ || inputs_->frame != inputsKey()) return;
  PreviewTask rendering = task(Kind::Quick);
  rendering.inputs = inputs_;
  RenderOrder order;
  order.id = rendering.id;
  order.frame = frame;
  const bool isStep = opened->timing == Timing::Steps;
  const double time = isStep ? static_cast<double>(frame) / static_cast<double>(opened->count - 1) : inputs_->time;
  order.time = startTime_.value_or(time);
  quick_.render(std::move(rendering), std::move(order), states_);
}

void PreviewEngine::Work::pumpAhead() {
  if (aheadWanted_.empty() || isFullWanted() || areInputsWanted()) return;
  const bool isDivided =
      opened->timing == Timing::Frames && !opened->keepsState &&
      std::ranges::none_of(opened->inputs, [](const PreviewInput& input) { return input.clip != nullptr; });
  if (isDivided && !isAheadOff_ && !ahead_.isRunning()) start(ahead_);
  while (orderNextAhead()) {
  }
}

// A frame goes where it was decoded before, others to whoever has the least to do. False when there is none, or no room
// for those that there are.
bool PreviewEngine::Work::orderNextAhead() {
  const auto hasRoom = [](const PreviewLane& lane) { return lane.isReady() && lane.tasks().size() < kAheadOfLane; };
  for (auto next = aheadWanted_.begin(); next != aheadWanted_.end(); ++next) {
    const auto reader = readers_.find(next->frame);
    PreviewLane* lane = reader == readers_.end() ? nullptr : reader->second;
    if (!lane || !lane->isReady()) {
      const bool isAheadBetter = hasRoom(ahead_) && (!hasRoom(full_) || ahead_.tasks().size() < full_.tasks().size());
      lane = isAheadBetter ? &ahead_ : &full_;
    }
    if (!hasRoom(*lane)) continue;
    PreviewTask rendering = task(Kind::Ahead);
    rendering.frame = next->frame;
    readers_[next->frame] = lane;
    aheadWanted_.erase(next);
    RenderOrder order;
    order.id = rendering.id;
    order.frame = rendering.frame;
    order.isAhead = true;
    lane->render(std::move(rendering), std::move(order), states_);
    return true;
  }
  return false;
}

// What comes.

void PreviewEngine::Work::hearFull(PreviewReport& report, const PreviewTask* task) {
  if (auto* what = std::get_if<PreviewOpened>(&report)) return begin(*what);
  if (!task) return hearCommon(full_, report, task);
  if (task->kind == Kind::Ahead) return takeAhead(report, *task);
  if (auto* rendered = std::get_if<PreviewRendered>(&report)) {
    takeFull(*rendered, *task);
  } else if (auto* inputs = std::get_if<PreviewInputs>(&report)) {
    takeInputs(*inputs);
  } else if (const auto* counts = std::get_if<PreviewCounts>(&report)) {
    counted_ = task->serial;
    if (task->serial == serial_) tell(&Told::counted, counts->input, counts->result);
  } else if (const auto* failed = std::get_if<PreviewFailed>(&report)) {
    takeFailure(*task, {PreviewFailure::Cause::Failed, failed->phase, failed->code, failed->text, task->frame});
  } else {
    return hearCommon(full_, report, task);
  }
  pump();
  findBusy();
}

void PreviewEngine::Work::hearQuick(PreviewReport& report, const PreviewTask* task) {
  if (std::holds_alternative<PreviewRefused>(report)) return;  // so is the other one, which says why
  if (!task) return hearCommon(quick_, report, task);
  if (auto* rendered = std::get_if<PreviewRendered>(&report)) {
    takeQuick(*rendered, *task);
  } else if (const auto* failed = std::get_if<PreviewFailed>(&report)) {
    takeFailure(*task, {PreviewFailure::Cause::Failed, failed->phase, failed->code, failed->text, task->frame});
  } else {
    return hearCommon(quick_, report, task);
  }
  pump();
}

void PreviewEngine::Work::hearAhead(PreviewReport& report, const PreviewTask* task) {
  if (std::holds_alternative<PreviewRefused>(report)) {
    isAheadOff_ = true;
    return;
  }
  if (!task && std::holds_alternative<PreviewDied>(report)) isAheadOff_ = true;
  if (!task) return hearCommon(ahead_, report, task);
  takeAhead(report, *task);
}

void PreviewEngine::Work::hearCommon(PreviewLane& lane, PreviewReport& report, const PreviewTask* task) {
  if (const auto* said = std::get_if<Remark>(&report)) {
    if (remarks_.insert(said->about).second) tell(&Told::remarked, said->text);
  } else if (const auto* refused = std::get_if<PreviewRefused>(&report); refused && !task) {
    refuse({PreviewFailure::Cause::Failed, PreviewPhase::Starting, refused->code, refused->text, frame});
  } else if (const auto* died = std::get_if<PreviewDied>(&report)) {
    if (task) return takeFailure(*task, deathOf(*task, died->cause));
    mourn(lane, died->cause);
  } else if (std::holds_alternative<PreviewOpened>(report)) {
    pump();
  }
}

void PreviewEngine::Work::begin(PreviewOpened& report) {
  if (opened) return pump();  // started again: the same files
  if (report.inputs.size() != setup.inputs.size()) return;
  opened = std::move(report);
  if (frame == 0) frame = opened->start;
  frame = std::min(frame, opened->count - 1);
  if (opened->timing == Timing::Steps && frame == opened->start) startTime_ = setup.time;
  double megabytes = 0;
  for (const PreviewInput& input : opened->inputs) {
    const std::size_t pixel = std::size_t{4} * (opened->depth >= Depth::Half     ? 4
                                                : opened->depth == Depth::Bits16 ? 2
                                                                                 : 1);
    megabytes += static_cast<double>(std::uint64_t{input.info.width} * input.info.height * pixel) / 1e6;
  }
  fullCost_ = megabytes * kMillisecondsPerMegabyte;
  ++serial_;
  findFingerprint();
  tell(&Told::opened, *opened);
  pump();
  startAnew();
}

void PreviewEngine::Work::refuse(PreviewFailure cause) {
  for (PreviewLane* lane : {&full_, &quick_, &ahead_}) lane->stop();
  if (opened) {  // it was there before
    failure = std::move(cause);
    fullDone_ = quickDone_ = serial_;
    tell(&Told::failed, *failure);
  } else {
    refusal = std::move(cause);
    tell(&Told::refused, *refusal);
  }
  findBusy();
}

void PreviewEngine::Work::takeFull(PreviewRendered& rendered, const PreviewTask& task) {
  deaths_ = 0;
  fullDone_ = std::max(fullDone_, task.serial);
  const double whole = static_cast<double>(task.since.nsecsElapsed()) / 1e6;
  fullCost_ = std::max(0.0, whole - std::max(0.0, rendered.reading));
  if (task.serial == serial_) failure.reset();
  lastFull_ = std::make_shared<const PreviewPicture>(std::move(rendered.picture));
  countable_ = task.serial;
  show(lastFull_, task);
}

void PreviewEngine::Work::takeQuick(PreviewRendered& rendered, const PreviewTask& task) {
  deaths_ = 0;
  quickDone_ = std::max(quickDone_, task.serial);
  PreviewPicture& picture = rendered.picture;
  const PreviewInputs& inputs = *task.inputs;
  const bool isOfLastFrame = lastFull_ && lastFull_->frame == picture.frame;
  const PictureSize scaled = sizeOf(*inputs.bitmaps[0]);
  const auto unscaled = [](std::uint32_t length, std::uint32_t full, std::uint32_t part) {
    return static_cast<std::uint32_t>(std::lround(static_cast<double>(length) * full / part));
  };
  picture.size = picture.size == inputs.resultSize
                     ? inputs.fullResult
                     : PictureSize{unscaled(picture.size.width, inputs.fullSize.width, scaled.width),
                                   unscaled(picture.size.height, inputs.fullSize.height, scaled.height)};
  picture.before = inputs.bitmaps[0];
  picture.beforeSize = inputs.fullSize;
  picture.space = inputs.space;
  picture.isFull = false;
  picture.fileInfo = isOfLastFrame ? lastFull_->fileInfo : std::make_shared<const PictureInfo>(opened->inputs[0].info);
  if (isOfLastFrame) picture.fileBefore = lastFull_->fileBefore ? lastFull_->fileBefore : lastFull_->before;
  show(std::make_shared<const PreviewPicture>(std::move(picture)), task);
}

// Of one state a full picture takes the place of a quick one.
void PreviewEngine::Work::show(PreviewPictureRef picture, const PreviewTask& task) {
  const bool isNewer = task.serial > shownSerial_ || !shown || (task.serial == shownSerial_ && picture->isFull);
  if (!isNewer || (picture->frame != frame && !isHeld_)) return;
  shown = std::move(picture);
  shownSerial_ = task.serial;
  tell(&Told::pictured, PreviewPictureRef(shown), task.fingerprint);
}

void PreviewEngine::Work::takeInputs(PreviewInputs& inputs) {
  deaths_ = 0;
  if (inputs.bitmaps.size() != setup.inputs.size() || inputs.bitmaps.empty()) return;
  inputs_ = std::make_shared<const PreviewInputs>(std::move(inputs));
}

void PreviewEngine::Work::takeAhead(PreviewReport& report, const PreviewTask& task) {
  if (std::holds_alternative<PreviewDropped>(report)) {
    if (!task.isForgotten && task.fingerprint == fingerprint) aheadWanted_.push_front({task.frame, task.fingerprint});
  } else if (auto* rendered = std::get_if<PreviewRendered>(&report)) {
    deaths_ = 0;
    const auto picture = std::make_shared<const PreviewPicture>(std::move(rendered->picture));
    tell(&Told::aheadReady, task.frame, task.fingerprint, PreviewPictureRef(picture));
  } else if (const auto* failed = std::get_if<PreviewFailed>(&report)) {
    tell(&Told::aheadFailed, task.frame, task.fingerprint,
         PreviewFailure{PreviewFailure::Cause::Failed, failed->phase, failed->code, failed->text, task.frame});
  } else if (const auto* died = std::get_if<PreviewDied>(&report)) {
    return tell(&Told::aheadFailed, task.frame, task.fingerprint, deathOf(task, died->cause));
  }
  pump();
}

void PreviewEngine::Work::takeFailure(const PreviewTask& task, PreviewFailure cause) {
  if (task.kind == Kind::Count) {
    counted_ = task.serial;
    return;
  }
  if (task.kind == Kind::Inputs) failedInputs_ = inputsKey();
  if (task.kind == Kind::Inputs && cause.cause != PreviewFailure::Cause::Died) return;  // the full one says why
  std::uint64_t& done = task.kind == Kind::Quick ? quickDone_ : fullDone_;
  done = std::max(done, task.serial);
  if (task.serial != serial_) return;  // something else is tried already
  const bool isTold = failure && failure->text == cause.text && failure->frame == cause.frame;
  failure = std::move(cause);
  if (!isTold) tell(&Told::failed, *failure);
}

PreviewFailure PreviewEngine::Work::deathOf(const PreviewTask& task, const std::string& cause) const {
  return {PreviewFailure::Cause::Died, task.phase, ExitCode::Effect,
          "the effect \"" + setup.effect + "\": the process that rendered it was ended: " + cause, task.frame};
}

void PreviewEngine::Work::failAhead(const std::deque<Ahead>& frames, PreviewFailure cause) {
  for (const Ahead& each : frames) {
    cause.frame = each.frame;
    tell(&Told::aheadFailed, each.frame, each.fingerprint, cause);
  }
}

// Started again at once, so that the next change finds it ready; unless it keeps dying.
void PreviewEngine::Work::mourn(PreviewLane& lane, const std::string& cause) {
  ++deaths_;
  if (deaths_ < kMostDeaths) {
    if (!lane.isRunning() && !(&lane == &ahead_ && isAheadOff_)) start(lane);
    return pump();
  }
  deaths_ = 0;
  PreviewFailure death = deathOf({}, cause);
  if (!opened) return refuse(std::move(death));
  if (&lane == &full_ && fullDone_ != serial_) {  // nobody is left to render it
    PreviewTask undone = task(Kind::Full);
    takeFailure(undone, death);
  }
  failAhead(std::exchange(aheadWanted_, {}), death);
}

void PreviewEngine::Work::findBusy() {
  PreviewBusy busy;
  bool isIdle = true;
  const auto note = [&](const QElapsedTimer& since, PreviewPhase phase) {
    const std::chrono::milliseconds elapsed(since.elapsed());
    if (isIdle || elapsed > busy.elapsed) busy = {false, phase, elapsed};
    isIdle = false;
  };
  if (full_.isRunning() && !full_.isReady()) note(full_.startedAt(), PreviewPhase::Starting);
  for (const PreviewLane* lane : {&full_, &quick_, &ahead_}) {
    for (const PreviewTask& task : lane->tasks()) {
      if (!task.isForgotten) note(task.since, task.phase);
    }
  }
  if (isIdle) busy_.stop();
  busy.isBusy = busy.elapsed >= std::chrono::milliseconds(2 * kBusyMilliseconds);
  if (!busy.isBusy && !isBusyTold_) return;
  isBusyTold_ = busy.isBusy;
  tell(&Told::busyChanged, busy);
}

PreviewEngine::PreviewEngine(Told told) : work_(std::make_unique<Work>(std::move(told))) {}

PreviewEngine::~PreviewEngine() = default;

void PreviewEngine::addListener(Told told) {
  work_->listeners.push_back(std::move(told));
}

void PreviewEngine::open(const PreviewSetup& setup) {
  work_->open(setup);
}

const PreviewSetup& PreviewEngine::setup() const {
  return work_->setup;
}

const std::optional<PreviewOpened>& PreviewEngine::opened() const {
  return work_->opened;
}

const std::optional<PreviewFailure>& PreviewEngine::refusal() const {
  return work_->refusal;
}

void PreviewEngine::setParameters(const std::vector<QCPort*>& ports) {
  work_->setParameters(ports);
}

void PreviewEngine::setHeld(bool held) {
  work_->setHeld(held);
}

void PreviewEngine::setViewSize(const PictureSize& devicePixels) {
  work_->setViewSize(devicePixels);
}

void PreviewEngine::goTo(std::uint64_t frame) {
  work_->goTo(frame);
}

std::uint64_t PreviewEngine::frame() const {
  return work_->frame;
}

void PreviewEngine::render() {
  work_->change();
}

void PreviewEngine::cancel() {
  work_->cancel();
}

const PreviewPictureRef& PreviewEngine::picture() const {
  return work_->shown;
}

PreviewPictureRef PreviewEngine::fullPicture() const {
  return work_->fullPicture();
}

const std::optional<PreviewFailure>& PreviewEngine::failure() const {
  return work_->refusal ? work_->refusal : work_->failure;
}

bool PreviewEngine::isSettled() const {
  return work_->isSettled();
}

const VortoHash128& PreviewEngine::fingerprint() const {
  return work_->fingerprint;
}

std::size_t PreviewEngine::mostAhead() const {
  return work_->mostAhead();
}

void PreviewEngine::orderAhead(std::uint64_t frame) {
  work_->orderAhead(frame);
}

void PreviewEngine::dropAhead() {
  work_->dropAhead();
}

void PreviewEngine::setInputBudget(std::uint64_t bytes) {
  work_->inputBudget = bytes;
}

}  // namespace host
