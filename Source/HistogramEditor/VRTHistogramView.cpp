// SPDX-License-Identifier: BSD-3-Clause
#include "HistogramEditor/VRTHistogramView.h"

#include "Channels/VRTChannelHistogram.h"
#include "Controls/VRTLocalizedText.h"
#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"
#include "HistogramEditor/VRTHistogramGutter.h"
#include "HistogramEditor/VRTHistogramReadoutView.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Platform/TarnKit/NSBezierPath.h"
#include "Platform/TarnKit/TarnTheme.h"
#include "Registry/VRTProtocols.h"

#include <QActionGroup>
#include <QMenu>
#include <QPointer>

namespace {

constexpr const char* kImageKeyPath = "__rawValue__";

// The pixels as the context describes them.
TCHistogramImage describedImage(VortoExecutionContext& context, const QCImage& image) {
  TCHistogramImage described;
  described.pixelsWide = context.pixelsWideFromImage(image);
  described.pixelsHigh = context.pixelsHighFromImage(image);
  described.isRedFirst = context.formatFromImage(image) != 0;
  context.getPixelsFromImage(image, &described.baseAddress, &described.bytesPerRow);
  return described;
}

}  // namespace

VRTHistogramView::VRTHistogramView(NSRect frame, QWidget* parent) : NSTarnView(frame, parent) {
  setFocusPolicy(Qt::TabFocus);  // for the menu key and the readout
}

VRTHistogramView::~VRTHistogramView() {
  delete readoutView_;
}

QCPort* VRTHistogramView::imageInputPort() const {
  const auto port = _pHistogramPort.lock();
  const QCPatch* node = port ? port->node() : nullptr;
  return node && isVortoFilter(*node) ? filterInputImagePort(*node) : nullptr;
}

void VRTHistogramView::setHistogramPort(VRTHistogramPort* port) {
  if (const auto observed = observedPort_.lock()) observed->removeObserver(this, kImageKeyPath);
  _pHistogramPort = VRTObjectReference<VRTHistogramPort>(port);
  QCPort* imagePort = imageInputPort();
  observedPort_ = VRTObjectReference<QCPort>(imagePort);
  if (imagePort) {
    imagePort->addObserver(this, kImageKeyPath, 0, nullptr);
    resampleInputImage();
  }
  _histogramOutOfDate = true;
  setNeedsDisplay(true);
}

VRTChannelHistogram* VRTHistogramView::getHistogramChannel() const {
  return VRTHistogramChannelOfPort(_pHistogramPort.lock().get());
}

void VRTHistogramView::observeValueForKeyPath(const std::string&, NSObject*, const PropertyList&, void*) {
  resampleInputImage();
}

void VRTHistogramView::resampleInputImage() {
  if (input_.counts) return;
  const auto* port = dynamic_cast<const QCImagePort*>(imageInputPort());
  const std::shared_ptr<QCImage> image = port ? port->imageValue() : nullptr;
  if (!image) return;
  computeHistogramSamples(*image);
  _histogramOutOfDate = true;
  setNeedsDisplay(true);
}

void VRTHistogramView::computeHistogramSamples(const QCImage& image) {
  _samples = TCHistogram();
  const int pixelBytes = image._bufferPixelSize();
  if (pixelBytes != 4 && pixelBytes != 8 && pixelBytes != 16) return;
  const QCPort* port = imageInputPort();
  QCPatch* node = port ? port->node() : nullptr;
  VortoExecutionContext* context = node ? vortoExecutionContext(*node) : nullptr;
  if (!context) return;
  TCHistogramImage described = describedImage(*context, image);
  described.bitsPerChannel = static_cast<std::uint32_t>(pixelBytes) * 2;
  bitsOfSamples_ = described.bitsPerChannel;
  TCCountHistogram(described, _samples);
}

void VRTHistogramView::setCounts(VRTHistogramSide side, std::shared_ptr<const TCHistogram> counts,
                                 std::uint32_t bitsPerChannel) {
  const bool isInput = side == VRTHistogramSide::Input;
  (isInput ? input_ : result_) = {std::move(counts), bitsPerChannel};
  if (isInput) resampleInputImage();
  update(true);
}

VRTHistogramSide VRTHistogramView::shownSide() const {
  return hasCounts(VRTHistogramSide::Result) ? chosenSide_ : VRTHistogramSide::Input;
}

void VRTHistogramView::setShownSide(VRTHistogramSide side) {
  chosenSide_ = side;
  update(true);
}

const TCHistogram& VRTHistogramView::shownHistogram() const {
  const auto& counts = given(shownSide()).counts;
  return counts ? *counts : _samples;
}

std::int32_t VRTHistogramView::selectedChannel() const {
  const VRTChannelHistogram* channel = getHistogramChannel();
  return channel ? channel->selectedChannel : 0;
}

std::uint32_t VRTHistogramView::shownBits() const {
  const Given& shown = given(shownSide());
  return shown.counts ? shown.bitsPerChannel : bitsOfSamples_;
}

const TCHistogram::Counts& VRTHistogramView::shownCounts() const {
  return VRTHistogramCountsOfChannel(shownHistogram(), selectedChannel());
}

void VRTHistogramView::update(bool) {
  _histogramOutOfDate = true;
  setNeedsDisplay(true);
  showReadout();
}

void VRTHistogramView::drawRect(NSRect) {
  drawHistogram(bounds());
  drawClipping();
  drawPointedLevel();
  if (hasFocus()) NSDrawFocusRing(bounds());
}

void VRTHistogramView::drawHistogram(NSRect rect) {
  DrawNinePartElementAtIndex(rect, VRTTheme::theme(), VRTThemeAtomWell, 0, 1.0, 0);
  updateImage(VRTHistogramPictureSize(rect));
  _pHistogram.image->compositeToPoint(VRTHistogramPictureOrigin(rect, bounds(), isFlipped()), NSCompositeSourceOver);
}

void VRTHistogramView::updateImage(NSSize size) {
  if (!_pHistogram.image || !NSEqualSizes(_pHistogram.image->size(), size)) {
    allocateImage(size);
    _histogramOutOfDate = true;
  }
  if (!_histogramOutOfDate) return;
  computeHistogramImage(size);
  _histogramOutOfDate = false;
}

void VRTHistogramView::allocateImage(NSSize size) {
  if (_pHistogram.image && NSEqualSizes(_pHistogram.image->size(), size)) return;
  _pHistogram = VRTMakeHistogramBitmap(size);
}

void VRTHistogramView::computeHistogramImage(NSSize) {
  if (!_pHistogram.representation) return;
  VRTPaintHistogram(*_pHistogram.representation, shownCounts(), histogramScale_);
}

void VRTHistogramView::setHistogramScale(VRTHistogramScale scale) {
  if (scale == histogramScale_) return;
  histogramScale_ = scale;
  update(true);
}

QMenu* VRTHistogramView::menuForEvent(const NSEvent&) {
  auto* menu = new QMenu(this);
  const QPointer<VRTHistogramView> self(this);
  const auto add = [&](QActionGroup& choices, const char* title, bool isChosen, std::function<void()> choose) {
    QAction* choice = menu->addAction(VRTLocalizedText(title));
    choice->setCheckable(true);
    choice->setChecked(isChosen);
    choices.addAction(choice);
    QObject::connect(choice, &QAction::triggered, [self, choose = std::move(choose)] {
      if (self) choose();
    });
  };
  auto* scales = new QActionGroup(menu);
  for (const auto& [title, scale] :
       {std::pair{"Linear", VRTHistogramScale::Linear}, {"Logarithmic", VRTHistogramScale::Logarithmic}}) {
    add(*scales, title, scale == histogramScale_, [this, chosen = scale] { setHistogramScale(chosen); });
  }
  if (!hasCounts(VRTHistogramSide::Result)) return menu;
  menu->addSeparator();
  auto* sides = new QActionGroup(menu);
  for (const auto& [title, side] :
       {std::pair{"Input", VRTHistogramSide::Input}, {"Result", VRTHistogramSide::Result}}) {
    add(*sides, title, side == shownSide(), [this, chosen = side] {
      setShownSide(chosen);
      if (sideChosen_) sideChosen_(chosen);
    });
  }
  return menu;
}

QString VRTHistogramView::accessibilityLabel() const {
  return VRTLocalizedText("Histogram");
}
