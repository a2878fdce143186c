// SPDX-License-Identifier: BSD-3-Clause
#include "Ports/VRTImage.h"

#include "Platform/Foundation/NSClassTable.h"
#include "Platform/QuartzComposer/QCPort.h"
#include "TarnCore/TCBitmap.h"

#include <utility>

namespace {

const NSClassRegistration kImageClass("VRTImage", "QCImage", {});

}  // namespace

VRTImage::VRTImage(std::shared_ptr<const VortoBitmap> bitmap) : bitmap_(std::move(bitmap)) {}

VRTImage::~VRTImage() = default;

std::size_t VRTImage::pixelsWide() const {
  return bitmap_->width;
}

std::size_t VRTImage::pixelsHigh() const {
  return bitmap_->height;
}

int VRTImage::_bufferPixelSize() const {
  return static_cast<int>(bitmap_->bitsPerChannel / 8 * bitmap_->channels);
}

std::shared_ptr<const VortoBitmap> VRTImage::bitmapOfPort(const QCImagePort& port) {
  const auto image = std::dynamic_pointer_cast<VRTImage>(port.imageValue());
  return image ? image->bitmap() : nullptr;
}

void VRTImage::setBitmapOfPort(QCImagePort& port, std::shared_ptr<const VortoBitmap> bitmap) {
  port.setValue(bitmap ? std::make_shared<VRTImage>(std::move(bitmap)) : nullptr);
}
