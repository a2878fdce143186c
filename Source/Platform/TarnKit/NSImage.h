// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSGeometry.h"
#include "Platform/TarnKit/NSBitmapImageRep.h"
#include "Platform/Visibility.h"

#include <memory>
#include <string>

class QImage;

constexpr int NSCompositeCopy = 1;
constexpr int NSCompositeSourceOver = 2;

// An image of a size in points. Its pixels are one bitmap representation, shared with whoever fills it.
class TARN_EXPORT NSImage {
 public:
  // Sizes are kept as given; negative ones draw nothing.
  explicit NSImage(NSSize size);
  // The image in a file, one pixel a point; null when the file is missing or broken.
  static std::shared_ptr<NSImage> initWithContentsOfFile(const std::string& path);

  // In points, as it was made.
  NSSize size() const { return size_; }
  // The newest representation is the one that is drawn. Null is ignored.
  void addRepresentation(std::shared_ptr<NSBitmapImageRep> representation);
  const std::shared_ptr<NSBitmapImageRep>& representation() const { return representation_; }

  // Draws the image upright at its own size, in flipped views too, its lower left corner at a point of the view that is
  // being drawn. Pixels are never smoothed: at higher device pixel ratios each becomes a block. Does nothing outside
  // drawRect.
  void compositeToPoint(NSPoint point, int operation) const;

 private:
  NSSize size_;
  std::shared_ptr<NSBitmapImageRep> representation_;
};

// A view of the bitmap's own memory: valid while the bitmap lives and is not written.
QImage NSImageOfBitmap(const NSBitmapImageRep& bitmap);
