// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/TarnKit/NSDragging.h"

#include "Platform/TarnKit/NSImage.h"

#include <QDrag>
#include <QDropEvent>
#include <QImage>
#include <QMimeData>
#include <QPainter>
#include <QWidget>
#include <cstring>

namespace {

constexpr int kDragPictureSize = 16;
constexpr int kLargestDragPicture = 128;

std::uint32_t operationsOf(Qt::DropActions actions) {
  std::uint32_t mask = NSDragOperationNone;
  if (actions & Qt::CopyAction) mask |= NSDragOperationCopy | NSDragOperationGeneric;
  if (actions & Qt::MoveAction) mask |= NSDragOperationMove | NSDragOperationGeneric;
  if (actions & Qt::LinkAction) mask |= NSDragOperationLink | NSDragOperationGeneric;
  return mask;
}

Qt::DropActions actionsOf(std::uint32_t mask) {
  Qt::DropActions actions = Qt::IgnoreAction;
  if (mask & (NSDragOperationCopy | NSDragOperationGeneric)) actions |= Qt::CopyAction;
  if (mask & NSDragOperationMove) actions |= Qt::MoveAction;
  if (mask & NSDragOperationLink) actions |= Qt::LinkAction;
  return actions;
}

// Other toolkits send red, green, blue and alpha as four 16-bit numbers.
std::optional<NSColor> colorFromWords(const QByteArray& data) {
  std::uint16_t words[4];
  if (data.size() != qsizetype(sizeof words)) return std::nullopt;
  std::memcpy(words, data.constData(), sizeof words);
  const double most = 65535;
  return NSColor::colorWithCalibratedRed(words[0] / most, words[1] / most, words[2] / most, words[3] / most);
}

QPixmap pictureOf(const QMimeData& data) {
  if (const auto image = qvariant_cast<QImage>(data.imageData()); !image.isNull()) {
    const bool large = image.width() > kLargestDragPicture || image.height() > kLargestDragPicture;
    return QPixmap::fromImage(large ? image.scaled(kLargestDragPicture, kLargestDragPicture, Qt::KeepAspectRatio)
                                    : image);
  }
  QPixmap picture(kDragPictureSize, kDragPictureSize);
  picture.fill(qvariant_cast<QColor>(data.colorData()));
  QPainter painter(&picture);
  painter.setPen(Qt::black);
  painter.drawRect(0, 0, kDragPictureSize - 1, kDragPictureSize - 1);
  return picture;
}

}  // namespace

NSDraggingInfo::NSDraggingInfo(const QDropEvent& event, const QWidget& widget)
    : mask_(operationsOf(event.possibleActions())), data_(event.mimeData()) {
  const QWidget* window = widget.window();
  const QPointF position = widget.mapTo(window, event.position());
  location_ = NSPoint{position.x(), window->height() - position.y() - 0.5 / widget.devicePixelRatioF()};
}

QStringList NSDraggingInfo::pasteboardTypes() const {
  return data_ ? data_->formats() : QStringList();
}

bool NSDraggingInfo::pasteboardHasType(const QString& type) const {
  return data_ && data_->hasFormat(type);
}

std::optional<NSColor> NSDraggingInfo::colorFromPasteboard() const {
  if (!data_ || !data_->hasColor()) return std::nullopt;
  const auto color = qvariant_cast<QColor>(data_->colorData());
  if (color.isValid()) return NSColor::fromQColor(color);
  return colorFromWords(data_->data(NSColorPboardType));
}

std::unique_ptr<QMimeData> NSPasteboardWithColor(const NSColor& color) {
  auto data = std::make_unique<QMimeData>();
  data->setColorData(color.toQColor());
  return data;
}

std::unique_ptr<QMimeData> NSPasteboardWithImage(const NSImage& image) {
  return image.representation() ? NSPasteboardWithBitmap(*image.representation()) : std::make_unique<QMimeData>();
}

std::unique_ptr<QMimeData> NSPasteboardWithBitmap(const NSBitmapImageRep& bitmap) {
  auto data = std::make_unique<QMimeData>();
  const QImage image = NSImageOfBitmap(bitmap).copy();  // outlives the bitmap, without the padding of its rows
  if (!image.isNull()) data->setImageData(image);
  return data;
}

std::uint32_t NSBeginDrag(QWidget& source, std::unique_ptr<QMimeData> pasteboard, std::uint32_t operationMask) {
  auto* drag = new QDrag(&source);  // deletes itself
  const QPixmap picture = pictureOf(*pasteboard);
  drag->setPixmap(picture);
  drag->setHotSpot(picture.rect().center());
  drag->setMimeData(pasteboard.release());
  return operationsOf(drag->exec(actionsOf(operationMask)));
}
