// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientEditor.h"

#include "Channels/VRTChannelGradient.h"
#include "Controls/VRTLocalizedText.h"
#include "Controls/VRTPortReference.h"
#include "Controls/VRTTransientColorPicker.h"
#include "GradientEditor/VRTGradientGutter.h"
#include "GradientEditor/VRTGradientGutterGeometry.h"
#include "GradientEditor/VRTGradientSuccession.h"
#include "GradientEditor/VRTGradientView.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Ports/VRTObjects.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int kMinimumWidth = 120;

bool holds(const VRTChannelGradientFolder& folder, const VRTChannelBase* channel) {
  const auto& children = folder.getDescendants();
  return std::find(children.begin(), children.end(), channel) != children.end();
}

}  // namespace

VRTGradientEditor::VRTGradientEditor(NSRect frame, QWidget* parent) : NSTarnView(frame, parent) {
  setAutoresizesSubviews(true);
  setAutoresizingMask(NSViewWidthSizable | NSViewHeightSizable);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
  loadInterfaceFile();
}

VRTGradientEditor::~VRTGradientEditor() {
  if (_pGradientPort) _pGradientPort->removeObserver(this, "value");
  for (VRTGradientGutter* gutter : {_gradientGutterRGB.data(), _gradientGutterAlpha.data()}) {
    if (gutter) gutter->setGradientEditor(nullptr);
  }
  for (QWidget* part : optionalParts()) {
    if (!part->parentWidget()) delete part;
  }
  delete _masterView;
}

void VRTGradientEditor::setDelegate(VRTGradientEditorDelegate* delegate) {
  if (delegate) {
    _delegate = delegate->liveness_;
  } else {
    _delegate.reset();
  }
}

VRTGradientEditorDelegate* VRTGradientEditor::delegate() const {
  const auto living = _delegate.lock();
  return living ? *living : nullptr;
}

void VRTGradientEditor::setGradientPort(VRTGradientPort* port) {
  const bool hadSelection = getSelectedSample() != nullptr;
  auto retained = VRTObjectReference<VRTGradientPort>(port).lock();
  if (retained != _pGradientPort) endLostInteractions();
  auto old = std::exchange(_pGradientPort, std::move(retained));
  if (old) old->removeObserver(this, "value");
  if (_pGradientPort) _pGradientPort->addObserver(this, "value", 0, nullptr);
  if (_gradientView) _gradientView->setGradientPort(port);
  if (_gradientGutterRGB) {
    _gradientGutterRGB->setGradientPort(port);
    _gradientGutterRGB->setGradientEditor(this);
    _gradientGutterRGB->setRenderMode(VRTGradientRenderOpaque);
  }
  if (_gradientGutterAlpha) {
    _gradientGutterAlpha->setGradientPort(port);
    _gradientGutterAlpha->setGradientEditor(this);
    _gradientGutterAlpha->setRenderMode(VRTGradientRenderAlpha);
  }
  if (getGradientChannel()) _shownValue = _pGradientPort->rawValue();
  forgetForeignSelection();
  const QPointer<VRTGradientEditor> self(this);
  update();
  if (self && hadSelection && !getSelectedSample()) postSelection();
}

void VRTGradientEditor::endLostInteractions() {
  if (_gradientGutterRGB) _gradientGutterRGB->endLostInteraction();
  if (_gradientGutterAlpha) _gradientGutterAlpha->endLostInteraction();
}

void VRTGradientEditor::observeValueForKeyPath(const std::string&, NSObject* object, const PropertyList&, void*) {
  if (object != _pGradientPort.get()) return;
  const bool isReplaced = _pGradientPort->rawValue() != _shownValue;
  followValue();
  forgetForeignSelection();
  const QPointer<VRTGradientEditor> self(this);
  update();
  if (self && isReplaced) postSelection();
}

VRTChannelGradient* VRTGradientEditor::getGradientChannel() const {
  return VRTGradientChannelOfPort(_pGradientPort.get());
}

void VRTGradientEditor::setEnabled(bool enabled) {
  if (_gradientGutterRGB) _gradientGutterRGB->setEnabled(enabled);
  if (_gradientGutterAlpha) _gradientGutterAlpha->setEnabled(enabled);
}

void VRTGradientEditor::setSelectedSample(VRTChannelGradientSample* sample, bool middleSelected, bool doubleClick) {
  _selectedSampleRef = std::make_shared<VRTChannelRef>(sample);
  _middleSelected = middleSelected;
  const QPointer<VRTGradientEditor> self(this);
  if (VRTGradientEditorDelegate* told = delegate()) {
    told->setSelectedSample(sample, middleSelected, doubleClick);
    if (!self) return;
  }
  update();
  if (self) postSelection();
}

void VRTGradientEditor::postSelection() const {
  NSNotificationCenter::defaultCenter().postNotificationName(kVRTGradientSelectionDidChange, this);
}

VRTChannelGradientSample* VRTGradientEditor::getSelectedSample() const {
  if (!_selectedSampleRef || !getGradientChannel()) return nullptr;
  return dynamic_cast<VRTChannelGradientSample*>(_selectedSampleRef->getChannel());
}

// The value may be another object now: what was selected and dragged in the old one goes on where it is the same.
void VRTGradientEditor::followValue() {
  VRTChannelGradient* fresh = getGradientChannel();
  if (!fresh || _pGradientPort->rawValue() == _shownValue) return;
  const NSObjectRef before = std::exchange(_shownValue, _pGradientPort->rawValue());
  const auto value = std::dynamic_pointer_cast<VRTGradient>(before);
  const VRTChannelGradient* old = value ? value->kxChannelGradient() : nullptr;
  if (!old) return;
  for (VRTGradientGutter* gutter : {_gradientGutterRGB.data(), _gradientGutterAlpha.data()}) {
    if (gutter) gutter->followGradient(*old, *fresh);
  }
  const auto* selected =
      dynamic_cast<VRTChannelGradientSample*>(_selectedSampleRef ? _selectedSampleRef->getChannel() : nullptr);
  if (!selected) return;
  VRTChannelGradientSample* successor = VRTSuccessorOfSample(*selected, old->rgbFolder, fresh->rgbFolder);
  if (!successor) successor = VRTSuccessorOfSample(*selected, old->alphaFolder, fresh->alphaFolder);
  *_selectedSampleRef = VRTChannelRef(successor);
}

// A replaced gradient may live on, in a list of things to undo, say: it must not be edited any more.
void VRTGradientEditor::forgetForeignSelection() {
  const VRTChannelBase* selected = _selectedSampleRef ? _selectedSampleRef->getChannel() : nullptr;
  const VRTChannelGradient* channel = getGradientChannel();
  if (!selected || !channel || holds(channel->rgbFolder, selected) || holds(channel->alphaFolder, selected)) return;
  _selectedSampleRef = std::make_shared<VRTChannelRef>(nullptr);
}

namespace {

void changeFolder(const std::shared_ptr<VRTGradientPort>& port, VRTChannelGradientFolder& folder,
                  void (VRTChannelGradientFolder::*change)(double)) {
  const VRTPortChange announced(port);
  (folder.*change)(0.0);
}

}  // namespace

void VRTGradientEditor::rgbSpread(QWidget*) {
  if (auto* channel = getGradientChannel()) {
    changeFolder(_pGradientPort, channel->rgbFolder, &VRTChannelGradientFolder::spread);
  }
}

void VRTGradientEditor::rgbFlop(QWidget*) {
  if (auto* channel = getGradientChannel()) {
    changeFolder(_pGradientPort, channel->rgbFolder, &VRTChannelGradientFolder::flop);
  }
}

void VRTGradientEditor::alphaSpread(QWidget*) {
  if (auto* channel = getGradientChannel()) {
    changeFolder(_pGradientPort, channel->alphaFolder, &VRTChannelGradientFolder::spread);
  }
}

void VRTGradientEditor::alphaFlop(QWidget*) {
  if (auto* channel = getGradientChannel()) {
    changeFolder(_pGradientPort, channel->alphaFolder, &VRTChannelGradientFolder::flop);
  }
}

void VRTGradientEditor::updateSelectedSampleRGBFrom(VRTTransientColorPicker* picker) {
  if (VRTGradientEditorDelegate* told = delegate()) return told->updateSelectedSampleRGBFrom(picker);
  const std::optional<NSColor> color = picker ? picker->color() : std::nullopt;
  auto* sample = dynamic_cast<VRTChannelGradientSampleRGB*>(getSelectedSample());
  if (!color || !sample) return;
  const VRTPortChange change(_pGradientPort);
  sample->red = VRTSinglePrecision(color->redComponent());
  sample->green = VRTSinglePrecision(color->greenComponent());
  sample->blue = VRTSinglePrecision(color->blueComponent());
}

void VRTGradientEditor::updateSelectedSampleAlphaFrom(VRTTransientColorPicker* picker) {
  if (VRTGradientEditorDelegate* told = delegate()) return told->updateSelectedSampleAlphaFrom(picker);
  const std::optional<NSColor> color = picker ? picker->color() : std::nullopt;
  auto* sample = dynamic_cast<VRTChannelGradientSampleAlpha*>(getSelectedSample());
  if (!color || !sample) return;
  const VRTPortChange change(_pGradientPort);
  sample->alpha = VRTSinglePrecision(color->redComponent());
}

void VRTGradientEditor::setBounds(NSRect bounds) {
  NSTarnView::setBounds(bounds);
  update();
}

QSize VRTGradientEditor::minimumSizeHint() const {
  return {kMinimumWidth, sizeHint().height()};
}

QString VRTGradientEditor::accessibilityLabel() const {
  return VRTLocalizedText("Gradient editor");
}
