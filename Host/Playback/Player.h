// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Playback/FrameCache.h"
#include "Host/Playback/FrameSource.h"
#include "Host/Playback/PlayOrder.h"
#include "Host/Playback/PlaybackTimes.h"
#include "Host/Playback/RateMeter.h"

#include <QPointer>
#include <QString>
#include <QTimer>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <utility>

namespace host {

enum class PlayMode {
  EveryFrame,  // waits for each; at most at the rate
  RealTime     // keeps time, and leaves out what is not there
};

// Plays the frames of a run, from a cache of those that were rendered, and orders from a source those that come next.
// Everything happens on one thread, and nothing waits.
class Player {
 public:
  using Clock = std::function<double()>;  // seconds since some moment; never goes back

  // What a player tells. Functions may be missing.
  struct Told {
    std::function<void(std::uint64_t frame, const PreviewPictureRef& picture)> showFrame = {};
    std::function<void()> positionChanged = {};
    std::function<void()> stateChanged = {};    // playing, scrubbing, mode, range, looping, times
    std::function<void()> figuresChanged = {};  // while playing, four times a second: rate reached, frames dropped
    std::function<void()> cacheChanged = {};    // what it holds, or its budget; coalesced
    std::function<void(const QString& text)> remark = {};
  };

  // `source` outlives the player.
  explicit Player(FrameSource& source, Clock clock = monotonicClock());
  static Clock monotonicClock();

  // `told` is used as long as `listener` lives.
  void listen(QObject& listener, Told told);

  // Another run: stops, empties the cache, plays all of it, and goes to a frame of it.
  void setTimes(const PlaybackTimes& times, std::uint64_t frame = 0);
  const PlaybackTimes& times() const { return times_; }

  // From the source. A picture with another fingerprint than the present one is kept for when its parameters come back;
  // while playing it is shown if it is due and nothing newer was.
  void deliver(std::uint64_t frame, const VortoHash128& fingerprint, const PreviewPictureRef& picture);
  void deliverFailure(std::uint64_t frame, const VortoHash128& fingerprint, const QString& text);

  // The parameters are others: what is shown is fetched anew, and playing goes on with them.
  void parametersChanged();
  // While a hand drags, nothing is ordered unless playing; then what is missing.
  void setHeld(bool held);
  // Files on the disk are others, or memory is wanted back.
  void emptyCache();

  void play(bool backward = false);
  void pause();
  void togglePlaying() { isPlaying() ? pause() : play(); }
  bool isPlaying() const { return isPlaying_; }
  bool isBackward() const { return place_.isBackward; }

  // The playhead. In real time it keeps going while frames are missing; the one that is seen may be an earlier one.
  std::uint64_t position() const { return place_.frame; }
  std::optional<std::uint64_t> shownFrame() const { return shown_; }
  void goTo(std::uint64_t frame);  // beyond the end: the last one
  // One frame (of a transition: one of its played steps) forward or back, many when it is more; stops. Not round.
  void step(std::int64_t count);
  // Between these frames are shown as they come, also when the playhead has moved on, and nothing is read ahead or
  // played; what played goes on afterwards.
  void beginScrubbing();
  void endScrubbing();
  bool isScrubbing() const { return isScrubbing_; }

  // What is played. A point beyond the other one takes that to the end of the run.
  std::uint64_t inPoint() const { return order_.first; }
  std::uint64_t outPoint() const { return order_.last; }
  bool hasRange() const { return order_.first != 0 || order_.last != times_.last(); }
  void setInPoint(std::uint64_t frame);
  void setOutPoint(std::uint64_t frame);
  void clearRange();

  Looping looping() const { return order_.looping; }
  void setLooping(Looping looping);
  PlayMode mode() const { return mode_; }
  void setMode(PlayMode mode);
  // Every frame as soon as the one before was shown, whatever the rate; for measurements.
  void setUnpaced(bool unpaced) { isUnpaced_ = unpaced; }
  // Whether frames from the playhead on are fetched while nothing plays; they are, unless this says otherwise.
  bool readsAhead() const { return readsAhead_; }
  void setReadsAhead(bool readsAhead);

  const FrameCache& cache() const { return cache_; }
  void setBudget(std::uint64_t bytes);
  FrameSource& source() { return source_; }

  // Since playing began.
  double reachedRate() const;                         // frames shown a second, over the last second
  std::uint64_t dropped() const { return dropped_; }  // left out, in real time
  std::uint64_t shownCount() const { return shownCount_; }

  // Does what is due by the clock. The player's own timer calls it.
  void advance();

 private:
  struct Failed {
    QString text;
    bool isSaid = false;
  };

  template <class Member, class... Arguments>
  void tell(Member member, const Arguments&... arguments);
  void tellState() { tell(&Told::stateChanged); }
  void tellCache();
  void placeChanged();
  void show(std::uint64_t frame, const PreviewPictureRef& picture);
  void showPosition();
  void say(std::uint64_t frame, Failed& failed);
  void restartOrders();
  void changeRange(std::uint64_t first, std::uint64_t last);
  void startOver();
  void stop();

  void advanceEveryFrame(double now);
  void advanceRealTime(double now);
  bool passPlaces(double now);
  bool showNewestOf(std::uint64_t frame, const PreviewPictureRef& picture);
  std::optional<PlayPlace> awaited() const;
  void reach(const PlayPlace& place, const PreviewPictureRef& picture, double now);
  void showFormer(std::uint64_t frame, const PreviewPictureRef& picture);
  void scheduleTimer(double now);

  bool mayOrder() const;
  void fillOrders();
  bool isMissing(std::uint64_t frame) const;
  std::optional<std::uint64_t> nextToOrder() const;
  std::uint64_t stepsUntilOrdersCome() const;

  FrameSource& source_;
  const Clock clock_;
  std::list<std::pair<QPointer<QObject>, Told>> listeners_;
  PlaybackTimes times_;
  PlayOrder order_;
  PlayMode mode_ = PlayMode::EveryFrame;
  FrameCache cache_;

  PlayPlace place_;
  std::optional<std::uint64_t> shown_;
  std::weak_ptr<const PreviewPicture> seen_;  // the picture of it
  bool isPlaying_ = false;
  bool isScrubbing_ = false;
  bool playsAfterScrubbing_ = false;
  bool isHeld_ = false;
  bool isUnpaced_ = false;
  bool readsAhead_ = true;

  double due_ = 0;                    // when the next place may be shown, or in real time has to be
  bool isReached_ = false;            // every frame: that of the place was shown
  std::deque<std::uint64_t> passed_;  // real time: frames since the one that was shown, that of the place included
  std::uint64_t dropped_ = 0;
  std::uint64_t shownCount_ = 0;
  RateMeter meter_;
  double figuresTold_ = 0;

  std::map<std::uint64_t, double> ordered_;  // under way with the present fingerprint: since when
  std::map<std::uint64_t, Failed> failed_;   // with the present fingerprint
  double latency_ = 0;                       // seconds from an order to its delivery, on the average of late
  std::optional<std::uint64_t> refused_;     // how many steps ahead a frame lay that found no room in the cache
  bool isFilling_ = false;

  QTimer timer_;
  QTimer cacheTimer_;
};

}  // namespace host
