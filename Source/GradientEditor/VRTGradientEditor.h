// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Channels/VRTChannelRef.h"
#include "GradientEditor/VRTGradientEditorDelegate.h"
#include "GradientEditor/VRTGradientGutterOwner.h"
#include "Platform/Foundation/NSKeyValueObserving.h"
#include "Platform/TarnKit/NSTarnButton.h"
#include "Platform/TarnKit/NSTarnView.h"
#include "Ports/VRTPorts.h"

#include <QPointer>
#include <memory>

class VRTChannelGradient;
class VRTChannelGradientFolder;
class VRTChannelGradientSample;
class VRTGradientGutter;
class VRTGradientView;
class VRTTransientColorPicker;

// Posted to the default notification center with the editor as the sender when another stop is selected, or its middle
// point, or nothing: by people, by the host, and because the gradient was replaced. Whoever is told may destroy the
// editor.
inline constexpr const char* kVRTGradientSelectionDidChange = "VRTGradientSelectionDidChange";

// The panel that edits the gradient of one port: a preview between a gutter of color stops (below) and one of opacity
// stops (above), with buttons that spread and flop each. It keeps the selection and follows every change of the port's
// value, also when another object takes its place: in an equal gradient a drag goes on. 75 points high, or 25, with
// nothing but a flat preview, while the port carries no gradient.
//
// The port is retained. The panel comes from the interface file "TarnGradientEditor"; without it, which is logged, the
// editor stays empty. An editor may be destroyed at any time, by observers that it tells something too.
class TARN_EXPORT VRTGradientEditor : public NSTarnView, public NSKeyValueObserver, public VRTGradientGutterOwner {
 public:
  explicit VRTGradientEditor(NSRect frame, QWidget* parent = nullptr);
  ~VRTGradientEditor() override;

  void setDelegate(VRTGradientEditorDelegate* delegate);  // not retained
  VRTGradientEditorDelegate* delegate() const override;
  void setGradientPort(VRTGradientPort* port);     // null detaches
  VRTChannelGradient* getGradientChannel() const;  // of the port's current value, or null
  void setEnabled(bool enabled);                   // of the gutters

  void setSelectedSample(VRTChannelGradientSample* sample, bool middleSelected, bool doubleClick) override;
  VRTChannelGradientSample* getSelectedSample() const override;
  bool getMiddleSelected() const override { return _middleSelected; }
  std::shared_ptr<const VRTChannelRef> getSelection() const override { return _selectedSampleRef; }

  // Lays the panel out for its width and what the port carries, and repaints everything.
  void update() override;
  // Puts a part into the panel, or takes it out and keeps it; true when it has been put there by this call.
  bool manageSubview(QWidget* view, bool on);

  // Spread the stops evenly, or mirror them.
  void rgbSpread(QWidget* sender);
  void rgbFlop(QWidget* sender);
  void alphaSpread(QWidget* sender);
  void alphaFlop(QWidget* sender);

  void updateSelectedSampleRGBFrom(VRTTransientColorPicker* picker) override;
  void updateSelectedSampleAlphaFrom(VRTTransientColorPicker* picker) override;

  void observeValueForKeyPath(const std::string& keyPath, NSObject* object, const PropertyList& change,
                              void* context) override;
  void setBounds(NSRect bounds) override;
  QSize minimumSizeHint() const override;
  QString accessibilityLabel() const override;

 private:
  void loadInterfaceFile();
  void awakeFromNib();
  void nameButtons();
  void followValue();
  void forgetForeignSelection();
  void postSelection() const;
  void endLostInteractions();  // of the gutters, whose port or place goes
  void orderTabs();
  std::vector<QWidget*> optionalParts() const;  // those that need a gradient, in the order of the Tab key

  std::weak_ptr<VRTGradientEditorDelegate*> _delegate;
  std::shared_ptr<VRTGradientPort> _pGradientPort;
  NSObjectRef _shownValue;  // of the port; the last one, while it has no gradient
  std::shared_ptr<VRTChannelRef> _selectedSampleRef;
  bool _middleSelected = false;
  QPointer<NSTarnView> _masterView;
  QPointer<VRTGradientView> _gradientView;
  QPointer<VRTGradientGutter> _gradientGutterRGB;
  QPointer<VRTGradientGutter> _gradientGutterAlpha;
  QPointer<NSTarnButton> _rgbSpread, _rgbFlop, _alphaSpread, _alphaFlop;
};

// Makes the editor known to VRTGradientPort::setupParameterView(): 236 x 76 points, attached to the port and enabled.
// Call it once, before the first editor is made.
TARN_EXPORT void VRTRegisterGradientEditor();
