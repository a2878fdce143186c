// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramEditor.h"

#include "Channels/VRTChannelHistogram.h"
#include "Controls/VRTLocalizedText.h"
#include "HistogramEditor/VRTHistogramEditorLayout.h"
#include "HistogramEditor/VRTHistogramGradientView.h"
#include "HistogramEditor/VRTHistogramGutter.h"
#include "HistogramEditor/VRTHistogramView.h"
#include "Platform/Foundation/NSNotificationCenter.h"
#include "Platform/TarnKit/TarnInterfaceFile.h"

#include <utility>

namespace {

constexpr NSRect kPanelFrame = {{0, 0}, {218, 137}};
constexpr int kMinimumWidth = 120;
constexpr int kMinimumHeight = 100;

// In the order of the channels.
constexpr const char* kChannelTitles[] = {"HistogramRGB", "HistogramRed", "HistogramGreen", "HistogramBlue",
                                          "HistogramAlpha"};

void registerClasses() {
  static const bool once = [] {
    TarnInterfaceFile::registerClass<VRTHistogramView>("VRTHistogramView");
    TarnInterfaceFile::registerClass<VRTHistogramGradientView>("VRTHistogramGradientView");
    TarnInterfaceFile::registerClass<VRTHistogramGutterIn>("VRTHistogramGutterIn");
    TarnInterfaceFile::registerClass<VRTHistogramGutterOut>("VRTHistogramGutterOut");
    return true;
  }();
  static_cast<void>(once);
}

}  // namespace

VRTHistogramEditor::VRTHistogramEditor(NSRect frame, QWidget* parent) : NSTarnView(frame, parent) {
  setAutoresizesSubviews(true);
  setAutoresizingMask(NSViewWidthSizable | NSViewHeightSizable);
  loadInterfaceFile();
}

VRTHistogramEditor::~VRTHistogramEditor() {
  delete _masterView;
  setHistogramPort(nullptr);
}

void VRTHistogramEditor::loadInterfaceFile() {
  registerClasses();
  NSPopUpButton *popUp = nullptr, *sidePopUp = nullptr;
  VRTHistogramView* histogram = nullptr;
  VRTHistogramGradientView* gradient = nullptr;
  VRTHistogramGutterIn* gutterIn = nullptr;
  VRTHistogramGutterOut* gutterOut = nullptr;
  TarnInterfaceFile file;
  file.addOutlet("popUp", popUp);
  file.addOutlet("sidePopUp", sidePopUp);
  file.addOutlet("histogramView", histogram);
  file.addOutlet("gradientView", gradient);
  file.addOutlet("gutterIn", gutterIn);
  file.addOutlet("gutterOut", gutterOut);
  file.addAction("setChannelValue:",
                 [this](QWidget* sender) { setChannelValue(dynamic_cast<NSPopUpButton*>(sender)); });
  file.addAction("setSide:", [this](QWidget* sender) {
    const auto* chosen = dynamic_cast<NSPopUpButton*>(sender);
    if (chosen) setShownSide(chosen->indexOfSelectedItem() == 1 ? VRTHistogramSide::Result : VRTHistogramSide::Input);
  });

  std::unique_ptr<NSTarnView> master = file.loadMasterView(VRTFrameworkBundleIdentifier, "TarnHistogramEditor");
  if (!master) return;
  _masterView = master.release();
  _popUp = popUp;
  _sidePopUp = sidePopUp;
  _histogramView = histogram;
  _gradientView = gradient;
  _gutterIn = gutterIn;
  _gutterOut = gutterOut;
  awakeFromNib();
}

void VRTHistogramEditor::awakeFromNib() {
  addSubview(*_masterView);
  if (_popUp) {
    _popUp->setAccessibleName(VRTLocalizedText("Channel"));
    _popUp->setToolTip(_popUp->accessibleName());
  }
  if (_sidePopUp) {
    _sidePopUp->setAccessibleName(VRTLocalizedText("Histogram of"));
    _sidePopUp->setToolTip(VRTLocalizedText("Shows the histogram of what comes in or of what goes out"));
  }
  if (_histogramView) _histogramView->setSideChosen([this](VRTHistogramSide) { updateSidePopUp(); });
  updateSidePopUp();
  QWidget* before = nullptr;
  for (QWidget* part :
       {static_cast<QWidget*>(_popUp), static_cast<QWidget*>(_sidePopUp), static_cast<QWidget*>(_histogramView),
        static_cast<QWidget*>(_gutterIn), static_cast<QWidget*>(_gutterOut)}) {
    if (before && part) QWidget::setTabOrder(before, part);
    if (part) before = part;
  }
}

void VRTHistogramEditor::setBounds(NSRect bounds) {
  NSTarnView::setBounds(bounds);
  layOut();
}

void VRTHistogramEditor::layOut() {
  if (!_masterView) return;
  _masterView->setFrame(bounds());
  const bool hasSides = _sidePopUp && _histogramView && _histogramView->hasCounts(VRTHistogramSide::Result);
  const VRTHistogramEditorLayout layout(bounds().size, hasSides);
  if (_popUp) NSSetFrame(*_popUp, layout.popUp);
  if (_sidePopUp) NSSetFrame(*_sidePopUp, layout.sidePopUp);
  if (_sidePopUp) _sidePopUp->setVisible(hasSides);
  if (_histogramView) _histogramView->setFrame(layout.histogram);
  if (_gutterIn) _gutterIn->setFrame(layout.gutterIn);
  if (_gradientView) _gradientView->setFrame(layout.gradient);
  if (_gutterOut) _gutterOut->setFrame(layout.gutterOut);
}

void VRTHistogramEditor::setDelegate(NSObject* delegate) {
  _delegate = VRTObjectReference<NSObject>(delegate);
}

NSObject* VRTHistogramEditor::delegate() const {
  return _delegate.lock().get();
}

void VRTHistogramEditor::setHistogramPort(VRTHistogramPort* port) {
  const auto old = std::exchange(_histogramPort, VRTObjectReference<VRTHistogramPort>(port).lock());
  if (old) old->removeObserver(this, "value");
  if (_histogramPort) _histogramPort->addObserver(this, "value", 0, nullptr);
  if (_histogramView) _histogramView->setHistogramPort(port);
  if (_gutterIn) _gutterIn->setHistogramPort(port);
  if (_gutterOut) _gutterOut->setHistogramPort(port);
  rebuildPopUp();
}

void VRTHistogramEditor::rebuildPopUp() {
  if (!_popUp) return;
  _popUp->removeAllItems();
  for (const char* title : kChannelTitles) _popUp->addItemWithTitle(VRTLocalizedTitle(title));
  if (const VRTChannelHistogram* channel = getHistogramChannel()) _popUp->selectItemAtIndex(channel->selectedChannel);
}

VRTChannelHistogram* VRTHistogramEditor::getHistogramChannel() const {
  return VRTHistogramChannelOfPort(_histogramPort.get());
}

void VRTHistogramEditor::observeValueForKeyPath(const std::string&, NSObject* object, const PropertyList&, void*) {
  if (object == _histogramPort.get()) update();
}

void VRTHistogramEditor::update() {
  if (_histogramView) _histogramView->update(false);
  if (_gradientView) _gradientView->update();
  if (_gutterIn) _gutterIn->update();
  if (_gutterOut) _gutterOut->update();
}

void VRTHistogramEditor::setChannelValue(NSPopUpButton* sender) {
  VRTChannelHistogram* channel = getHistogramChannel();
  if (!channel || !sender) return;
  channel->selectedChannel = sender->indexOfSelectedItem();
  if (_histogramView) _histogramView->update(true);
  if (_gutterIn) _gutterIn->update();
  if (_gutterOut) _gutterOut->update();
  NSNotificationCenter::defaultCenter().postNotificationName(kVRTHistogramChannelDidChange, this);
}

void VRTHistogramEditor::setCounts(VRTHistogramSide side, std::shared_ptr<const TCHistogram> counts,
                                   std::uint32_t bitsPerChannel) {
  if (!_histogramView) return;
  const bool hadResult = _histogramView->hasCounts(VRTHistogramSide::Result);
  _histogramView->setCounts(side, std::move(counts), bitsPerChannel);
  if (_histogramView->hasCounts(VRTHistogramSide::Result) != hadResult) updateSidePopUp();
}

void VRTHistogramEditor::setShownSide(VRTHistogramSide side) {
  if (!_histogramView) return;
  _histogramView->setShownSide(side);
  updateSidePopUp();
}

VRTHistogramSide VRTHistogramEditor::shownSide() const {
  return _histogramView ? _histogramView->shownSide() : VRTHistogramSide::Input;
}

// Its titles, what it shows, and whether it is there at all.
void VRTHistogramEditor::updateSidePopUp() {
  if (_sidePopUp) {
    _sidePopUp->removeAllItems();
    for (const char* title : {"Input", "Result"}) _sidePopUp->addItemWithTitle(VRTLocalizedText(title));
    _sidePopUp->selectItemAtIndex(shownSide() == VRTHistogramSide::Result ? 1 : 0);
  }
  layOut();
}

QSize VRTHistogramEditor::minimumSizeHint() const {
  return {kMinimumWidth, kMinimumHeight};
}

QString VRTHistogramEditor::accessibilityLabel() const {
  return VRTLocalizedText("Levels editor");
}

void VRTRegisterHistogramEditor() {
  VRTRegisterParameterViewFactory("VRTHistogramPort", [](QCObjectPort& port) -> NSTarnView* {
    auto* histogramPort = dynamic_cast<VRTHistogramPort*>(&port);
    if (!histogramPort) return nullptr;
    auto* editor = new VRTHistogramEditor(kPanelFrame);
    editor->setHistogramPort(histogramPort);
    return editor;
  });
}
