// SPDX-License-Identifier: BSD-3-Clause
// Operations on every pixel in place. Padding between rows stays as it is.
#include "Bitmap.h"
#include "TarnCore/TCColor.h"
#include "TarnCore/TCHistogram.h"

#include <pybind11/numpy.h>

#include <initializer_list>
#include <string>

namespace vorto::python {
namespace {

using Format = VortoPixelFormat;
using Codes = std::initializer_list<std::uint32_t>;

constexpr Codes kWithAlpha = {Format::RGBA8,         Format::ARGB8,    Format::RGBA16, Format::LuminanceAlpha16,
                              Format::RGBAHalfFloat, Format::RGBAFloat};
constexpr Codes kWithColorsAndAlpha = {Format::RGBA8, Format::ARGB8, Format::RGBA16, Format::RGBAHalfFloat,
                                       Format::RGBAFloat};
constexpr Codes kFourBytes = {Format::RGBA8, Format::ARGB8};
constexpr Codes kReordered = {Format::RGBA8, Format::ARGB8, Format::RGBA16, Format::RGBAFloat};

// On other layouts the operation would do nothing, or take the pixels for what they are not.
void requireLayout(const Bitmap& bitmap, Codes codes) {
  std::string names;
  for (const std::uint32_t code : codes) {
    if (code == bitmap.pixels().formatCode) return;
    names += std::string(names.empty() ? "" : "; ") + TCPixelLayoutOf(code).name;
  }
  throw py::value_error(std::string("this is not done with ") + bitmap.layout().name + ", but with " + names);
}

template <class Operation>
void change(Bitmap& bitmap, Codes codes, Operation operation) {
  requireLayout(bitmap, codes);
  const Writing writing(bitmap);
  const Unlocked unlocked(bitmap.bytes());
  onTightRows(bitmap.mutablePixels(), operation);
}

void flip(Bitmap& bitmap) {
  const Writing writing(bitmap);
  const Unlocked unlocked(bitmap.bytes());
  VortoBitmap& pixels = bitmap.mutablePixels();
  if (pixels.rowPadding == 0) return pixels.flip();
  const MutableBitmapRef turned = tightCopy(pixels);
  turned->flip();
  copyRows(pixels, *turned);
}

py::array_t<std::uint32_t> arrayOf(const TCHistogram::Counts& counts) {
  return py::array_t<std::uint32_t>(TCHistogram::Bins, counts);
}

// The pixels in a form that can be counted: red first, four channels of 8, 16 or 32 bits.
BitmapRef countable(const Bitmap& bitmap) {
  const std::uint32_t code = bitmap.pixels().formatCode;
  if (code == Format::RGBA8 || code == Format::RGBA16 || code == Format::RGBAFloat) return bitmap.shared();
  if (code == Format::ARGB8) {
    const MutableBitmapRef turned = tightCopy(bitmap.pixels());
    turned->convertToRGBA();
    return turned;
  }
  const BitmapRef tight = tightPixels(bitmap);
  const MutableBitmapRef floats = newBitmap(tight->width, tight->height, Format::RGBAFloat, 0, true);
  floats->copyWithScalingAndDepthConversion(*tight);
  return floats;
}

py::dict histogram(const Bitmap& bitmap) {
  requireLayout(bitmap, kWithColorsAndAlpha);
  TCHistogram counts;
  bool isCounted = false;
  {
    const Reading reading(bitmap);
    const Unlocked unlocked(bitmap.bytes());
    const BitmapRef pixels = countable(bitmap);
    const VortoPixelLayout& layout = TCPixelLayoutOf(pixels->formatCode);
    const std::size_t row = std::size_t{pixels->width} * layout.bytesPerPixel() + pixels->rowPadding;
    isCounted = TCCountHistogram({pixels->data, row, pixels->width, pixels->height, 8 * layout.bytesPerChannel(), true},
                                 counts);
  }
  if (!isCounted) throw py::value_error("more pixels than can be counted");
  using namespace py::literals;
  return py::dict("rgb"_a = arrayOf(counts.rgb), "red"_a = arrayOf(counts.red), "green"_a = arrayOf(counts.green),
                  "blue"_a = arrayOf(counts.blue), "alpha"_a = arrayOf(counts.alpha));
}

}  // namespace

void bindBitmapOperations(BitmapClass& bitmap) {
  bitmap.def(
      "invert_alpha", [](Bitmap& self) { change(self, kWithAlpha, [](VortoBitmap& b) { b.invertAlpha(); }); },
      "Alpha becomes its complement. ValueError for layouts without alpha.");
  bitmap.def(
      "set_constant_alpha",
      [](Bitmap& self, double alpha) {
        change(self, kWithAlpha, [alpha](VortoBitmap& b) { b.setConstantAlpha(alpha); });
      },
      py::arg("alpha"), "Alpha becomes `alpha`, 0 to 1 (integers are clamped). ValueError for layouts without alpha.");
  bitmap.def(
      "duplicate_alpha_to_rgb",
      [](Bitmap& self) { change(self, kWithColorsAndAlpha, [](VortoBitmap& b) { b.duplicateAlphaToRGB(); }); },
      "Red, green and blue take the value of alpha. ValueError for layouts without these four.");
  bitmap.def(
      "unpremultiply",
      [](Bitmap& self, const VortoColor& background) {
        change(self, kWithColorsAndAlpha, [background](VortoBitmap& b) { b.unpremultiply(background); });
      },
      py::arg("background") = VortoColor::BLACK,
      "Take off the premultiplication of pixels that lie on a background, rounded: c becomes (c - background x (1 - "
      "alpha)) / alpha, and the background where alpha is 0. ValueError for layouts without colors and alpha.");
  bitmap.def(
      "pre_mult", [](Bitmap& self) { change(self, kFourBytes, [](VortoBitmap& b) { b.preMult(); }); },
      "Colors become floor(c x alpha / 255). RGBA8 and ARGB8; ValueError for others.");
  bitmap.def(
      "un_pre_mult", [](Bitmap& self) { change(self, {Format::ARGB8}, [](VortoBitmap& b) { b.unPreMult(); }); },
      "Colors become c / alpha, at most 1, cut off to integers; pixels of alpha 0 stay. ARGB8; ValueError for others.");
  bitmap.def(
      "convert_to_argb", [](Bitmap& self) { change(self, kReordered, [](VortoBitmap& b) { b.convertToARGB(); }); },
      "Reorder pixels in place from (red, green, blue, alpha) to (alpha, red, green, blue): RGBA8 becomes ARGB8; "
      "RGBA16 "
      "and RGBAFloat are reordered and keep their format; ARGB8 stays. ValueError for others.");
  bitmap.def(
      "convert_to_rgba", [](Bitmap& self) { change(self, kReordered, [](VortoBitmap& b) { b.convertToRGBA(); }); },
      "The way back of convert_to_argb(): ARGB8 becomes RGBA8; RGBA8 stays.");
  bitmap.def("flip", &flip, "Turn the rows upside down.");
  bitmap.def(
      "do_output_conversion",
      [](Bitmap& self, bool unpremultiply, bool opaque, bool alphaToGray, const VortoColor& background) {
        change(self, kWithColorsAndAlpha,
               [=](VortoBitmap& b) { b.doOutputConversion(unpremultiply, opaque, alphaToGray, background); });
      },
      py::arg("unpremultiply") = false, py::arg("opaque") = false, py::arg("alpha_to_gray") = false,
      py::arg("background") = VortoColor::BLACK,
      "What is done to pixels that leave the system: premultiplication is taken off against the background, then alpha "
      "is copied into the colors (alpha_to_gray, which wins) or becomes 1 (opaque).");
  bitmap.def(
      "histogram", &histogram,
      "How often each value occurs: a dict of \"rgb\" (the sum of the next three), \"red\", \"green\", \"blue\" and "
      "\"alpha\", each an array of 256 uint32. A value x of 0 to 1 counts in bin floor(255 x + 0.5), 255 and more "
      "in bin 254. ValueError for layouts without colors and alpha. Needs numpy.");
}

}  // namespace vorto::python
