// SPDX-License-Identifier: BSD-3-Clause
// Bitmaps to other libraries, by DLPack, and to other processes.
#include "Bitmap.h"
#include "DLPack.h"
#include "Errors.h"
#include "Platform/Mach/mach.h"
#include "TarnCore/TCBitmapSharing.h"

#include <array>
#include <string>

namespace vorto::python {
namespace {

struct Exported {
  DLManagedTensor managed;
  MutableBitmapRef pixels;
  std::array<std::int64_t, 3> shape;
  std::array<std::int64_t, 3> strides;
};

void releaseExported(DLManagedTensor* managed) {
  delete static_cast<Exported*>(managed->context);
}

// Nobody took it over.
void releaseCapsule(PyObject* capsule) {
  if (!PyCapsule_IsValid(capsule, kDLCapsule)) return;
  auto* managed = static_cast<DLManagedTensor*>(PyCapsule_GetPointer(capsule, kDLCapsule));
  managed->release(managed);
}

py::object capsuleOf(const Bitmap& bitmap) {
  if (bitmap.isReadOnly()) throw py::buffer_error("the bitmap is read-only, which DLPack cannot say");
  const VortoPixelLayout& layout = bitmap.layout();
  const std::size_t number = layout.bytesPerChannel();
  if (bitmap.bytesPerRow() % number != 0) throw py::buffer_error("rows do not lie whole numbers apart");
  const bool isFloat = layout.number >= VortoPixelLayout::Number::Half;
  auto* exported = new Exported{{}, bitmap.memory(), {}, {}};
  exported->shape = {bitmap.pixels().height, bitmap.pixels().width, layout.channels};
  exported->strides = {static_cast<std::int64_t>(bitmap.bytesPerRow() / number), layout.channels, 1};
  exported->managed.tensor = {bitmap.pixels().data,
                              {kDLProcessor, 0},
                              3,
                              {isFloat ? kDLFloat : kDLUnsigned, static_cast<std::uint8_t>(8 * number), 1},
                              exported->shape.data(),
                              exported->strides.data(),
                              0};
  exported->managed.context = exported;
  exported->managed.release = releaseExported;
  PyObject* capsule = PyCapsule_New(&exported->managed, kDLCapsule, releaseCapsule);
  if (!capsule) {
    delete exported;
    throw py::error_already_set();
  }
  return py::reinterpret_steal<py::object>(capsule);
}

int descriptorOf(const py::object& socket) {
  const int descriptor = PyObject_AsFileDescriptor(socket.ptr());
  if (descriptor < 0) throw py::error_already_set();
  return descriptor;
}

[[noreturn]] void failSharing(const char* what, int result) {
  const char* reason = "the system refused it";
  switch (result) {
    case KERN_INVALID_NAME:
      reason = "its memory belongs to another object, or is no longer shared; copy() gives memory that can be sent";
      break;
    case KERN_TERMINATED:
      reason = "the other side has closed the connection";
      break;
    case KERN_OPERATION_TIMED_OUT:
      reason = "nothing arrived in time";
      break;
    case KERN_INVALID_VALUE:
      reason = "what arrived, or was to be sent, describes no bitmap";
      break;
    case KERN_RESOURCE_SHORTAGE:
      reason = "there are no descriptors or there is no memory left";
      break;
    default:
      break;
  }
  throw Error(std::string(what) + ": " + reason + " (code " + std::to_string(result) + ")");
}

void send(const Bitmap& bitmap, const py::object& socket) {
  const int descriptor = descriptorOf(socket);
  const Reading reading(bitmap);
  int result = KERN_INVALID_NAME;
  if (bitmap.pixels().memoryEntry != 0) {
    const py::gil_scoped_release unlocked;
    result = TCSendBitmap(bitmap.pixels(), descriptor);
  }
  if (result != KERN_SUCCESS) failSharing("the bitmap could not be sent", result);
}

std::shared_ptr<Bitmap> receive(const py::object& socket) {
  const int descriptor = descriptorOf(socket);
  int result = KERN_SUCCESS;
  MutableBitmapRef received;
  {
    const py::gil_scoped_release unlocked;
    received.reset(TCReceiveBitmap(descriptor, &result));
  }
  if (!received) failSharing("no bitmap could be received", result);
  return std::make_shared<Bitmap>(std::move(received));
}

}  // namespace

void bindBitmapExchange(BitmapClass& bitmap) {
  bitmap.def(
      "__dlpack__",
      [](const Bitmap& self, const py::object&, const py::object&, const py::object& device, const py::object& copy) {
        if (!device.is_none() && !device.equal(py::make_tuple(kDLProcessor, 0))) {
          throw py::buffer_error("bitmaps are in the processor's memory");
        }
        if (!copy.is_none() && py::cast<bool>(copy)) throw py::buffer_error("use copy() for a copy");
        return capsuleOf(self);
      },
      py::kw_only(), py::arg("stream") = py::none(), py::arg("max_version") = py::none(),
      py::arg("dl_device") = py::none(), py::arg("copy") = py::none(),
      "The pixels for other libraries (numpy.from_dlpack, torch.from_dlpack), shaped (height, width, channels), not "
      "copied. BufferError when the bitmap is read-only, or its rows do not lie whole numbers apart.");
  bitmap.def(
      "__dlpack_device__", [](const Bitmap&) { return py::make_tuple(kDLProcessor, 0); },
      "Where the pixels are: (1, 0), the processor's memory.");
  bitmap.def(
      "send", &send, py::arg("socket"),
      "Hand the bitmap to another process over a connected Unix stream socket (a socket or its descriptor).\n\n"
      "Both processes then see the same pixels; Bitmap.receive() is the other side. Waits as long as the socket's "
      "own timeouts say. Error when the memory belongs to another object (from_array() without a copy), or the "
      "other side is gone.");
  bitmap.def_static("receive", &receive, py::arg("socket"),
                    "The bitmap that another process sends over a connected Unix stream socket; its pixels are shared "
                    "with that process.\n\nError when nothing comes in time, or something else than a bitmap.");
}

}  // namespace vorto::python
