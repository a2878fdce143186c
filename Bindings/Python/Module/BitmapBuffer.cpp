// SPDX-License-Identifier: BSD-3-Clause
// The buffer protocol: (height, width, channels) numbers in rows of any distance, over the pixels themselves.
#include "Bitmap.h"

#include <array>

namespace vorto::python {
namespace {

// What a view needs as long as it lives, the pixels included.
struct View {
  MutableBitmapRef pixels;
  std::array<Py_ssize_t, 3> shape;
  std::array<Py_ssize_t, 3> strides;
};

const char* formatOf(VortoPixelLayout::Number number) {
  switch (number) {
    case VortoPixelLayout::Number::Byte:
      return "B";
    case VortoPixelLayout::Number::Word:
      return "H";
    case VortoPixelLayout::Number::Half:
      return "e";
    case VortoPixelLayout::Number::Float:
      break;
  }
  return "f";
}

bool isFlag(int flags, int wanted) {
  return (flags & wanted) == wanted;
}

// Why such a view cannot be had; null when it can.
const char* refusal(const Bitmap& bitmap, int flags) {
  if (isFlag(flags, PyBUF_WRITABLE) && bitmap.isReadOnly()) return "the bitmap is read-only";
  if (isFlag(flags, PyBUF_F_CONTIGUOUS)) return "a bitmap's rows are not columns";
  const bool wantsOnePiece =
      isFlag(flags, PyBUF_C_CONTIGUOUS) || isFlag(flags, PyBUF_ANY_CONTIGUOUS) || !isFlag(flags, PyBUF_STRIDES);
  if (wantsOnePiece && bitmap.pixels().rowPadding != 0) return "padding stands between the bitmap's rows";
  return nullptr;
}

int getBuffer(PyObject* object, Py_buffer* view, int flags) {
  view->obj = nullptr;
  py::detail::make_caster<Bitmap> caster;
  if (!caster.load(object, false)) {
    PyErr_SetString(PyExc_BufferError, "the bitmap was not initialized");
    return -1;
  }
  const Bitmap& bitmap = py::detail::cast_op<Bitmap&>(caster);
  if (const char* reason = refusal(bitmap, flags)) {
    PyErr_SetString(PyExc_BufferError, reason);
    return -1;
  }
  const VortoBitmap& pixels = bitmap.pixels();
  const VortoPixelLayout& layout = bitmap.layout();
  const auto number = static_cast<Py_ssize_t>(layout.bytesPerChannel());
  auto* held = new (std::nothrow)
      View{bitmap.memory(),
           {static_cast<Py_ssize_t>(pixels.height), static_cast<Py_ssize_t>(pixels.width), layout.channels},
           {static_cast<Py_ssize_t>(bitmap.bytesPerRow()), static_cast<Py_ssize_t>(layout.bytesPerPixel()), number}};
  if (!held) {
    PyErr_NoMemory();
    return -1;
  }
  view->buf = pixels.data;
  view->len = held->shape[0] * held->shape[1] * held->shape[2] * number;
  view->itemsize = number;
  view->readonly = bitmap.isReadOnly() ? 1 : 0;
  view->format = isFlag(flags, PyBUF_FORMAT) ? const_cast<char*>(formatOf(layout.number)) : nullptr;
  view->ndim = 3;
  view->shape = isFlag(flags, PyBUF_ND) ? held->shape.data() : nullptr;
  view->strides = isFlag(flags, PyBUF_STRIDES) ? held->strides.data() : nullptr;
  view->suboffsets = nullptr;
  view->internal = held;
  view->obj = object;
  Py_INCREF(object);
  return 0;
}

void releaseBuffer(PyObject*, Py_buffer* view) {
  delete static_cast<View*>(view->internal);
}

}  // namespace

void setUpBuffers(PyHeapTypeObject* type) {
  type->ht_type.tp_as_buffer = &type->as_buffer;
  type->as_buffer.bf_getbuffer = getBuffer;
  type->as_buffer.bf_releasebuffer = releaseBuffer;
}

}  // namespace vorto::python
