// SPDX-License-Identifier: BSD-3-Clause
#include "Pictures.h"

#include "Errors.h"

#include <utility>

namespace vorto::python {
namespace {

// Other layouts in the nearest one that flows between patches.
host::BitmapRef exchanged(const Bitmap& bitmap) {
  if (bitmap.layout().isExchanged) return tightPixels(bitmap);
  const VortoBitmap& pixels = bitmap.pixels();
  const auto number = bitmap.layout().number;
  const std::uint32_t code = number == VortoPixelLayout::Number::Byte   ? VortoPixelFormat::ARGB8
                             : number == VortoPixelLayout::Number::Word ? VortoPixelFormat::RGBA16
                                                                        : VortoPixelFormat::RGBAFloat;
  auto result = newBitmap(pixels.width, pixels.height, code, 0, false);
  result->copyWithScalingAndDepthConversion(*tightPixels(bitmap));
  return result;
}

py::object arrayOf(const std::shared_ptr<Bitmap>& bitmap) {
  return py::module_::import("numpy").attr("asarray")(py::cast(bitmap));
}

}  // namespace

GivenPicture givenPicture(const py::handle& object) {
  GivenPicture given;
  if (py::isinstance<Picture>(object)) {
    const auto& picture = object.cast<const Picture&>();
    given.kind = Given::Picture;
    given.bitmap = picture.bitmap;
    given.held = picture.held;
  } else if (py::isinstance<Bitmap>(object)) {
    given.bitmap = object.cast<std::shared_ptr<Bitmap>>();
  } else {
    given.kind = Given::Array;
    given.bitmap = py::type::of<Bitmap>().attr("from_array")(object).cast<std::shared_ptr<Bitmap>>();
  }
  given.reading = std::make_unique<Reading>(*given.bitmap);
  host::BitmapRef pixels = exchanged(*given.bitmap);
  if (given.kind == Given::Picture) {
    given.held.bitmap = std::move(pixels);
  } else {
    given.held = host::heldBitmap(std::move(pixels));
  }
  return given;
}

bool isPath(const py::handle& object) {
  return py::isinstance<py::str>(object) || py::isinstance<py::bytes>(object) || py::hasattr(object, "__fspath__");
}

host::HeldPicture heldOf(const Picture& picture) {
  host::HeldPicture held = picture.held;
  held.bitmap = exchanged(*picture.bitmap);
  return held;
}

std::shared_ptr<Bitmap> ownBitmap(const host::BitmapRef& bitmap) {
  return std::make_shared<Bitmap>(std::const_pointer_cast<VortoBitmap>(bitmap));
}

py::object returnedPicture(host::HeldPicture held, Given kind) {
  const auto bitmap = ownBitmap(std::exchange(held.bitmap, nullptr));
  switch (kind) {
    case Given::Bitmap:
      return py::cast(bitmap);
    case Given::Array:
      return arrayOf(bitmap);
    case Given::Picture:
      break;
  }
  return py::cast(Picture{bitmap, std::move(held)});
}

std::string optionText(const py::object& option) {
  return option.is_none() ? "" : std::string(py::str(option));
}

std::string sizeText(const py::object& size) {
  if (size.is_none() || py::isinstance<py::str>(size)) return optionText(size);
  if (!py::isinstance<py::sequence>(size) || py::len(size) != 2) {
    throw py::type_error("size: give a width and a height, as in (1920, 1080)");
  }
  const py::sequence sides = size;
  return std::to_string(sides[0].cast<std::uint32_t>()) + "x" + std::to_string(sides[1].cast<std::uint32_t>());
}

std::string pathText(const py::handle& path) {
  const py::object bytes = py::module_::import("os").attr("fsencode")(path);
  return bytes.cast<std::string>();
}

}  // namespace vorto::python
