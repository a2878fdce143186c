// SPDX-License-Identifier: BSD-3-Clause
#include "Host/Playback/Player.h"

#include "Host/Inspect/WindowText.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace host {
namespace {

constexpr double kTolerance = 1e-6;             // seconds
constexpr double kLongestStall = 10;            // seconds; what lies beyond was no playing, but sleep
constexpr double kFiguresEvery = 0.25;          // seconds
constexpr int kCacheEvery = 100;                // milliseconds
constexpr std::size_t kMostPassed = 256;        // frames that may still be shown late
constexpr std::uint64_t kMostStepsAhead = 256;  // that orders may need to come

}  // namespace

Player::Clock Player::monotonicClock() {
  return [] { return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count(); };
}

Player::Player(FrameSource& source, Clock clock) : source_(source), clock_(std::move(clock)) {
  cache_.setFingerprint(source_.fingerprint());
  timer_.setTimerType(Qt::PreciseTimer);
  timer_.setSingleShot(true);
  timer_.callOnTimeout([this] { advance(); });
  cacheTimer_.setSingleShot(true);
  cacheTimer_.setInterval(kCacheEvery);
  cacheTimer_.callOnTimeout([this] { tell(&Told::cacheChanged); });
}

void Player::listen(QObject& listener, Told told) {
  listeners_.remove_if([](const auto& one) { return one.first.isNull(); });
  listeners_.emplace_back(&listener, std::move(told));
}

template <class Member, class... Arguments>
void Player::tell(Member member, const Arguments&... arguments) {
  for (const auto& [listener, told] : listeners_) {
    if (listener && told.*member) (told.*member)(arguments...);
  }
}

void Player::tellCache() {
  if (!cacheTimer_.isActive()) cacheTimer_.start();
}

void Player::placeChanged() {
  cache_.setPlayhead(order_, place_, shown_);
  tell(&Told::positionChanged);
}

void Player::show(std::uint64_t frame, const PreviewPictureRef& picture) {
  if (!isPlaying_ && shown_ == frame && seen_.lock() == picture) return;
  shown_ = frame;
  seen_ = picture;
  cache_.setPlayhead(order_, place_, shown_);
  if (isPlaying_) {
    ++shownCount_;
    meter_.count(clock_());
  }
  tell(&Told::showFrame, frame, picture);
}

void Player::showPosition() {
  const std::uint64_t frame = position();
  const PreviewPictureRef picture = cache_.find(frame);
  if (picture) {
    show(frame, picture);
  } else {
    failed_.erase(frame);
    ordered_.emplace(frame, clock_());
  }
  source_.goTo(frame, picture != nullptr);
}

void Player::say(std::uint64_t frame, Failed& failed) {
  if (std::exchange(failed.isSaid, true)) return;
  const QString text = times_.count() == 1 || times_.isTransition()
                           ? failed.text
                           : windowText("Frame %1: %2").arg(QString::number(times_.firstNumber() + frame), failed.text);
  tell(&Told::remark, text);
}

void Player::restartOrders() {
  refused_.reset();
  source_.dropOrders();
  ordered_.clear();
  if (!isPlaying_) showPosition();
  fillOrders();
}

void Player::setTimes(const PlaybackTimes& times, std::uint64_t frame) {
  isPlaying_ = isScrubbing_ = playsAfterScrubbing_ = false;
  timer_.stop();
  times_ = times;
  order_ = {0, times.last(), times.stride(), order_.looping};
  place_ = {std::min(frame, times.last()), false};
  shown_.reset();
  failed_.clear();
  latency_ = 0;
  cache_.clear();
  cache_.setFingerprint(source_.fingerprint());
  placeChanged();
  tellState();
  tellCache();
  restartOrders();
}

void Player::deliver(std::uint64_t frame, const VortoHash128& fingerprint, const PreviewPictureRef& picture) {
  if (!picture || frame >= times_.count()) return;
  tellCache();
  const bool isKept = cache_.put(frame, fingerprint, picture);
  if (fingerprint != cache_.fingerprint()) parametersChanged();  // if nobody has said so yet
  if (fingerprint != cache_.fingerprint()) return showFormer(frame, picture);

  failed_.erase(frame);
  if (const auto order = ordered_.find(frame); order != ordered_.end()) {
    const double took = clock_() - order->second;
    latency_ = latency_ == 0 ? took : 0.7 * latency_ + 0.3 * took;
    ordered_.erase(order);
  }
  if (!isKept) {
    const std::uint64_t steps = order_.distance(place_, frame) / order_.stride;
    refused_ = std::min(refused_.value_or(steps), steps);
  }
  if (isPlaying_) {
    advance();
  } else if (frame == position() || (isScrubbing_ && shown_ != position())) {
    show(frame, picture);
  }
  fillOrders();
}

// Of parameters that have changed since. Shown while playing, so that it goes on when they change faster than frames
// come.
void Player::showFormer(std::uint64_t frame, const PreviewPictureRef& picture) {
  if (!isPlaying_) return;
  const double now = clock_();
  if (mode_ == PlayMode::RealTime) {
    passPlaces(now);
    if (isPlaying_) showNewestOf(frame, picture);
  } else if (const auto next = awaited(); next && next->frame == frame && now >= due_ - kTolerance) {
    reach(*next, picture, now);
  }
  if (isPlaying_) scheduleTimer(now);
}

void Player::deliverFailure(std::uint64_t frame, const VortoHash128& fingerprint, const QString& text) {
  if (fingerprint != cache_.fingerprint() || frame >= times_.count()) return;
  ordered_.erase(frame);
  Failed& failed = failed_[frame];
  failed = {text, false};
  if (isPlaying_) {
    advance();
  } else if (frame == position()) {
    say(frame, failed);
  }
  fillOrders();
}

void Player::parametersChanged() {
  const VortoHash128 fingerprint = source_.fingerprint();
  if (fingerprint == cache_.fingerprint()) return;
  cache_.setFingerprint(fingerprint);
  failed_.clear();
  tellCache();
  restartOrders();
  if (isPlaying_) advance();
}

void Player::setHeld(bool held) {
  if (std::exchange(isHeld_, held) && !held) fillOrders();
}

void Player::setReadsAhead(bool readsAhead) {
  readsAhead_ = readsAhead;
  fillOrders();
}

void Player::emptyCache() {
  cache_.clear();
  tellCache();
  restartOrders();
}

void Player::setBudget(std::uint64_t bytes) {
  cache_.setBudget(bytes);
  refused_.reset();
  tellCache();
  fillOrders();
}

void Player::play(bool backward) {
  if (times_.count() < 2) return;
  place_.isBackward = backward;
  if (!order_.contains(position()) || !order_.next(place_)) place_ = order_.begin(backward);
  isPlaying_ = true;
  isScrubbing_ = playsAfterScrubbing_ = false;
  failed_.clear();
  dropped_ = shownCount_ = 0;
  meter_.restart(clock_());
  figuresTold_ = clock_();
  startOver();
  placeChanged();
  tellState();
  restartOrders();
  advance();
}

// From the place on, now.
void Player::startOver() {
  const double now = clock_();
  isReached_ = shown_ == place_.frame && cache_.find(place_.frame);
  passed_.clear();
  if (!isReached_) passed_.push_back(place_.frame);
  const bool waits = mode_ == PlayMode::RealTime || (isReached_ && !isUnpaced_);
  due_ = waits ? now + times_.stepSeconds(place_.frame) : now;
}

void Player::stop() {
  isPlaying_ = false;
  timer_.stop();
  tell(&Told::figuresChanged);
  tellState();
}

void Player::pause() {
  playsAfterScrubbing_ = false;
  if (!isPlaying_) return;
  stop();
  restartOrders();
}

void Player::goTo(std::uint64_t frame) {
  frame = std::min(frame, times_.last());
  const bool isThere = frame == position() && shown_ == frame;
  place_.frame = frame;
  placeChanged();
  if (isPlaying_) {
    startOver();
    restartOrders();
    advance();
  } else if (!isThere || !cache_.find(frame)) {
    restartOrders();
  }
}

void Player::step(std::int64_t count) {
  pause();
  const std::uint64_t way = static_cast<std::uint64_t>(count < 0 ? -count : count) * times_.stride();
  goTo(count < 0 ? position() - std::min(way, position()) : position() + way);
}

void Player::beginScrubbing() {
  if (isScrubbing_) return;
  const bool played = isPlaying_;
  isScrubbing_ = true;
  pause();
  playsAfterScrubbing_ = played;
  tellState();
}

void Player::endScrubbing() {
  if (!std::exchange(isScrubbing_, false)) return;
  if (std::exchange(playsAfterScrubbing_, false)) return play(place_.isBackward);
  tellState();
  fillOrders();
}

void Player::changeRange(std::uint64_t first, std::uint64_t last) {
  if (first == order_.first && last == order_.last) return;
  order_.first = first;
  order_.last = last;
  placeChanged();
  tellState();
  refused_.reset();
  fillOrders();
}

void Player::setInPoint(std::uint64_t frame) {
  frame = std::min(frame, times_.last());
  changeRange(frame, frame > outPoint() ? times_.last() : outPoint());
}

void Player::setOutPoint(std::uint64_t frame) {
  frame = std::min(frame, times_.last());
  changeRange(frame < inPoint() ? 0 : inPoint(), frame);
}

void Player::clearRange() {
  changeRange(0, times_.last());
}

void Player::setLooping(Looping looping) {
  order_.looping = looping;
  cache_.setPlayhead(order_, place_, shown_);
  refused_.reset();
  tellState();
  fillOrders();
}

void Player::setMode(PlayMode mode) {
  if (mode == mode_) return;
  mode_ = mode;
  dropped_ = 0;
  if (isPlaying_) startOver();
  tellState();
  if (isPlaying_) advance();
}

double Player::reachedRate() const {
  return meter_.rate(clock_());
}

void Player::advance() {
  if (!isPlaying_) return;
  const double now = clock_();
  if (mode_ == PlayMode::RealTime) {
    advanceRealTime(now);
  } else {
    advanceEveryFrame(now);
  }
  if (!isPlaying_) return;
  fillOrders();
  if (now - figuresTold_ >= kFiguresEvery) {
    figuresTold_ = now;
    tell(&Told::figuresChanged);
  }
  if (isPlaying_) scheduleTimer(now);
}

std::optional<PlayPlace> Player::awaited() const {
  return isReached_ ? order_.next(place_) : place_;
}

void Player::reach(const PlayPlace& place, const PreviewPictureRef& picture, double now) {
  place_ = place;
  isReached_ = true;
  due_ = isUnpaced_ ? now : std::max(due_ + times_.stepSeconds(place.frame), now);
  show(place.frame, picture);
  tell(&Told::positionChanged);
}

void Player::advanceEveryFrame(double now) {
  if (now < due_ - kTolerance) return;
  const auto next = awaited();
  if (!next) return pause();
  const std::uint64_t frame = next->frame;
  if (const auto failed = failed_.find(frame); failed != failed_.end()) {
    place_ = *next;
    stop();
    placeChanged();
    say(frame, failed->second);
    return;
  }
  if (const PreviewPictureRef picture = cache_.find(frame)) reach(*next, picture, now);
}

// Moves the playhead to where the clock is. False when that was the end.
bool Player::passPlaces(double now) {
  const PlayPlace before = place_;
  if (now - due_ > kLongestStall) due_ = now;
  while (now >= due_ - kTolerance) {
    const auto next = order_.next(place_);
    if (!next) {
      pause();
      return false;
    }
    place_ = *next;
    due_ += times_.stepSeconds(place_.frame);
    passed_.push_back(place_.frame);
    if (const auto failed = failed_.find(place_.frame); failed != failed_.end()) say(place_.frame, failed->second);
    if (passed_.size() > kMostPassed) {
      passed_.pop_front();
      ++dropped_;
    }
  }
  if (place_ != before) placeChanged();
  return isPlaying_;
}

// Shows a picture if its frame was due since the last one that was shown. Those before it count as dropped.
bool Player::showNewestOf(std::uint64_t frame, const PreviewPictureRef& picture) {
  const auto found = std::find(passed_.rbegin(), passed_.rend(), frame);
  if (found == passed_.rend()) return false;
  const auto after = found.base();
  dropped_ += static_cast<std::uint64_t>(after - passed_.begin()) - 1;
  passed_.erase(passed_.begin(), after);
  show(frame, picture);
  return true;
}

void Player::advanceRealTime(double now) {
  if (!passPlaces(now)) return;
  for (auto frame = passed_.rbegin(); frame != passed_.rend(); ++frame) {
    if (const PreviewPictureRef picture = cache_.find(*frame)) {
      showNewestOf(*frame, picture);
      return;
    }
  }
}

// Whoever waits for a frame is woken by its delivery, and shows until then that it waits.
void Player::scheduleTimer(double now) {
  const auto next = mode_ == PlayMode::EveryFrame && due_ <= now ? awaited() : std::nullopt;
  const bool waits = next && !cache_.find(next->frame);
  const double seconds = waits ? kFiguresEvery : due_ - now;
  timer_.start(static_cast<int>(std::ceil(std::clamp(seconds, 0.0, 1000.0) * 1000 - 1e-3)));
}

bool Player::mayOrder() const {
  return isPlaying_ || (readsAhead_ && !isHeld_ && !isScrubbing_ && times_.count() > 1);
}

void Player::fillOrders() {
  if (isFilling_ || !mayOrder()) return;
  isFilling_ = true;
  while (mayOrder() && ordered_.size() < std::max<std::size_t>(1, source_.mostOrders())) {
    const auto frame = nextToOrder();
    if (!frame) break;
    ordered_.emplace(*frame, clock_());
    source_.order(*frame);
  }
  isFilling_ = false;
}

// In real time there is no use in frames that will be past when they come.
std::uint64_t Player::stepsUntilOrdersCome() const {
  if (!isPlaying_ || mode_ != PlayMode::RealTime) return 0;
  const double steps = std::ceil(latency_ / times_.stepSeconds(position()));
  return steps < kMostStepsAhead ? static_cast<std::uint64_t>(steps) : kMostStepsAhead;
}

bool Player::isMissing(std::uint64_t frame) const {
  return !cache_.spanAround(frame) && !ordered_.contains(frame) && !failed_.contains(frame);
}

std::optional<std::uint64_t> Player::nextToOrder() const {
  const bool isPast = isPlaying_ && (mode_ == PlayMode::RealTime ? passed_.empty() : isReached_);
  if (isPlaying_ && !isPast && !order_.contains(position()) && isMissing(position())) return position();
  PlayOrder order = order_;
  if (!isPlaying_) order.looping = Looping::Off;
  const std::uint64_t ahead = stepsUntilOrdersCome();
  std::uint64_t most = ahead + order.steps() + 1;
  if (const std::uint64_t fitting = cache_.framesThatFit(); fitting > 0) most = std::min(most, fitting);
  if (refused_) most = std::min(most, *refused_);
  most = std::max<std::uint64_t>(most, 2);  // what is shown, and what is next

  std::optional<PlayPlace> place = order.contains(position()) ? place_ : order.begin(place_.isBackward);
  std::uint64_t steps = 0;
  for (const std::uint64_t skipped = std::max<std::uint64_t>(ahead, isPast ? 1 : 0); place && steps < skipped;
       ++steps) {
    place = order.next(*place);
  }
  while (place && steps < most) {
    if (isMissing(place->frame)) return place->frame;
    const auto span = cache_.spanAround(place->frame);
    if (span) {
      // To the last frame of what is there, at once.
      const std::uint64_t left = place->isBackward ? place->frame - std::max(span->first, order.first)
                                                   : std::min(span->last, order.last) - place->frame;
      const std::uint64_t jumped = left / order.stride;
      place->frame = place->isBackward ? place->frame - jumped * order.stride : place->frame + jumped * order.stride;
      steps += jumped;
    }
    place = order.next(*place);
    ++steps;
  }
  return std::nullopt;
}

}  // namespace host
