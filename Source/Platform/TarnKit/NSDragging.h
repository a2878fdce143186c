// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"
#include "Platform/TarnKit/NSColor.h"
#include "Platform/Visibility.h"

#include <QStringList>
#include <cstdint>
#include <memory>
#include <optional>

class NSBitmapImageRep;
class NSImage;
class QDropEvent;
class QMimeData;
class QWidget;

constexpr std::uint32_t NSDragOperationNone = 0;
constexpr std::uint32_t NSDragOperationCopy = 1;
constexpr std::uint32_t NSDragOperationLink = 2;
constexpr std::uint32_t NSDragOperationGeneric = 4;
constexpr std::uint32_t NSDragOperationMove = 16;

// Pasteboard types are MIME types.
constexpr const char* NSColorPboardType = "application/x-color";
constexpr const char* NSImagePboardType = "application/x-qt-image";

// A drag over a view. Valid during the call that hands it out.
class TARN_EXPORT NSDraggingInfo {
 public:
  NSDraggingInfo(const QDropEvent& event, const QWidget& widget);

  NSPoint draggingLocation() const { return location_; }  // as NSEvent::locationInWindow()
  // What the source allows. A source that allows anything at all allows the generic operation too.
  std::uint32_t draggingSourceOperationMask() const { return mask_; }
  QStringList pasteboardTypes() const;
  bool pasteboardHasType(const QString& type) const;
  std::optional<NSColor> colorFromPasteboard() const;  // empty when there is no readable color

 private:
  NSPoint location_;
  std::uint32_t mask_;
  const QMimeData* data_;
};

// What a drag carries.
TARN_EXPORT std::unique_ptr<QMimeData> NSPasteboardWithColor(const NSColor& color);
TARN_EXPORT std::unique_ptr<QMimeData> NSPasteboardWithImage(const NSImage& image);
TARN_EXPORT std::unique_ptr<QMimeData> NSPasteboardWithBitmap(const NSBitmapImageRep& bitmap);
// Drags that content from a widget with its picture under the pointer, until it is dropped or given up; returns the
// operation. Call it from mouseDragged. Everything may have been destroyed when it returns.
TARN_EXPORT std::uint32_t NSBeginDrag(QWidget& source, std::unique_ptr<QMimeData> pasteboard,
                                      std::uint32_t operationMask = NSDragOperationCopy);
