// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Bitmap.h"
#include "Module.h"

#include "Host/Rendering/HeldPicture.h"

#include <memory>
#include <string>

namespace vorto::python {

// What vorto.read() returns: a bitmap, and what its file says of it. The pixels may be changed through the bitmap.
struct Picture {
  std::shared_ptr<Bitmap> bitmap;  // never null
  host::HeldPicture held;          // all but the bitmap of this one
};

// A picture that Python gave: in the same kind results are returned. Nobody changes its pixels as long as it lives.
enum class Given { Bitmap, Picture, Array };
struct GivenPicture {
  host::HeldPicture held;
  Given kind = Given::Bitmap;
  std::shared_ptr<Bitmap> bitmap;
  std::unique_ptr<Reading> reading;
};

// A Bitmap, a Picture, or an array or other buffer of pixels. Throws where it is none of them, or another thread
// changes it.
GivenPicture givenPicture(const py::handle& object);
bool isPath(const py::handle& object);  // str, bytes or os.PathLike

// The other way: the held bitmap is nobody else's.
py::object returnedPicture(host::HeldPicture held, Given kind);
std::shared_ptr<Bitmap> ownBitmap(const host::BitmapRef& bitmap);
host::HeldPicture heldOf(const Picture& picture);

// Text of a number or a str: depth=16 is depth="16"; empty for None.
std::string optionText(const py::object& option);
// (1920, 1080) and "1920x1080" alike; empty for None.
std::string sizeText(const py::object& size);
std::string pathText(const py::handle& path);

}  // namespace vorto::python
