// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTPortReference.h"
#include "HistogramEditor/VRTHistogramBitmap.h"
#include "HistogramEditor/VRTHistogramGraph.h"
#include "Platform/Foundation/NSKeyValueObserving.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Ports/VRTPorts.h"

#include <memory>

class QCImage;
class VRTChannelHistogram;

// The histogram of the image that flows into the effect whose levels are edited, in a recessed frame: the counts of the
// channel that the levels select.
//
// The image is the value of the input image port of the port's node, when that node is a filter; its pixels come from
// the node's execution context. They are counted again with every change of that port, and at no other time. Without
// an image the last counts stay; without a context there are none. A detached view (setHistogramPort with null)
// observes and counts nothing.
//
// The context menu chooses between linear and logarithmic bars.
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
  QString accessibilityLabel() const override;

 private:
  VRTObjectReference<VRTHistogramPort> _pHistogramPort;
  VRTObjectReference<QCPort> observedPort_;  // the image port; it may outlive its node
  VRTHistogramBitmap _pHistogram;
  bool _histogramOutOfDate = true;
  TCHistogram _samples;
  VRTHistogramScale histogramScale_ = VRTHistogramScale::Linear;
};
