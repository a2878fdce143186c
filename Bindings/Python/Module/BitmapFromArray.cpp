// SPDX-License-Identifier: BSD-3-Clause
// Bitmaps over the memory of arrays, or with a copy of it where no bitmap can lie over it.
#include "Bitmap.h"
#include "DLPack.h"

#include <Imath/half.h>

#include <cstring>
#include <string>

namespace vorto::python {
namespace {

using Number = VortoPixelLayout::Number;

// An array of somebody else.
struct Array {
  std::uint8_t* data = nullptr;
  Number number = Number::Byte;
  std::uint64_t height = 0, width = 0, channels = 1;
  std::int64_t rowStep = 0, pixelStep = 0, channelStep = 0;  // bytes; may be negative
  bool isReadOnly = false;
  std::shared_ptr<void> owner;

  std::uint64_t numberBytes() const { return number == Number::Byte ? 1 : number == Number::Float ? 4 : 2; }
  std::uint64_t pixelBytes() const { return channels * numberBytes(); }
};

constexpr const char* kTypes = "uint8, uint16, float16 or float32 in the machine's byte order";

void setShape(Array& array, int dimensions, const auto* shape) {
  if (dimensions != 2 && dimensions != 3) {
    throw py::value_error("an array of pixels is shaped (height, width) or (height, width, channels), not of " +
                          std::to_string(dimensions) + " dimensions");
  }
  for (int i = 0; i < dimensions; ++i) {
    if (shape[i] < 1) throw py::value_error("an array without pixels makes no bitmap");
  }
  array.height = static_cast<std::uint64_t>(shape[0]);
  array.width = static_cast<std::uint64_t>(shape[1]);
  array.channels = dimensions == 3 ? static_cast<std::uint64_t>(shape[2]) : 1;
}

// What has a lifetime in Python is let go with the interpreter's lock held, whoever lets go.
template <class Held>
std::shared_ptr<void> keptFor(Held* held, void (*release)(Held*)) {
  return std::shared_ptr<void>(held, [release](void* pointer) {
    if (!Py_IsInitialized()) return;
    const py::gil_scoped_acquire locked;
    release(static_cast<Held*>(pointer));
  });
}

Number numberOfFormat(const char* format) {
  if (!format) return Number::Byte;
  if (*format == '@' || *format == '=' || *format == '<') ++format;
  const std::string_view code = format;
  if (code == "B") return Number::Byte;
  if (code == "H") return Number::Word;
  if (code == "e") return Number::Half;
  if (code == "f") return Number::Float;
  throw py::type_error(std::string("an array of pixels holds ") + kTypes + ", not \"" + format + "\"");
}

Array arrayOfBuffer(const py::object& object) {
  auto* view = new Py_buffer{};
  bool isReadOnly = false;
  if (PyObject_GetBuffer(object.ptr(), view, PyBUF_RECORDS) != 0) {
    PyErr_Clear();
    isReadOnly = true;
    if (PyObject_GetBuffer(object.ptr(), view, PyBUF_RECORDS_RO) != 0) {
      delete view;
      throw py::error_already_set();
    }
  }
  Array array;
  array.owner = keptFor<Py_buffer>(view, [](Py_buffer* held) {
    PyBuffer_Release(held);
    delete held;
  });
  array.isReadOnly = isReadOnly;
  array.data = static_cast<std::uint8_t*>(view->buf);
  array.number = numberOfFormat(view->format);
  setShape(array, view->ndim, view->shape);
  array.rowStep = view->strides[0];
  array.pixelStep = view->strides[1];
  array.channelStep = view->ndim == 3 ? view->strides[2] : view->itemsize;
  return array;
}

Number numberOfType(const DLDataType& type) {
  if (type.lanes == 1 && type.code == kDLUnsigned && type.bits == 8) return Number::Byte;
  if (type.lanes == 1 && type.code == kDLUnsigned && type.bits == 16) return Number::Word;
  if (type.lanes == 1 && type.code == kDLFloat && type.bits == 16) return Number::Half;
  if (type.lanes == 1 && type.code == kDLFloat && type.bits == 32) return Number::Float;
  throw py::type_error(std::string("an array of pixels holds ") + kTypes);
}

Array arrayOfExporter(const py::object& object) {
  const auto device = py::cast<py::tuple>(object.attr("__dlpack_device__")());
  if (device.size() != 2 || py::cast<int>(device[0]) != kDLProcessor) {
    throw py::type_error("the array is not in the processor's memory");
  }
  const py::object capsule = object.attr("__dlpack__")();
  if (!PyCapsule_IsValid(capsule.ptr(), kDLCapsule)) {
    throw py::type_error("__dlpack__() gave no capsule named \"dltensor\"");
  }
  auto* managed = static_cast<DLManagedTensor*>(PyCapsule_GetPointer(capsule.ptr(), kDLCapsule));
  if (PyCapsule_SetName(capsule.ptr(), kDLUsedCapsule) != 0) throw py::error_already_set();
  Array array;
  array.owner = keptFor<DLManagedTensor>(managed, [](DLManagedTensor* held) {
    if (held->release) held->release(held);
  });
  const DLTensor& tensor = managed->tensor;
  array.number = numberOfType(tensor.type);
  setShape(array, tensor.dimensions, tensor.shape);
  array.data = static_cast<std::uint8_t*>(tensor.data) + tensor.byteOffset;
  const auto number = static_cast<std::int64_t>(array.numberBytes());
  const auto channels = static_cast<std::int64_t>(array.channels);
  if (tensor.strides) {
    array.rowStep = tensor.strides[0] * number;
    array.pixelStep = tensor.strides[1] * number;
    array.channelStep = tensor.dimensions == 3 ? tensor.strides[2] * number : number;
  } else {
    array.channelStep = number;
    array.pixelStep = channels * number;
    array.rowStep = static_cast<std::int64_t>(array.width) * channels * number;
  }
  return array;
}

Array arrayOf(const py::object& object) {
  if (PyObject_CheckBuffer(object.ptr())) return arrayOfBuffer(object);
  if (py::hasattr(object, "__dlpack__") && py::hasattr(object, "__dlpack_device__")) return arrayOfExporter(object);
  throw py::type_error("pixels come from an object with the buffer protocol or with __dlpack__()");
}

// The layout for such numbers, where none is named.
std::uint32_t usualCode(const Array& array) {
  using Format = VortoPixelFormat;
  const bool fitsColors = array.channels == 1 || array.channels == 3 || array.channels == 4;
  if (array.number == Number::Byte && array.channels == 2) return Format::YUV8;
  if (array.number == Number::Byte && fitsColors) return Format::RGBA8;
  if (array.number == Number::Half && fitsColors) return Format::RGBAHalfFloat;
  if (array.number == Number::Float && fitsColors) return Format::RGBAFloat;
  if (array.number == Number::Word && array.channels <= 4) {
    constexpr std::uint32_t kCodes[] = {Format::Luminance16, Format::LuminanceAlpha16, Format::RGB16, Format::RGBA16};
    return kCodes[array.channels - 1];
  }
  throw py::value_error("no layout has " + std::to_string(array.channels) + " channels of this type");
}

// Whether grays or colors without alpha become the layout's four channels.
bool isWidened(const Array& array, const VortoPixelLayout& layout) {
  return layout.channels == 4 && (array.channels == 1 || array.channels == 3);
}

void checkLayout(const Array& array, const VortoPixelLayout& layout) {
  const bool fits = array.channels == static_cast<std::uint64_t>(layout.channels) || isWidened(array, layout);
  if (layout.number == array.number && fits) return;
  throw py::value_error(std::string("the array's type and channels are not those of ") + layout.name);
}

constexpr std::uint64_t kMostBytes = 0xFFFF0000u;
constexpr std::uint64_t kWidest = std::uint64_t{1} << 26;

void checkSize(const Array& array) {
  if (array.height <= kMostBytes && array.width <= kWidest &&
      array.width * array.pixelBytes() <= kMostBytes / array.height) {
    return;
  }
  throw py::value_error("the array is larger than a bitmap can be (4 GiB)");
}

// Why a bitmap cannot lie over the array; null when it can.
const char* whyCopied(const Array& array, const VortoPixelLayout& layout) {
  const auto number = static_cast<std::int64_t>(array.numberBytes());
  const auto pixel = static_cast<std::int64_t>(array.pixelBytes());
  const std::int64_t row = static_cast<std::int64_t>(array.width) * pixel;
  if (isWidened(array, layout)) return "its pixels have no alpha and the layout's have";
  const bool isPacked =
      (array.channels == 1 || array.channelStep == number) && (array.width == 1 || array.pixelStep == pixel);
  if (!isPacked) return "the numbers of its rows do not lie one behind the other";
  if (array.height > 1 && array.rowStep < row) return "its rows do not follow one another";
  if (array.height > 1 && array.rowStep - row > 0x7FFFFFFF) return "its rows lie too far apart";
  const bool isAligned = reinterpret_cast<std::uintptr_t>(array.data) % static_cast<std::uintptr_t>(number) == 0 &&
                         (array.height == 1 || array.rowStep % number == 0);
  return isAligned ? nullptr : "its numbers are not aligned";
}

std::shared_ptr<Bitmap> overlaid(const Array& array, std::uint32_t code) {
  const std::uint64_t row = array.width * array.pixelBytes();
  const std::uint64_t padding = array.height > 1 ? static_cast<std::uint64_t>(array.rowStep) - row : 0;
  const MutableBitmapRef pixels =
      foreignBitmap(array.data, (row + padding) * (array.height - 1) + row, static_cast<std::uint32_t>(array.width),
                    static_cast<std::uint32_t>(array.height), code, static_cast<std::uint32_t>(padding), array.owner);
  auto bitmap = std::make_shared<Bitmap>(pixels);
  if (array.isReadOnly) bitmap->makeReadOnly();
  return bitmap;
}

// The number that alpha has where a pixel is opaque, in memory.
const void* opaqueNumber(Number number) {
  static const std::uint16_t word = 65535;
  static const half halfFloat = 1.0F;
  static const float singleFloat = 1.0F;
  if (number == Number::Half) return &halfFloat;
  if (number == Number::Float) return &singleFloat;
  return &word;
}

void copyPixel(const Array& array, const VortoPixelLayout& layout, const std::uint8_t* from, std::uint8_t* to) {
  const std::size_t number = array.numberBytes();
  const auto copyNumber = [&](int target, std::uint64_t source) {
    std::memcpy(to + static_cast<std::size_t>(target) * number,
                from + static_cast<std::int64_t>(source) * array.channelStep, number);
  };
  if (!isWidened(array, layout)) {
    for (int i = 0; i < layout.channels; ++i) copyNumber(i, static_cast<std::uint64_t>(i));
    return;
  }
  copyNumber(layout.red, 0);
  copyNumber(layout.green, array.channels == 1 ? 0 : 1);
  copyNumber(layout.blue, array.channels == 1 ? 0 : 2);
  std::memcpy(to + static_cast<std::size_t>(layout.alpha) * number, opaqueNumber(array.number), number);
}

std::shared_ptr<Bitmap> copied(const Array& array, std::uint32_t code) {
  const VortoPixelLayout& layout = TCPixelLayoutOf(code);
  const MutableBitmapRef pixels = newBitmap(array.width, array.height, code, 0, true);
  const bool isRowwise = !isWidened(array, layout) &&
                         (array.channels == 1 || array.channelStep == static_cast<std::int64_t>(array.numberBytes())) &&
                         array.pixelStep == static_cast<std::int64_t>(array.pixelBytes());
  const Unlocked unlocked(pixels->allocSize);
  std::uint8_t* to = pixels->data;
  for (std::uint64_t y = 0; y < array.height; ++y) {
    const std::uint8_t* from = array.data + static_cast<std::int64_t>(y) * array.rowStep;
    if (isRowwise) {
      std::memcpy(to, from, array.width * array.pixelBytes());
      to += array.width * array.pixelBytes();
      continue;
    }
    for (std::uint64_t x = 0; x < array.width; ++x, from += array.pixelStep, to += layout.bytesPerPixel()) {
      copyPixel(array, layout, from, to);
    }
  }
  return std::make_shared<Bitmap>(pixels);
}

}  // namespace

std::shared_ptr<Bitmap> bitmapFromArray(const py::object& object, std::optional<std::uint32_t> code,
                                        std::optional<bool> copies) {
  const Array array = arrayOf(object);
  const std::uint32_t wanted = code.value_or(usualCode(array));
  const VortoPixelLayout& layout = TCPixelLayoutOf(wanted);
  if (wanted == VortoPixelFormat::ARGB8NoAlpha) throw py::value_error("no bitmap is made of this pixel format");
  checkLayout(array, layout);
  checkSize(array);
  const char* reason = whyCopied(array, layout);
  if (!reason && array.height > 1 && static_cast<std::uint64_t>(array.rowStep) > kMostBytes / array.height) {
    reason = "its rows lie too far apart";
  }
  if (reason && copies == false)
    throw py::value_error(std::string("the array cannot be used without a copy: ") + reason);
  return reason || copies == true ? copied(array, wanted) : overlaid(array, wanted);
}

}  // namespace vorto::python
