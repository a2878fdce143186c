// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSImage.h"

#include "Platform/TarnKit/NSGraphicsContext.h"

#include <QImage>
#include <QPainter>
#include <cstring>

namespace {

// Bitmaps are as large as their image with fractions cut off; what is drawn is one pixel a point then.
QSizeF drawnSize(NSSize size, const NSBitmapImageRep& bitmap) {
  const double width = bitmap.pixelsWide();
  const double height = bitmap.pixelsHigh();
  const bool onePixelAPoint =
      size.width >= width && size.width < width + 1 && size.height >= height && size.height < height + 1;
  return onePixelAPoint ? QSizeF(width, height) : QSizeF(size.width, size.height);
}

}  // namespace

QImage NSImageOfBitmap(const NSBitmapImageRep& bitmap) {
  if (!bitmap.bitmapData() || bitmap.pixelsWide() == 0) return {};
  return {bitmap.bitmapData(), int(bitmap.pixelsWide()), int(bitmap.pixelsHigh()), qsizetype(bitmap.bytesPerRow()),
          QImage::Format_RGBA8888_Premultiplied};
}

NSImage::NSImage(NSSize size) : size_(size) {}

std::shared_ptr<NSImage> NSImage::initWithContentsOfFile(const std::string& path) {
  const QImage file = QImage(QString::fromStdString(path)).convertToFormat(QImage::Format_RGBA8888_Premultiplied);
  if (file.isNull()) return nullptr;
  const auto width = std::uint32_t(file.width());
  const auto height = std::uint32_t(file.height());
  auto bitmap = std::make_shared<NSBitmapImageRep>(width, height, width * 4);
  if (!bitmap->bitmapData()) return nullptr;
  for (std::uint32_t row = 0; row < height; ++row) {
    std::memcpy(bitmap->bitmapData() + std::size_t{row} * bitmap->bytesPerRow(), file.constScanLine(int(row)),
                std::size_t{width} * 4);
  }
  auto image = std::make_shared<NSImage>(NSSize{double(width), double(height)});
  image->addRepresentation(std::move(bitmap));
  return image;
}

void NSImage::addRepresentation(std::shared_ptr<NSBitmapImageRep> representation) {
  if (representation) representation_ = std::move(representation);
}

void NSImage::compositeToPoint(NSPoint point, int operation) const {
  const NSGraphicsContext* context = NSGraphicsContext::currentContext();
  if (!context || !representation_) return;
  const QImage image = NSImageOfBitmap(*representation_);
  const QSizeF size = drawnSize(size_, *representation_);
  if (image.isNull() || !(size.width() > 0) || !(size.height() > 0)) return;
  const QPointF lowerLeft = context->toWidget(point);
  QPainter& painter = context->painter();
  painter.save();
  painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
  painter.setCompositionMode(operation == NSCompositeCopy ? QPainter::CompositionMode_Source
                                                          : QPainter::CompositionMode_SourceOver);
  painter.drawImage(QRectF(QPointF(lowerLeft.x(), lowerLeft.y() - size.height()), size), image);
  painter.restore();
}
