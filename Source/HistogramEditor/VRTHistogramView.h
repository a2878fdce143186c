// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTPortReference.h"
#include "HistogramEditor/VRTHistogramBitmap.h"
#include "HistogramEditor/VRTHistogramGraph.h"
#include "HistogramEditor/VRTHistogramReadout.h"
#include "HistogramEditor/VRTHistogramSide.h"
#include "Platform/Foundation/NSKeyValueObserving.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Ports/VRTPorts.h"

#include <QPointer>
#include <functional>
#include <memory>
#include <optional>

class QCImage;
class VRTChannelHistogram;
class VRTHistogramReadoutView;

// The histogram of the image that flows into the effect whose levels are edited, in a recessed frame: the counts of the
// channel that the levels select.
//
// The image is the value of the input image port of the port's node, when that node is a filter; its pixels come from
// the node's execution context. They are counted again with every change of that port, and at no other time. Without
// an image the last counts stay; without a context there are none. A detached view (setHistogramPort with null)
// observes and counts nothing.
//
// A host that counts elsewhere gives its counts, of the input image and of the effect's result: as long as it has given
// those of the input, the view counts no image itself. With counts of the result people choose which of them they see.
//
// The context menu chooses between linear and logarithmic bars, and between input and result. Pointing at a level, with
// the mouse or, when the view has the keyboard, with the arrows, Home and End (with Shift ten levels at a time), shows
// its readout above the view, over what stands there; Escape puts it away. Where colors are clipped, the end of the
// frame is lit.
class VRTHistogramView : public NSTarnView, public NSKeyValueObserver {
 public:
  explicit VRTHistogramView(NSRect frame, QWidget* parent = nullptr);
  ~VRTHistogramView() override;

  void setHistogramPort(VRTHistogramPort* port);     // not retained; counts the image when there is one
  VRTChannelHistogram* getHistogramChannel() const;  // of the port's current value, or null
  QCPort* imageInputPort() const;                    // null unless the port's node is a filter; belongs to the node
  void resampleInputImage();
  void update(bool);  // call it when the selected channel changes: paints again, without counting; the flag is ignored

  void computeHistogramSamples(const QCImage& image);
  const TCHistogram& histogramSamples() const { return _samples; }

  // Counts that somebody else made; null takes them back: the view counts the input image again. The depth is that of
  // the image, in bits per channel: 8, 16, or 32 for floats.
  void setCounts(VRTHistogramSide side, std::shared_ptr<const TCHistogram> counts, std::uint32_t bitsPerChannel = 8);
  bool hasCounts(VRTHistogramSide side) const { return given(side).counts != nullptr; }
  // Without counts of the result the input shows, whatever is chosen.
  void setShownSide(VRTHistogramSide side);
  VRTHistogramSide shownSide() const;
  void setSideChosen(std::function<void(VRTHistogramSide side)> chosen) { sideChosen_ = std::move(chosen); }  // by menu
  const TCHistogram& shownHistogram() const;

  // The level that is pointed at; nothing puts the readout away.
  void setPointedBin(std::optional<std::size_t> bin);
  std::optional<VRTHistogramReadout> readout() const;
  QString readoutText() const;  // on one line; empty when nothing is pointed at

  // Bars are linear at first.
  void setHistogramScale(VRTHistogramScale scale);
  VRTHistogramScale histogramScale() const { return histogramScale_; }

  bool isOpaque() const override { return false; }
  void drawRect(NSRect dirty) override;
  void drawHistogram(NSRect rect);  // frame and graph
  // Makes the cached graph one of that size, up to date with the counts.
  void updateImage(NSSize size);
  void allocateImage(NSSize size);
  void computeHistogramImage(NSSize size);
  const NSBitmapImageRep* histogramBitmap() const { return _pHistogram.representation.get(); }  // null at first

  void observeValueForKeyPath(const std::string& keyPath, NSObject* object, const PropertyList& change,
                              void* context) override;
  QMenu* menuForEvent(const NSEvent& event) override;
  void mouseMoved(const NSEvent& event) override;
  void mouseExited() override;
  void keyDown(QKeyEvent& event) override;
  QString accessibilityLabel() const override;
  std::vector<NSAccessibilityElement> accessibilityElements() const override;
  void setAccessibilityValue(std::size_t element, double value) override;

 protected:
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  struct Given {
    std::shared_ptr<const TCHistogram> counts;
    std::uint32_t bitsPerChannel = 8;
  };
  const Given& given(VRTHistogramSide side) const { return side == VRTHistogramSide::Input ? input_ : result_; }
  std::int32_t selectedChannel() const;
  std::uint32_t shownBits() const;
  const TCHistogram::Counts& shownCounts() const;
  NSRect graph() const;  // the picture inside the frame
  void drawClipping();
  void drawPointedLevel();
  void showReadout();

  VRTObjectReference<VRTHistogramPort> _pHistogramPort;
  VRTObjectReference<QCPort> observedPort_;  // the image port; it may outlive its node
  VRTHistogramBitmap _pHistogram;
  bool _histogramOutOfDate = true;
  TCHistogram _samples;
  std::uint32_t bitsOfSamples_ = 8;
  VRTHistogramScale histogramScale_ = VRTHistogramScale::Linear;

  Given input_, result_;
  VRTHistogramSide chosenSide_ = VRTHistogramSide::Input;
  std::function<void(VRTHistogramSide)> sideChosen_;
  std::optional<std::size_t> pointedBin_;
  std::size_t keyboardBin_ = TCHistogram::Bins / 2;  // where the keyboard goes on
  QPointer<VRTHistogramReadoutView> readoutView_;    // belongs to the superview, above whose parts it shows
};
