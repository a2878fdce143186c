// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Host/Preview/PreviewReport.h"
#include "Host/Preview/PreviewSetup.h"
#include "TarnCore/TCHash128.h"

#include <QObject>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QCPort;

namespace host {

// Something that could not be done. What was shown before stays.
struct PreviewFailure {
  enum class Cause { Failed, Died, Cancelled };
  Cause cause = Cause::Failed;
  PreviewPhase phase = PreviewPhase::Rendering;
  ExitCode code = ExitCode::Effect;  // that `vorto render` would end with
  std::string text;                  // one line, in English; names the effect or the file
  std::uint64_t frame = 0;
};

// What the engine is at, once it has taken a second; then again every half.
struct PreviewBusy {
  bool isBusy = false;
  PreviewPhase phase = PreviewPhase::Starting;
  std::chrono::milliseconds elapsed{0};
};

// Renders an effect for a window, on its event thread, in processes of their own: nothing here waits for them. There is
// a process for full pictures, one for quick ones, which renders small inputs that the other scaled, and for sequences
// and effects that keep no state one more that renders ahead.
//
// Of what is wanted the newest wins: while a render takes its time any number of changes make one more. Of an older
// state than the one that is shown nothing is shown any more.
//
// The functions that are told something may call the engine, but not destroy it.
class PreviewEngine : public QObject {
 public:
  struct Told {
    std::function<void(const PreviewOpened& opened)> opened = {};
    std::function<void(const PreviewFailure& failure)> refused = {};  // instead; there are no pictures
    // Of the present frame, isFull or a quick one, in the state of that fingerprint: the present one, or during a drag
    // an earlier one.
    std::function<void(const PreviewPictureRef& picture, const VortoHash128& fingerprint)> pictured = {};
    // Of the last full picture: its first input (zeros of generators), and itself.
    std::function<void(const TCHistogram& input, const TCHistogram& result)> counted = {};
    // Not once more for the next states that fail in the same way.
    std::function<void(const PreviewFailure& failure)> failed = {};
    std::function<void(const PreviewBusy& busy)> busyChanged = {};
    // Of orderAhead(), in the state of that fingerprint.
    std::function<void(std::uint64_t frame, const VortoHash128& fingerprint, const PreviewPictureRef& picture)>
        aheadReady = {};
    std::function<void(std::uint64_t frame, const VortoHash128& fingerprint, const PreviewFailure& failure)>
        aheadFailed = {};
    std::function<void(const std::string& text)> remarked = {};  // one line that is no failure; each once
  };
  explicit PreviewEngine(Told told);
  ~PreviewEngine() override;  // ends all processes, whatever they are at

  // Others may listen too; each is called after those before it. Functions may be empty.
  void addListener(Told told);

  // Begins with an effect and its inputs, and the parameters that were set last; what was rendered before is dropped.
  // Reports opened() or refused() later.
  void open(const PreviewSetup& setup);
  const PreviewSetup& setup() const;
  const std::optional<PreviewOpened>& opened() const;
  const std::optional<PreviewFailure>& refusal() const;

  // The present states of the effect's parameters.
  void setParameters(const std::vector<QCPort*>& ports);
  // While a hand drags, quick pictures come first and the full one when it rests.
  void setHeld(bool held);
  // Of the picture on the screen; quick pictures fit it. Nothing is scaled before it is known.
  void setViewSize(const PictureSize& devicePixels);
  void goTo(std::uint64_t frame);  // of a transition between stills: also away from the time that was wanted at first
  std::uint64_t frame() const;
  void render();  // once more, also what failed
  // Ends what is going on: says so as a failure, and begins anew with the next change.
  void cancel();

  // The newest picture, and the newest full one that shows the present state; null while there is none.
  const PreviewPictureRef& picture() const;
  PreviewPictureRef fullPicture() const;
  // Why there is none; nothing while one is there or may come.
  const std::optional<PreviewFailure>& failure() const;
  // Whether all that is wanted was rendered or has failed.
  bool isSettled() const;

  // What a picture depends on beside its frame: effect, inputs and all states.
  const VortoHash128& fingerprint() const;

  // Frames for playback, in the present state: rendered in the order in which they are wanted, as long as nothing is to
  // be rendered for the present frame. One that is under way in that state is not begun again.
  std::size_t mostAhead() const;  // that are worth ordering at once
  void orderAhead(std::uint64_t frame);
  void dropAhead();  // those that have not begun; the others may come

  // Of decoded inputs that the processes keep altogether, for pictures that are rendered again; from the next open()
  // on.
  void setInputBudget(std::uint64_t bytes);

 private:
  class Work;
  std::unique_ptr<Work> work_;
};

}  // namespace host
