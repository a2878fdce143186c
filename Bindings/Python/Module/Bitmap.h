// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Module.h"
#include "TarnCore/TCBitmap.h"
#include "TarnCore/TCPixelLayout.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>

namespace vorto::python {

using BitmapRef = std::shared_ptr<const VortoBitmap>;
using MutableBitmapRef = std::shared_ptr<VortoBitmap>;

// What Python knows as vorto.Bitmap: a bitmap that has pixels. Arrays that look at the pixels own them together with
// it, so that they stay where they are as long as anybody looks; an operation that needs other memory takes new one.
class Bitmap {
 public:
  explicit Bitmap(MutableBitmapRef pixels);  // not null; Error when it is empty
  explicit Bitmap(BitmapRef pixels);         // the same for pixels that must not change any more
  Bitmap(const Bitmap&) = delete;
  Bitmap& operator=(const Bitmap&) = delete;

  const VortoBitmap& pixels() const { return *pixels_; }
  BitmapRef shared() const { return pixels_; }
  const MutableBitmapRef& memory() const { return pixels_; }  // for who looks at isReadOnly() first
  VortoBitmap& mutablePixels();                               // Error when they must not change
  void replace(MutableBitmapRef pixels);                      // the former ones stay with those who look at them

  bool isReadOnly() const { return isReadOnly_; }
  void makeReadOnly() { isReadOnly_ = true; }

  const VortoPixelLayout& layout() const { return TCPixelLayoutOf(pixels_->formatCode); }
  std::size_t bytesPerRow() const;  // with the padding
  std::size_t bytes() const;        // from the first to the last pixel

 private:
  friend class Reading;
  friend class Writing;

  MutableBitmapRef pixels_;
  bool isReadOnly_ = false;
  std::atomic<int> users_ = 0;  // readers; -1 for one who writes
};

// A call uses the bitmap; needed because calls give up the interpreter's lock. Error when another thread does at the
// same time in a way that does not go together: the framework takes no locks, one bitmap is used by one thread. Several
// may read.
class Reading {
 public:
  explicit Reading(const Bitmap& bitmap);
  ~Reading();
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

 private:
  Bitmap& bitmap_;
};
class Writing {
 public:
  explicit Writing(Bitmap& bitmap);  // Error too when the pixels must not change
  ~Writing();
  Writing(const Writing&) = delete;
  Writing& operator=(const Writing&) = delete;

 private:
  Bitmap& bitmap_;
};

// Gives up the interpreter's lock for as long as it lives, where the work takes long enough to be worth it.
class Unlocked {
 public:
  explicit Unlocked(std::size_t bytes) {
    if (bytes >= kWorthwhile) release_.emplace();
  }

 private:
  static constexpr std::size_t kWorthwhile = std::size_t{1} << 16;
  std::optional<py::gil_scoped_release> release_;
};

// A new bitmap. ValueError for sizes or a layout that no bitmap has, MemoryError when there is no memory.
MutableBitmapRef newBitmap(std::uint64_t width, std::uint64_t height, std::uint32_t code, std::uint64_t rowPadding = 0,
                           bool isUnset = false);

// A bitmap over memory of somebody else: `bytes` at `data`, which `owner` keeps. Operations stay inside of it.
MutableBitmapRef foreignBitmap(std::uint8_t* data, std::size_t bytes, std::uint32_t width, std::uint32_t height,
                               std::uint32_t code, std::uint32_t rowPadding, std::shared_ptr<void> owner);

// The same pixels in rows without padding; the bitmap itself when it has none.
BitmapRef tightPixels(const Bitmap& bitmap);
MutableBitmapRef tightCopy(const VortoBitmap& bitmap);

// Copies pixels row by row between bitmaps of one size and layout, whatever their padding.
void copyRows(VortoBitmap& destination, const VortoBitmap& source);

// Calls operation(VortoBitmap&) for a bitmap whose rows have no padding; for one that has, once for each row.
template <class Operation>
void onTightRows(VortoBitmap& bitmap, Operation operation) {
  if (bitmap.rowPadding == 0) return operation(bitmap);
  const std::size_t row = std::size_t{bitmap.width} * TCPixelLayoutOf(bitmap.formatCode).bytesPerPixel();
  std::uint32_t code = bitmap.formatCode;
  for (std::uint32_t y = 0; y < bitmap.height; ++y) {
    const MutableBitmapRef one =
        foreignBitmap(bitmap.data + y * (row + bitmap.rowPadding), row, bitmap.width, 1, bitmap.formatCode, 0, nullptr);
    operation(*one);
    code = one->formatCode;
  }
  bitmap.formatCode = code;
}

// The parts of the class in Python.
using BitmapClass = py::class_<Bitmap, std::shared_ptr<Bitmap>>;
void setUpBuffers(PyHeapTypeObject* type);
void bindBitmapOperations(BitmapClass& bitmap);
void bindBitmapCopies(BitmapClass& bitmap);
void bindBitmapExchange(BitmapClass& bitmap);

// The bitmap of an array (the buffer protocol) or of an exporter of DLPack; see the docstring of Bitmap.from_array().
std::shared_ptr<Bitmap> bitmapFromArray(const py::object& array, std::optional<std::uint32_t> code,
                                        std::optional<bool> copies);

}  // namespace vorto::python
