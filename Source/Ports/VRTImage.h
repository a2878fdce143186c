// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/QuartzComposer/QCObject.h"

#include <memory>

class QCImagePort;
class VortoBitmap;

// A bitmap as the value of an image port. The bitmap is shared and must not change any more.
//
// Between patches pixels are premultiplied, first row on top, without row padding, in RGBA8 (code 0), ARGB8 (code 1),
// RGBA16 (code 4) or RGBA float (code 9).
class TARN_EXPORT VRTImage : public QCImage {
 public:
  explicit VRTImage(std::shared_ptr<const VortoBitmap> bitmap);  // must not be null
  ~VRTImage() override;
  std::string className() const override { return "VRTImage"; }
  std::size_t pixelsWide() const override;
  std::size_t pixelsHigh() const override;
  int _bufferPixelSize() const override;
  // Never null.
  const std::shared_ptr<const VortoBitmap>& bitmap() const { return bitmap_; }

  // The bitmap that flows into a port; null when there is no image or it is of another class.
  static std::shared_ptr<const VortoBitmap> bitmapOfPort(const QCImagePort& port);
  static void setBitmapOfPort(QCImagePort& port, std::shared_ptr<const VortoBitmap> bitmap);  // null empties the port

 private:
  std::shared_ptr<const VortoBitmap> bitmap_;
};
