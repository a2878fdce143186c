// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Controls/VRTPortReference.h"
#include "HistogramEditor/VRTHistogramSide.h"
#include "Platform/Foundation/NSKeyValueObserving.h"
#include "Platform/TarnKit/NSPopUpButton.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Ports/VRTPorts.h"

#include <QPointer>
#include <cstdint>
#include <memory>

struct TCHistogram;
class VRTChannelHistogram;
class VRTHistogramGradientView;
class VRTHistogramGutterIn;
class VRTHistogramGutterOut;
class VRTHistogramView;

// The panel that edits the levels of one port: a pop-up that chooses the channel, the live histogram of the effect's
// input image, and below it the handles of the input, a grey ramp and the handles of the output.
//
// The port is retained. The panel comes from the interface file "TarnHistogramEditor"; without it, which is logged, the
// editor stays empty. A detached editor (setHistogramPort with null) observes nothing and costs nothing: hosts detach
// editors that they hide. An editor may be destroyed at any time, by observers that it tells something too.
//
// The histogram is that of the image on the input port, which the editor counts itself, unless the host counts
// elsewhere and gives the counts. With those of the effect's result a second pop-up, beside the channels, chooses which
// is shown.
//
// The channel that is chosen belongs to the levels and is stored with them, but choosing it changes
// no value: observers of the port hear nothing, those of kVRTHistogramChannelDidChange do. The pop-up is set when a
// port is attached; it does not follow values that come later. Posted to the default notification center with the
// editor as the sender when people have chosen another channel.
inline constexpr const char* kVRTHistogramChannelDidChange = "VRTHistogramChannelDidChange";

// The editor of a levels port, as described above.
class TARN_EXPORT VRTHistogramEditor : public NSTarnView, public NSKeyValueObserver {
 public:
  explicit VRTHistogramEditor(NSRect frame, QWidget* parent = nullptr);
  ~VRTHistogramEditor() override;

  void setDelegate(NSObject* delegate);  // not retained; kept for the host
  NSObject* delegate() const;            // null when it is destroyed
  // The port whose levels are edited; null detaches the editor.
  void setHistogramPort(VRTHistogramPort* port);
  VRTChannelHistogram* getHistogramChannel() const;  // of the port's current value, or null
  void update();                                     // repaints everything
  void setChannelValue(NSPopUpButton* sender);       // takes the chosen item as the channel

  // Counts that the host made, which are kept until it gives others; null takes them back. As long as there are counts
  // of the input, no image is counted here. The depth is that of the image, in bits per channel, 8, 16, or 32 for
  // floats; it only says how the readout writes levels.
  void setCounts(VRTHistogramSide side, std::shared_ptr<const TCHistogram> counts, std::uint32_t bitsPerChannel = 8);
  // What is shown once there are counts of the result; the input at first.
  void setShownSide(VRTHistogramSide side);
  VRTHistogramSide shownSide() const;  // the input as long as there are none of the result

  void observeValueForKeyPath(const std::string& keyPath, NSObject* object, const PropertyList& change,
                              void* context) override;
  void setBounds(NSRect bounds) override;
  QSize minimumSizeHint() const override;
  QString accessibilityLabel() const override;

 private:
  void loadInterfaceFile();
  void awakeFromNib();
  void layOut();
  void rebuildPopUp();
  void updateSidePopUp();

  VRTObjectReference<NSObject> _delegate;
  std::shared_ptr<VRTHistogramPort> _histogramPort;
  QPointer<NSPopUpButton> _popUp;
  QPointer<NSPopUpButton> _sidePopUp;
  QPointer<NSTarnView> _masterView;
  QPointer<VRTHistogramView> _histogramView;
  QPointer<VRTHistogramGradientView> _gradientView;
  QPointer<VRTHistogramGutterIn> _gutterIn;
  QPointer<VRTHistogramGutterOut> _gutterOut;
};

// Makes the editor known to VRTHistogramPort::setupParameterView(): 218 x 137 points, attached to the port. Call it
// once, before the first editor is made.
TARN_EXPORT void VRTRegisterHistogramEditor();
