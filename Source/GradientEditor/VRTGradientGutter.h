// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelRef.h"
#include "Controls/VRTGesture.h"
#include "Controls/VRTTransientColorPicker.h"
#include "GradientEditor/VRTGradientGutterMap.h"
#include "GradientEditor/VRTGradientView.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

class VRTChannelGradientFolder;
class VRTGradientGutterOwner;

// A strip with the markers of its samples, edited with mouse and keyboard: the behaviour that the color gutter
// (VRTGradientGutterRGB) and the opacity gutter (VRTGradientGutterAlpha) share. VRTGradientGutterGeometry has the
// layout.
//
// Mouse: a click on the strip inserts a sample and drags it; dragging moves samples and middle points, with option a
// copy; a sample dragged off vanishes when the button is let go, unless it is the last; a right or control click opens
// the swatch of colors for a sample, a double click the picker's panel in an editor without a delegate.
//
// Keyboard: the arrows move what is selected by 1%, with Shift by 0.1%; Home and End move it to the ends, short of a
// sample that stands there; Page Up and Page Down, or Control and the arrows, select the neighbours, with Shift middle
// points too; Insert adds a sample halfway to the next one, Control-D a copy beside the selected one; Delete removes
// the sample unless it is the last; Enter opens the picker's panel.
//
// Every change of the gradient is bracketed by willChangeValue and didChangeValue of the port, except that a sample
// inserted by a click first shows in those of the drag or the release that follow, and that color drops announce
// nothing. What belongs together (one drag, held keys, one pick by keyboard) is one VRTGesture; a pick by mouse is
// none.
//
// Observers of any of these may replace the value and destroy samples, the gutter and its editor. A drag whose gradient
// is replaced goes on when the new one has equal samples. Otherwise it ends there: the new gradient is left alone.
class VRTGradientGutter : public VRTGradientView {
 public:
  explicit VRTGradientGutter(NSRect frame, QWidget* parent = nullptr);
  ~VRTGradientGutter() override;

  void setGradientEditor(VRTGradientGutterOwner* editor) { _pGradientEditor = editor; }  // not retained
  void setEnabled(bool enabled);  // at first false: mouse events go to the superview, keys are not taken
  void setNeedsToBeKeyframed(bool needed) { _needsToBeKeyframed = needed; }  // edits must create a keyframe
  bool keyframed() const { return _keyframed; }                  // a position has changed while one was needed
  bool deleteUndoHandled() const { return _deleteUndoHandled; }  // a sample has been dragged off

  // Programming errors here: they report themselves and abort.
  virtual VRTChannelGradientFolder* getFolder() const;           // the edited samples, or null
  virtual void getSamples(VRTGradientGutterMap& samples) const;  // adds to a fresh map

  VRTGradientGutterMap::const_iterator findSampleIn(const VRTGradientGutterMap& samples, NSPoint location,
                                                    bool* hitMiddle) const;

  virtual void startColorPicker(const NSEvent& event);  // for the selected sample; nothing here
  virtual void takeColorFromTransientColorPicker(VRTTransientColorPicker* picker);  // nothing here
  virtual std::optional<NSColor> color() const;  // of the selected sample, as the picker shows it; none here
  void setInterpolation(int interpolation);      // does nothing

  void mouseDown(const NSEvent& event) override;
  void mouseDragged(const NSEvent& event) override;
  void mouseUp(const NSEvent& event) override;
  void rightMouseDown(const NSEvent& event) override;
  void flagsChanged(const NSEvent& event) override;
  bool acceptsFirstMouse() const override { return true; }
  QMenu* menuForEvent(const NSEvent& event) override;
  void keyDown(QKeyEvent& event) override;

  // Ends what the mouse or the keyboard is doing, whose own end may never come: the gutter is hidden, disabled or gets
  // another port. Those who hear of it are told later.
  void endLostInteraction() { gesture_.lose(); }
  // The gradient has been replaced: what mouse and keys are doing goes on where the samples are equal.
  void followGradient(const VRTChannelGradient& before, VRTChannelGradient& after);

  void update() override;
  void updateToolTips();
  void setBounds(NSRect bounds) override;
  void viewDidEndLiveResize() override;
  std::optional<QCursor> cursorAtPoint(NSPoint point) const override;
  std::vector<NSAccessibilityElement> accessibilityElements() const override;
  void setAccessibilityValue(std::size_t element, double value) override;
  void takeAccessibilityFocus(std::size_t element) override;

 protected:
  // Draws strip and markers with these indexes of the marker atoms. The rectangle is ignored: the bounds count.
  void drawGutter(NSRect rect, int sampleIndex, int middleIndex);

  // For a picker of the selected sample: colors go to takeColorFromTransientColorPicker() for as long as that sample is
  // the selected one.
  VRTTransientColorPicker::Action pickerAction();
  VRTTransientColorPicker::Options pickerOptions();
  virtual QString sampleKind() const;                                 // "Color stop", for people
  virtual QString descriptionOf(const KXGutterSample& record) const;  // its color or opacity, for people; none here
  QString stripHelp() const;                                          // what the mouse does here

  VRTGradientGutterOwner* editor() const { return _pGradientEditor; }
  VRTGradientGutterGeometry geometry() const { return VRTGradientGutterGeometry(bounds()); }

  void keyReleaseEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void changeEvent(QEvent* event) override;

 private:
  enum Moving : std::int32_t { MovingNothing = 0, MovingSample = 1, MovingMiddle = 2 };

  VRTGradientSelection selection() const;
  VRTChannelGradientSample* selectedSampleOfFolder() const;  // null when the selection is not one of this gutter's
  // False when the gutter has been destroyed meanwhile.
  bool select(VRTChannelGradientSample* sample, bool middle, bool doubleClick);

  bool pressAt(NSPoint point, const NSEvent& event, bool* onSample);
  VRTChannelGradientSample* copyOfSample(VRTChannelGradientSample& sample);
  void dragSample(NSPoint point, double travel);
  void dragMiddle(double travel);

  void rememberFolder();
  bool folderIsRemembered() const;
  VRTChannelGradientFolder* editedFolderOf(const QCPort* port) const;
  void abandonDrag();
  void settle(const VRTGesture::Ending& ending);
  std::shared_ptr<const VRTChannelRef> pickedSample() const;
  void putColorBack(const VRTChannelRef& picked, const VRTChannelBase& before);
  void pickerDidEnd();

  bool useKey(const QKeyEvent& event);
  void changeOnceByKey(int key);
  void moveByKey(int key, double step);
  void moveByKeyTo(int key, double target);
  void changeByKey(int key, const std::function<void(VRTChannelGradientSample&)>& change);
  void selectNeighbour(int direction, bool middlesToo);
  bool selectElement(std::size_t element);  // false when there is none, or the gutter has been destroyed
  void deleteByKey();
  void insertByKey();
  void copyByKey();
  // One interaction with one change of the folder, whose samples are sorted after it; the sample that it returns, or
  // null, is selected.
  using FolderChange = std::function<VRTChannelGradientSample*(VRTChannelGradientFolder& folder)>;
  void changeFolderByKey(const FolderChange& change);
  std::vector<double> positionsExcept(const VRTChannelGradientSample* sample) const;
  void pickByKey();

  void drawMarkers(int sampleIndex, int middleIndex);

  VRTGradientGutterOwner* _pGradientEditor = nullptr;
  std::unique_ptr<VRTChannelGradientSample> _pDeleted;  // dragged off: out of its folder, destroyed on release
  NSPoint _startingLocation;                            // of the last press, in single precision
  double _startingValue = 0;
  double _nextSample = 0;
  std::int32_t _moving = MovingNothing;
  bool _deleteUndoHandled = false;
  bool _keyframed = false;
  bool _needsToBeKeyframed = false;
  bool _enabled = false;

  std::unique_ptr<VRTChannelRef> editedFolder_;  // whose samples the interaction edits
  VRTGesture gesture_{[this](const VRTGesture::Ending& ending) { settle(ending); }};
};
