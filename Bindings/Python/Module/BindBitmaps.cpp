// SPDX-License-Identifier: BSD-3-Clause
#include "Bitmap.h"
#include "Enumerations.h"
#include "Errors.h"

#include <pybind11/stl.h>

#include <cstring>

namespace vorto::python {
namespace {

std::string typeName(const VortoPixelLayout& layout) {
  switch (layout.number) {
    case VortoPixelLayout::Number::Byte:
      return "uint8";
    case VortoPixelLayout::Number::Word:
      return "uint16";
    case VortoPixelLayout::Number::Half:
      return "float16";
    case VortoPixelLayout::Number::Float:
      break;
  }
  return "float32";
}

std::string describe(const Bitmap& bitmap) {
  std::string text = "<vorto.Bitmap " + std::to_string(bitmap.pixels().width) + " x " +
                     std::to_string(bitmap.pixels().height) + ", " + bitmap.layout().name;
  if (bitmap.pixels().rowPadding != 0)
    text += ", " + std::to_string(bitmap.pixels().rowPadding) + " bytes between rows";
  return text + (bitmap.isReadOnly() ? ", read-only>" : ">");
}

std::shared_ptr<Bitmap> copyOf(const Bitmap& bitmap) {
  const Reading reading(bitmap);
  const Unlocked unlocked(bitmap.bytes());
  return std::make_shared<Bitmap>(tightCopy(bitmap.pixels()));
}

bool isEqual(const Bitmap& one, const Bitmap& other) {
  const VortoBitmap& a = one.pixels();
  const VortoBitmap& b = other.pixels();
  if (a.width != b.width || a.height != b.height || a.formatCode != b.formatCode) return false;
  const Reading readingOne(one);
  const Reading readingOther(other);
  const Unlocked unlocked(one.bytes());
  const std::size_t row = std::size_t{a.width} * one.layout().bytesPerPixel();
  for (std::size_t y = 0; y < a.height; ++y) {
    if (std::memcmp(a.data + y * one.bytesPerRow(), b.data + y * other.bytesPerRow(), row) != 0) return false;
  }
  return true;
}

py::bytes bytesOf(const Bitmap& bitmap) {
  const Reading reading(bitmap);
  const std::size_t row = std::size_t{bitmap.pixels().width} * bitmap.layout().bytesPerPixel();
  py::bytes bytes(nullptr, row * bitmap.pixels().height);
  auto* to = reinterpret_cast<std::uint8_t*>(PyBytes_AS_STRING(bytes.ptr()));
  for (std::size_t y = 0; y < bitmap.pixels().height; ++y) {
    std::memcpy(to + y * row, bitmap.pixels().data + y * bitmap.bytesPerRow(), row);
  }
  return bytes;
}

std::shared_ptr<Bitmap> restored(const py::tuple& state) {
  if (state.size() != 4) throw py::value_error("this is not the state of a bitmap");
  const auto bytes = py::cast<py::bytes>(state[3]);
  const std::string_view pixels = bytes;
  auto bitmap = std::make_shared<Bitmap>(newBitmap(py::cast<std::uint64_t>(state[0]), py::cast<std::uint64_t>(state[1]),
                                                   py::cast<std::uint32_t>(state[2])));
  if (pixels.size() != bitmap->bytes()) throw py::value_error("the state of the bitmap has another number of bytes");
  std::memcpy(bitmap->mutablePixels().data, pixels.data(), pixels.size());
  return bitmap;
}

constexpr const char* kDescription =
    "A picture in memory: rows of pixels of one layout (PixelFormat), the first row on top.\n\n"
    "numpy.asarray(bitmap) looks at the pixels themselves, without a copy: shaped (height, width, channels), of type "
    "uint8, uint16, float16 or float32 as the layout has it, channels in the order of the layout's name. YUV8 is "
    "4:2:2: "
    "channel 0 is chroma, U in even columns and V in odd ones, and channel 1 is luma. Luminance16 has one channel. "
    "memoryview, numpy.from_dlpack and other libraries see the same memory; what looks at it keeps it alive.\n\n"
    "Integers mean 0 to 1 over their whole range, floats are what they are. Between effects colors are premultiplied "
    "with alpha.\n\n"
    "A bitmap is used by one thread at a time (several may read). Long calls give up the interpreter's lock; a call "
    "that meets a bitmap in use raises Error. A forked process shares the memory of bitmaps with its parent.";

constexpr const char* kFromArray =
    "The bitmap of an array: any object with the buffer protocol or __dlpack__().\n\n"
    "The array is shaped (height, width, channels), or (height, width) for one channel, of uint8, uint16, float16 or "
    "float32. Without `format` uint8 with 2, 4 channels is YUV8, RGBA8; uint16 with 1, 2, 3, 4 is Luminance16, "
    "LuminanceAlpha16, RGB16, RGBA16; float16 and float32 with 4 are RGBAHalfFloat and RGBAFloat.\n\n"
    "The bitmap lies over the array's own memory and keeps the array alive; it is read-only when the array is. Rows "
    "may "
    "lie apart (array[:, 10:20] works). A copy is unavoidable where the numbers of a row do not lie one behind the "
    "other, where rows run upwards, and for 1 or 3 channels of a layout that has 4: gray or colors, which become "
    "opaque. copy=False raises ValueError there, copy=True always copies.\n\n"
    "TypeError for other types (use astype()), ValueError for other shapes and for more than 4 GiB.";

}  // namespace

void bindBitmaps(py::module_& module) {
  BitmapClass bitmap(module, "Bitmap", py::custom_type_setup(setUpBuffers), kDescription);
  bitmap.def(
      py::init([](std::uint64_t width, std::uint64_t height, PixelFormat format, std::uint64_t padding) {
        return std::make_shared<Bitmap>(newBitmap(width, height, codeOf(format), padding));
      }),
      py::arg("width"), py::arg("height"), py::arg("format") = PixelFormat::RGBA8, py::arg("row_padding") = 0,
      "A bitmap of so many pixels, all zero, with `row_padding` bytes behind each row.\n\nValueError for less than "
      "one pixel and more than 4 GiB, MemoryError when there is no memory.");
  bitmap.def_static(
      "from_array",
      [](const py::object& array, std::optional<PixelFormat> format, std::optional<bool> copy) {
        const auto code = format ? std::optional(codeOf(*format)) : std::nullopt;
        return bitmapFromArray(array, code, copy);
      },
      py::arg("array"), py::arg("format") = py::none(), py::kw_only(), py::arg("copy") = py::none(), kFromArray);

  bitmap.def_property_readonly(
      "width", [](const Bitmap& b) { return b.pixels().width; }, "Pixels in a row.");
  bitmap.def_property_readonly(
      "height", [](const Bitmap& b) { return b.pixels().height; }, "Rows.");
  bitmap.def_property_readonly(
      "format", [](const Bitmap& b) { return static_cast<PixelFormat>(b.pixels().formatCode); },
      "The layout of pixels.");
  bitmap.def_property_readonly(
      "channels", [](const Bitmap& b) { return b.layout().channels; }, "Numbers in a pixel.");
  bitmap.def_property_readonly(
      "shape", [](const Bitmap& b) { return py::make_tuple(b.pixels().height, b.pixels().width, b.layout().channels); },
      "(height, width, channels), as arrays have it.");
  bitmap.def_property_readonly(
      "dtype", [](const Bitmap& b) { return typeName(b.layout()); },
      "The type of the numbers as numpy names it: \"uint8\", \"uint16\", \"float16\", "
      "\"float32\".");
  bitmap.def_property_readonly(
      "row_padding", [](const Bitmap& b) { return b.pixels().rowPadding; }, "Bytes between rows.");
  bitmap.def_property_readonly("bytes_per_row", &Bitmap::bytesPerRow, "Bytes from a row to the next one.");
  bitmap.def_property_readonly(
      "readonly", &Bitmap::isReadOnly,
      "Whether the pixels must not change: those of read-only arrays, and results of effects.");

  bitmap.def("copy", &copyOf, "A new bitmap with the same pixels, without padding, that can be changed.");
  bitmap.def("__copy__", &copyOf, "copy()");
  bitmap.def(
      "__deepcopy__", [](const Bitmap& self, const py::dict&) { return copyOf(self); }, py::arg("memo"), "copy()");
  bitmap.def("tobytes", &bytesOf, "The pixels row by row, without padding.");
  bitmap.def(
      "__eq__", [](const Bitmap& self, const Bitmap& other) { return isEqual(self, other); }, py::arg("other"),
      py::is_operator(), "Whether sizes, layouts and all pixels are the same, bit for bit.");
  bitmap.attr("__hash__") = py::none();
  bitmap.def("__repr__", &describe, "Size and layout.");
  bitmap.def(py::pickle(
      [](const Bitmap& self) {
        return py::make_tuple(self.pixels().width, self.pixels().height, self.pixels().formatCode, bytesOf(self));
      },
      &restored));
  bindBitmapOperations(bitmap);
  bindBitmapCopies(bitmap);
  bindBitmapExchange(bitmap);
}

}  // namespace vorto::python
