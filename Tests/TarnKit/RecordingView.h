// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/TarnKit/NSTarnView.h"

// A view that writes down what it is told.
class RecordingView : public NSTarnView {
 public:
  struct Call {
    std::string name;
    NSPoint point;  // in the view's coordinates
    std::uint32_t flags = 0;
    int clicks = 0;
  };

  explicit RecordingView(NSRect frame, QWidget* parent = nullptr, bool flipped = false)
      : NSTarnView(frame, parent), flipped_(flipped) {}

  bool isFlipped() const override { return flipped_; }
  void mouseDown(const NSEvent& e) override {
    record("down", e, [&] { NSTarnView::mouseDown(e); });
  }
  void mouseDragged(const NSEvent& e) override {
    record("dragged", e, [&] { NSTarnView::mouseDragged(e); });
  }
  void mouseUp(const NSEvent& e) override {
    record("up", e, [&] { NSTarnView::mouseUp(e); });
  }
  void mouseMoved(const NSEvent& event) override { record("moved", event); }
  void rightMouseDown(const NSEvent& event) override {
    record("right", event, [&] { rightIsDown ? NSTarnView::mouseDown(event) : NSTarnView::rightMouseDown(event); });
  }
  void flagsChanged(const NSEvent& event) override { record("flags", event); }
  void setBounds(NSRect bounds) override {
    boundsSet.push_back(bounds);
    NSTarnView::setBounds(bounds);
  }
  void viewDidEndLiveResize() override { calls.push_back({"endLiveResize", {}, 0, 0}); }

  std::string names() const {
    std::string all;
    for (const Call& call : calls) all += (all.empty() ? "" : " ") + call.name;
    return all;
  }

  bool passesOn = false;     // calls the base afterwards
  bool rightIsDown = false;  // hands a right press on as mouseDown
  std::function<void()> inHandler;
  std::vector<Call> calls;
  std::vector<NSRect> boundsSet;

 private:
  void record(const char* name, const NSEvent& event, const std::function<void()>& base = nullptr) {
    calls.push_back(
        {name, convertPointFromWindow(event.locationInWindow()), event.modifierFlags(), event.clickCount()});
    if (base && passesOn) return base();
    if (inHandler) inHandler();
  }

  bool flipped_;
};

inline bool operator==(NSRect a, NSRect b) {
  return a.origin.x == b.origin.x && a.origin.y == b.origin.y && NSEqualSizes(a.size, b.size);
}

inline void PrintTo(NSRect rect, std::ostream* out) {
  *out << rect.origin.x << ", " << rect.origin.y << ", " << rect.size.width << " x " << rect.size.height;
}
