// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTPortReference.h"

#include <functional>
#include <memory>
#include <set>

class NSEvent;

// The interaction between a view and the value of a port: whether one is open, by what, and its two notifications. It
// knows nothing of widgets; the view that holds it tells it what mouse, keyboard and pickers do.
//
// One interaction is open at a time. It ends with what opened it: the button or the last key is let go, the picker
// closes. Where that end gets lost (the view is hidden or disabled, another press comes first, the view dies) it is
// made up for: every start has its end, for the same port. Such an end comes late (VRTLateEnds.h), unless a press needs
// it at once: what loses it is in the middle of Qt's own work.
//
// Every notification is a call out, whose receivers may do anything, destroy the view included. A call out is followed
// by one question:
//
//   const VRTGesture::Alive alive = gesture_.alive();
//   ...
//   if (!alive) return;
class VRTGesture {
 public:
  enum class By { Nothing, Mouse, Keys, Picker };

  // Whether the view still lives. May be kept for as long as one likes.
  class Alive {
   public:
    explicit operator bool() const { return !life_.expired(); }

   private:
    friend class VRTGesture;
    std::weak_ptr<const void> life_;
  };

  struct Ending {
    std::shared_ptr<QCPort> port;      // null when it is gone
    By by = By::Nothing;               // what had opened the interaction; Nothing for an end without a start
    const NSEvent* release = nullptr;  // of the button; null when the end is made up for, and for keys and pickers
  };
  // What belongs to the value's last change: runs when the interaction is closed, before its end is posted.
  using Settle = std::function<void(const Ending&)>;

  explicit VRTGesture(Settle settle = nullptr);
  // The end of an open interaction is posted late, unless its port is gone by then. The view is not told. Let it be the
  // view's last member, so that it goes first.
  ~VRTGesture();
  VRTGesture(const VRTGesture&) = delete;
  VRTGesture& operator=(const VRTGesture&) = delete;

  Alive alive() const;
  By openedBy() const { return by_; }
  bool isOpen() const { return by_ != By::Nothing; }
  bool keysMayAct() const { return by_ == By::Nothing || by_ == By::Keys; }
  // Whether the end of what is open got lost and is still to come.
  bool isLost() const { return isLost_; }

  // Ends that are late come now: before keyboard or assistive technology do anything. False when the view has been
  // destroyed.
  bool catchUp() const;

  // Opens an interaction. One that those who are told of a press have opened meanwhile is ended first. False when
  // whoever was told has destroyed the view or ended it.
  bool start(By by, const std::shared_ptr<QCPort>& port);
  // Ends it; nothing when none is open.
  void end();
  // The same, with something else in place of what is settled.
  void endWith(const Settle& settle);

  // The mouse. Before a press: whatever is open is ended, and late ends elsewhere. False when the view has been
  // destroyed.
  bool clearForPress();
  // The button was let go: the end of the press. It is posted for a press without a start too, with the port given, and
  // not a second time when it has been made up for.
  void release(const NSEvent& event, const std::shared_ptr<QCPort>& port);

  // The keyboard. A key changes something: opens an interaction unless one is open. False as with start().
  bool hold(int key, const std::shared_ptr<QCPort>& port);
  static constexpr int kNoKey = 0;  // of what is set by assistive technology: held until end()
  // A key went up: false when it was not held. The last one ends the interaction.
  bool letGo(int key);
  // The keys will be let go elsewhere: their interaction ends late.
  void loseKeys();

  // Neither button nor keys may be let go here any more: what they opened ends late. A picker goes on.
  void lose();

 private:
  void endLate();
  void close(const NSEvent* release, std::shared_ptr<QCPort> port, const Settle& settle);

  Settle settle_;
  std::shared_ptr<const void> life_;
  By by_ = By::Nothing;
  VRTObjectReference<QCPort> port_;  // the one that was told of the start
  std::set<int> heldKeys_;
  bool isLost_ = false;
  bool releaseIsMadeUpFor_ = false;  // the press that is down needs no end
};
