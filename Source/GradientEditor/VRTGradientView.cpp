// SPDX-License-Identifier: BSD-3-Clause
#include "GradientEditor/VRTGradientView.h"

#include "Channels/VRTChannelGradient.h"
#include "Controls/VRTLocalizedText.h"
#include "Controls/VRTTheme.h"
#include "Controls/VRTThemeStore.h"
#include "Platform/CoreFoundation/CFBundle.h"
#include "Platform/TarnKit/NSBezierPath.h"
#include "Platform/TarnKit/NSBitmapImageRep.h"
#include "Platform/TarnKit/NSImage.h"
#include "Platform/TarnKit/NSTarnColor.h"
#include "Platform/TarnKit/TarnReport.h"
#include "Platform/TarnKit/TarnTheme.h"
#include "Ports/VRTObjects.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace {

constexpr double kFrameWidth = 2;

// Without the picture the pattern fills nothing.
NSColor checkerColor() {
  const CFBundleRef bundle = CFBundleGetBundleWithIdentifier(CFSTR(VRTFrameworkBundleIdentifier));
  const std::string path = CFBundleCopyResourcePath(bundle, "KXThumbCheckerboard", "png");
  const auto picture = path.empty() ? nullptr : NSImage::initWithContentsOfFile(path);
  if (!picture) TarnReportOnce("Cannot read the picture KXThumbCheckerboard.png in the framework's bundle");
  return NSColor::colorWithPatternImage(picture);
}

// Whole pixels of a length in points; negative lengths and NaN have none.
std::uint32_t pixelsOf(double length) {
  constexpr double kMost = 4294967295.0;
  return length > 0 ? static_cast<std::uint32_t>(std::min(length, kMost)) : 0;
}

constexpr std::uint32_t roundedUpTo16(std::uint32_t bytes) {
  return (bytes + 15) & ~std::uint32_t{15};
}

}  // namespace

VRTChannelGradient* VRTGradientChannelOfPort(const VRTGradientPort* port) {
  if (!port) return nullptr;
  const auto value = std::dynamic_pointer_cast<VRTGradient>(port->rawValue());
  return value ? value->kxChannelGradient() : nullptr;
}

VRTGradientView::VRTGradientView(NSRect frame, QWidget* parent)
    : NSTarnView(frame, parent), _pCheckerColor(checkerColor()) {}

VRTGradientView::~VRTGradientView() = default;

void VRTGradientView::setGradientPort(VRTGradientPort* port) {
  _pGradientPort = VRTObjectReference<VRTGradientPort>(port);
}

VRTChannelGradient* VRTGradientView::getGradientChannel() const {
  return VRTGradientChannelOfPort(gradientPort().get());
}

void VRTGradientView::setRenderMode(std::int32_t mode) {
  if (mode == _renderMode) return;
  _renderMode = mode;
  _gradientOutOfDate = true;
  setNeedsDisplay(true);
}

void VRTGradientView::update() {
  _gradientOutOfDate = true;
  setNeedsDisplay(true);
}

void VRTGradientView::drawRect(NSRect) {
  drawGradient(bounds());
}

void VRTGradientView::drawGradient(NSRect rect) {
  const NSRect inner = NSMakeRect(rect.origin.x + kFrameWidth, rect.origin.y + kFrameWidth,
                                  rect.size.width - 2 * kFrameWidth, rect.size.height - 2 * kFrameWidth);
  DrawNinePartElementAtIndex(rect, VRTTheme::theme(), VRTThemeAtomWell, 0, 1.0, 0);
  if (_renderMode == VRTGradientRenderPremultiplied) {
    _pCheckerColor.set();
    NSBezierPath::fillRect(inner);
  }
  if (!getGradientChannel()) {
    NSTarnColor::inspectorLightAlternatingRowColor().set();
    NSBezierPath::fillRect(inner);
    return;
  }
  updateImage(inner.size);
  const double lowerEdge = isFlipped() ? bounds().size.height - kFrameWidth : inner.origin.y;
  _pGradientImage->compositeToPoint({inner.origin.x, lowerEdge}, NSCompositeSourceOver);
}

void VRTGradientView::updateImage(NSSize size) {
  if (!_pGradientImage || !NSEqualSizes(_pGradientImage->size(), size)) {
    allocateImage(size);
    _gradientOutOfDate = true;
  }
  if (_gradientOutOfDate && _pGradientRep) fillBitmap();
}

void VRTGradientView::allocateImage(NSSize size) {
  if (_pGradientImage && NSEqualSizes(_pGradientImage->size(), size)) return;
  const std::uint32_t width = pixelsOf(size.width);
  const std::uint32_t height = pixelsOf(size.height);
  _pGradientRep = std::make_shared<NSBitmapImageRep>(width, height, roundedUpTo16(width * 4));
  _pGradientImage = std::make_shared<NSImage>(size);
  _pGradientImage->addRepresentation(_pGradientRep);
}

void VRTGradientView::fillBitmap() {
  std::uint8_t* const row = _pGradientRep->bitmapData();
  if (!row) return;
  const std::uint32_t width = _pGradientRep->pixelsWide();
  const std::uint32_t height = _pGradientRep->pixelsHigh();
  const std::size_t pitch = _pGradientRep->bytesPerRow();
  const VRTChannelGradient* channel = getGradientChannel();
  if (!channel) {
    std::memset(row, 0, height * pitch);
    return;
  }
  // A table needs two entries; every row has room for four.
  channel->getGradient(0.0, row, std::max(width, 2u));
  VRTConvertGradientEntries(row, width, _renderMode);
  for (std::uint32_t y = 1; y < height; ++y) std::memcpy(row + y * pitch, row, pitch);
  _gradientOutOfDate = false;
}

QString VRTGradientView::accessibilityLabel() const {
  const QString given = NSTarnView::accessibilityLabel();
  return given.isEmpty() ? VRTLocalizedText("Gradient") : given;
}
