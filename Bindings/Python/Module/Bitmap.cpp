// SPDX-License-Identifier: BSD-3-Clause
#include "Bitmap.h"

#include "Errors.h"

#include <cstring>
#include <new>

namespace vorto::python {
namespace {

// What a bitmap can hold, with the slack that it reserves.
constexpr std::uint64_t kLargestBytes = 0xFFFFFFFFu - 65536u;
constexpr std::uint64_t kLargestSide = std::uint64_t{1} << 26;  // its width in bits is a number of 32 bits

// The memory belongs to somebody else and is not given back to the system.
class ForeignBitmap : public VortoBitmap {
 public:
  explicit ForeignBitmap(std::shared_ptr<void> owner) : owner_(std::move(owner)) {}
  ~ForeignBitmap() override { data = nullptr; }

 private:
  std::shared_ptr<void> owner_;
};

[[noreturn]] void failBusy() {
  throw Error("another thread is using this bitmap; one bitmap is used by one thread at a time");
}

}  // namespace

Bitmap::Bitmap(MutableBitmapRef pixels) : pixels_(std::move(pixels)) {
  if (!pixels_ || !pixels_->data) throw Error("the bitmap is empty");
}

Bitmap::Bitmap(BitmapRef pixels) : Bitmap(std::const_pointer_cast<VortoBitmap>(std::move(pixels))) {
  isReadOnly_ = true;
}

VortoBitmap& Bitmap::mutablePixels() {
  if (isReadOnly_) throw Error("the bitmap is read-only; copy() gives one that can be changed");
  return *pixels_;
}

void Bitmap::replace(MutableBitmapRef pixels) {
  mutablePixels();
  pixels_ = std::move(pixels);
}

std::size_t Bitmap::bytesPerRow() const {
  return std::size_t{pixels_->width} * layout().bytesPerPixel() + pixels_->rowPadding;
}

std::size_t Bitmap::bytes() const {
  return bytesPerRow() * pixels_->height - pixels_->rowPadding;
}

Reading::Reading(const Bitmap& bitmap) : bitmap_(const_cast<Bitmap&>(bitmap)) {
  int users = bitmap_.users_.load();
  do {
    if (users < 0) failBusy();
  } while (!bitmap_.users_.compare_exchange_weak(users, users + 1));
}

Reading::~Reading() {
  --bitmap_.users_;
}

Writing::Writing(Bitmap& bitmap) : bitmap_(bitmap) {
  bitmap.mutablePixels();
  int nobody = 0;
  if (!bitmap_.users_.compare_exchange_strong(nobody, -1)) failBusy();
}

Writing::~Writing() {
  bitmap_.users_ = 0;
}

MutableBitmapRef newBitmap(std::uint64_t width, std::uint64_t height, std::uint32_t code, std::uint64_t rowPadding,
                           bool isUnset) {
  if (code >= std::size(kVortoPixelLayouts) || code == VortoPixelFormat::ARGB8NoAlpha) {
    throw py::value_error("no bitmap is made of this pixel format");
  }
  const VortoPixelLayout& layout = TCPixelLayoutOf(code);
  if (width < 1 || height < 1 || width > kLargestSide || height > kLargestBytes || rowPadding > kLargestBytes ||
      (width * layout.bytesPerPixel() + rowPadding) > kLargestBytes / height) {
    throw py::value_error("a bitmap has at least one pixel and at most 4 GiB: " + std::to_string(width) + " x " +
                          std::to_string(height) + " pixels of " + layout.name + " is none");
  }
  const auto w = static_cast<std::uint32_t>(width);
  const auto h = static_cast<std::uint32_t>(height);
  MutableBitmapRef bitmap =
      rowPadding != 0 ? std::make_shared<VortoBitmap>(w, h, 8 * layout.bytesPerChannel(), layout.channels, code,
                                                      static_cast<std::uint32_t>(rowPadding))
                      : MutableBitmapRef(isUnset ? TCCreateUnsetBitmap(w, h, code) : TCCreateBitmap(w, h, code));
  if (!bitmap->data) throw std::bad_alloc();
  return bitmap;
}

MutableBitmapRef foreignBitmap(std::uint8_t* data, std::size_t bytes, std::uint32_t width, std::uint32_t height,
                               std::uint32_t code, std::uint32_t rowPadding, std::shared_ptr<void> owner) {
  const VortoPixelLayout& layout = TCPixelLayoutOf(code);
  const auto bitmap = std::make_shared<ForeignBitmap>(std::move(owner));
  bitmap->width = width;
  bitmap->height = height;
  bitmap->bitsPerChannel = 8 * layout.bytesPerChannel();
  bitmap->channels = static_cast<std::uint32_t>(layout.channels);
  bitmap->rowPadding = rowPadding;
  bitmap->formatCode = code;
  bitmap->allocSize = static_cast<std::uint32_t>(bytes);
  bitmap->data = data;
  return bitmap;
}

void copyRows(VortoBitmap& destination, const VortoBitmap& source) {
  const std::size_t row = std::size_t{source.width} * TCPixelLayoutOf(source.formatCode).bytesPerPixel();
  for (std::size_t y = 0; y < source.height; ++y) {
    std::memmove(destination.data + y * (row + destination.rowPadding), source.data + y * (row + source.rowPadding),
                 row);
  }
}

MutableBitmapRef tightCopy(const VortoBitmap& bitmap) {
  MutableBitmapRef copy = newBitmap(bitmap.width, bitmap.height, bitmap.formatCode, 0, true);
  if (bitmap.rowPadding == 0) {
    copy->copy(bitmap);
  } else {
    copyRows(*copy, bitmap);
  }
  return copy;
}

BitmapRef tightPixels(const Bitmap& bitmap) {
  return bitmap.pixels().rowPadding == 0 ? bitmap.shared() : tightCopy(bitmap.pixels());
}

}  // namespace vorto::python
