// SPDX-License-Identifier: BSD-3-Clause
// Operations from one bitmap to another, which was made in its size and layout before; and those that make a new one.
#include "Bitmap.h"
#include "BitmapConversion.h"
#include "Enumerations.h"
#include "Host/Pixels/Resampling.h"
#include "TarnCore/TCColor.h"

#include <string>

namespace vorto::python {
namespace {

using Format = VortoPixelFormat;

[[noreturn]] void fail(const std::string& reason) {
  throw py::value_error(reason);
}

void requireSameSize(const Bitmap& destination, const Bitmap& source) {
  if (destination.pixels().width == source.pixels().width && destination.pixels().height == source.pixels().height)
    return;
  fail("the bitmaps differ in size");
}

bool isPair(const Bitmap& destination, std::uint32_t to, const Bitmap& source, std::uint32_t from) {
  return destination.pixels().formatCode == to && source.pixels().formatCode == from;
}

// One layout, or two of which the operation makes one from the other.
void requirePair(const Bitmap& destination, const Bitmap& source, bool isConverted) {
  if (isConverted || destination.pixels().formatCode == source.pixels().formatCode) return;
  fail(std::string("this is not done from ") + source.layout().name + " to " + destination.layout().name);
}

void requireFourBytes(const Bitmap& bitmap) {
  const std::uint32_t code = bitmap.pixels().formatCode;
  if (code != Format::RGBA8 && code != Format::ARGB8) fail("this is done with four channels of 8 bits");
}

// Calls operation(destination, source) with bitmaps that have no padding between rows.
template <class Operation>
void transfer(Bitmap& destination, const Bitmap& source, Operation operation) {
  const Writing writing(destination);
  std::optional<Reading> reading;
  if (&destination != &source) reading.emplace(source);
  const Unlocked unlocked(destination.bytes() + source.bytes());
  VortoBitmap& to = destination.mutablePixels();
  if (&destination == &source && to.rowPadding == 0) return operation(to, to);
  const BitmapRef from = tightPixels(source);
  if (to.rowPadding == 0) return operation(to, *from);
  const MutableBitmapRef tight = tightCopy(to);
  operation(*tight, *from);
  copyRows(to, *tight);
}

void copyFrom(Bitmap& self, const Bitmap& source) {
  requireSameSize(self, source);
  requirePair(self, source,
              isPair(self, Format::ARGB8, source, Format::YUV8) || isPair(self, Format::YUV8, source, Format::ARGB8));
  transfer(self, source, [](VortoBitmap& to, const VortoBitmap& from) { to.copy(from); });
}

void copyWithFlip(Bitmap& self, const Bitmap& source) {
  requireSameSize(self, source);
  requirePair(self, source, isPair(self, Format::ARGB8, source, Format::YUV8));
  transfer(self, source, [](VortoBitmap& to, const VortoBitmap& from) { to.copyWithFlip(from); });
}

using CopyMethod = void (VortoBitmap::*)(const VortoBitmap&);
void swizzle(Bitmap& self, const Bitmap& source, CopyMethod method) {
  requireSameSize(self, source);
  requireFourBytes(self);
  requireFourBytes(source);
  transfer(self, source, [method](VortoBitmap& to, const VortoBitmap& from) { (to.*method)(from); });
}

void requireInside(const Bitmap& source, std::int64_t x, std::int64_t y, std::uint64_t width, std::uint64_t height) {
  const VortoBitmap& pixels = source.pixels();
  const bool isInside = x >= 0 && y >= 0 && width <= pixels.width && height <= pixels.height &&
                        x <= static_cast<std::int64_t>(pixels.width - width) &&
                        y <= static_cast<std::int64_t>(pixels.height - height);
  if (isInside && x <= 0x7FFFFFFF && y <= 0x7FFFFFFF) return;
  fail("the rectangle does not lie inside the bitmap of " + std::to_string(pixels.width) + " x " +
       std::to_string(pixels.height));
}

void copyWithCropping(Bitmap& self, const Bitmap& source, std::int64_t x, std::int64_t y, bool flip) {
  requirePair(self, source, isPair(self, Format::ARGB8, source, Format::YUV8));
  if (self.pixels().formatCode == Format::YUV8) fail("a rectangle of 4:2:2 pixels is copied into ARGB8");
  requireInside(source, x, y, self.pixels().width, self.pixels().height);
  transfer(self, source, [=](VortoBitmap& to, const VortoBitmap& from) {
    to.copyWithCropping(from, static_cast<int>(x), static_cast<int>(y), flip);
  });
}

void copyWithUnPreMult(Bitmap& self, const Bitmap& source, const VortoColor& background) {
  requireSameSize(self, source);
  requirePair(self, source, false);
  if (self.pixels().formatCode != Format::ARGB8) fail("this is done with ARGB8");
  transfer(self, source,
           [background](VortoBitmap& to, const VortoBitmap& from) { to.copyWithUnPreMult(from, background); });
}

void copyWithScaling(Bitmap& self, const Bitmap& source) {
  requirePair(self, source, isPair(self, Format::ARGB8, source, Format::YUV8));
  if (self.pixels().formatCode == Format::YUV8) fail("4:2:2 pixels are scaled into ARGB8");
  transfer(self, source, [](VortoBitmap& to, const VortoBitmap& from) { to.copyWithScaling(from); });
}

void copyWithScalingAndDepthConversion(Bitmap& self, const Bitmap& source) {
  if (!isReadyForDepth(source.pixels().formatCode) || !isDepthTarget(self.pixels().formatCode)) {
    fail(std::string("this is not done from ") + source.layout().name + " to " + self.layout().name);
  }
  transfer(self, source, [](VortoBitmap& to, const VortoBitmap& from) { to.copyWithScalingAndDepthConversion(from); });
}

// The bitmap takes the size and layout of the source unless it unpremultiplies: then new memory takes the old one's
// place.
void copyWithOutputConversion(Bitmap& self, const Bitmap& source, bool unpremultiply, bool opaque, bool alphaToGray,
                              const VortoColor& background) {
  if (unpremultiply) {
    copyWithUnPreMult(self, source, background);
  } else if (&self != &source) {
    const Writing writing(self);
    const Reading reading(source);
    const Unlocked unlocked(source.bytes());
    self.replace(tightCopy(source.pixels()));
  }
  py::cast(&self, py::return_value_policy::reference)
      .attr("do_output_conversion")(false, opaque, alphaToGray, background);
}

void setData(Bitmap& self, const py::buffer& source) {
  Py_buffer view{};
  if (PyObject_GetBuffer(source.ptr(), &view, PyBUF_CONTIG_RO) != 0) throw py::error_already_set();
  const std::unique_ptr<Py_buffer, void (*)(Py_buffer*)> held(&view, PyBuffer_Release);
  const std::size_t row = self.bytesPerRow() - self.pixels().rowPadding;
  if (static_cast<std::size_t>(view.len) != row * self.pixels().height) {
    fail("the bitmap has " + std::to_string(row * self.pixels().height) + " bytes of pixels, not " +
         std::to_string(view.len));
  }
  const Writing writing(self);
  const Unlocked unlocked(self.bytes());
  const VortoBitmap& pixels = self.pixels();
  copyRows(self.mutablePixels(),
           *foreignBitmap(static_cast<std::uint8_t*>(view.buf), static_cast<std::size_t>(view.len), pixels.width,
                          pixels.height, pixels.formatCode, 0, nullptr));
}

std::shared_ptr<Bitmap> cropped(const Bitmap& self, std::int64_t x, std::int64_t y, std::uint64_t width,
                                std::uint64_t height) {
  requireInside(self, x, y, width, height);
  const bool isYUV = self.pixels().formatCode == Format::YUV8;
  const std::uint32_t code = isYUV ? Format::ARGB8 : self.pixels().formatCode;
  auto result = std::make_shared<Bitmap>(newBitmap(width, height, code));
  copyWithCropping(*result, self, x, y, false);
  return result;
}

std::shared_ptr<Bitmap> converted(const Bitmap& self, PixelFormat format) {
  const Reading reading(self);
  const Unlocked unlocked(self.bytes());
  return std::make_shared<Bitmap>(convertedPixels(self, codeOf(format)));
}

std::shared_ptr<Bitmap> scaled(const Bitmap& self, std::uint64_t width, std::uint64_t height, const std::string& filter,
                               const std::string& fit) {
  const auto wantedFilter = host::scalingFilterNamed(filter);
  const auto wantedFit = host::scalingFitNamed(fit);
  if (!wantedFilter) fail("filter is nearest, box, linear, cubic or lanczos, not " + filter);
  if (!wantedFit) fail("fit is stretch, fit or fill, not " + fit);
  const std::uint32_t code = self.pixels().formatCode;
  const bool isExchanged = TCPixelLayoutOf(code).isExchanged;
  if (!isExchanged) fail("RGBA8, ARGB8, RGBA16 and RGBAFloat are scaled; converted() makes one of them");
  newBitmap(width, height, code);  // whether there can be such a bitmap
  const Reading reading(self);
  const Unlocked unlocked(self.bytes());
  const BitmapRef result =
      host::scaledBitmap(tightPixels(self), {static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height)},
                         {*wantedFilter, *wantedFit});
  return std::make_shared<Bitmap>(result == self.shared() ? tightCopy(*result)
                                                          : std::const_pointer_cast<VortoBitmap>(result));
}

}  // namespace

void bindBitmapCopies(BitmapClass& bitmap) {
  const py::arg source("source");
  bitmap.def(
      "copy_from", &copyFrom, source,
      "Take the pixels of a bitmap of the same size and layout. YUV8 and ARGB8 are converted into each other, in "
      "video range after BT.601; alpha becomes 1 and is ignored. ValueError for other pairs.");
  bitmap.def("copy_with_flip", &copyWithFlip, source,
             "Take the rows of a bitmap of the same size and layout upside down; YUV8 may become ARGB8. ValueError for "
             "others.");
  bitmap.def(
      "copy_with_flip_and_swizzle_argb_to_rgba",
      [](Bitmap& self, const Bitmap& from) { swizzle(self, from, &VortoBitmap::copyWithFlipAndSwizzleARGBtoRGBA); },
      source, "Upside down, pixels of four bytes from (A, R, G, B) to (R, G, B, A). ValueError for other layouts.");
  bitmap.def(
      "copy_with_swizzle_argb_to_rgba",
      [](Bitmap& self, const Bitmap& from) { swizzle(self, from, &VortoBitmap::copyWithSwizzleARGBToRGBA); }, source,
      "Pixels of four bytes from (A, R, G, B) to (R, G, B, A). ValueError for other layouts.");
  bitmap.def(
      "copy_with_swizzle_rgb_to_argb",
      [](Bitmap& self, const Bitmap& from) { swizzle(self, from, &VortoBitmap::copyWithSwizzleRGBToARGB); }, source,
      "Pixels of four bytes from (R, G, B, A) to (A, R, G, B). ValueError for other layouts.");
  bitmap.def(
      "copy_with_cropping", &copyWithCropping, source, py::arg("x"), py::arg("y"), py::arg("flip") = false,
      "Take the rectangle of this bitmap's size at column x and row y, from its last row to its first with flip. A "
      "YUV8 source is turned into ARGB8. ValueError when the rectangle is not inside the source.");
  bitmap.def("copy_with_un_pre_mult", &copyWithUnPreMult, source, py::arg("background") = VortoColor::BLACK,
             "From ARGB8 to ARGB8 without premultiplication against a background, limited to 0 to 1 and cut off to "
             "integers. ValueError for other layouts.");
  bitmap.def(
      "copy_with_scaling", &copyWithScaling, source,
      "Fill this bitmap from one of another size by nearest neighbours. Same layout, or YUV8 into ARGB8; ValueError "
      "for others.");
  bitmap.def(
      "copy_with_scaling_and_depth_conversion", &copyWithScalingAndDepthConversion, source,
      "The same into ARGB8, RGBA16 or RGBAFloat, from these, RGBA8, RGBAHalfFloat or YUV8. ValueError for others.");
  bitmap.def("copy_with_output_conversion", &copyWithOutputConversion, source, py::arg("unpremultiply") = false,
             py::arg("opaque") = false, py::arg("alpha_to_gray") = false, py::arg("background") = VortoColor::BLACK,
             "do_output_conversion() on the way from another bitmap: without unpremultiply this one takes its size and "
             "layout, in new memory (arrays keep what they look at); with it, as copy_with_un_pre_mult().");
  bitmap.def(
      "set_data", &setData, source,
      "Take all pixels from bytes: rows without padding in this bitmap's layout. ValueError when there are more or "
      "fewer.");
  bitmap.def(
      "cropped", &cropped, py::arg("x"), py::arg("y"), py::arg("width"), py::arg("height"),
      "A new bitmap of that rectangle, ARGB8 of YUV8. ValueError when it does not lie inside. (For a view without "
      "a copy: Bitmap.from_array(numpy.asarray(bitmap)[y:y + height, x:x + width]).)");
  bitmap.def(
      "converted", &converted, py::arg("format"),
      "A new bitmap in another layout. Integers widen to their whole range and narrow to the nearest value; floats "
      "are cut to 0 to 1 for integers, NaN to 0. Layouts without alpha drop it; luminance is 0.299 red + 0.587 "
      "green + 0.114 blue. ValueError for YUV8 of an odd width.");
  bitmap.def(
      "scaled", &scaled, py::arg("width"), py::arg("height"), py::arg("filter") = "lanczos", py::arg("fit") = "stretch",
      "A new bitmap in another size. Filters: nearest, box, linear, cubic, lanczos; fit: stretch, fit (all of it, "
      "in the middle of an empty canvas), fill (what stands out is cut off). RGBA8, ARGB8, RGBA16 and RGBAFloat, "
      "premultiplied; ValueError for others.");
}

}  // namespace vorto::python
