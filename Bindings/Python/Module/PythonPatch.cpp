// SPDX-License-Identifier: BSD-3-Clause
#include "PythonPatch.h"

#include "Bitmap.h"
#include "Pictures.h"
#include "PlistConversion.h"
#include "PortArguments.h"

#include "Ports/VRTImage.h"
#include "Ports/VRTPorts.h"
#include "Registry/VRTExecutionTraits.h"

#include <algorithm>
#include <stdexcept>

namespace vorto::python {
namespace {

// Effects get red first.
host::BitmapRef redFirst(const host::BitmapRef& bitmap) {
  if (bitmap->formatCode != VortoPixelFormat::ARGB8) return bitmap;
  const auto copy = std::make_shared<VortoBitmap>(*bitmap);
  copy->convertToRGBA();
  return copy;
}

// Owned; a thread that ends leaves it.
thread_local PyObject* raised = nullptr;

py::object valueFor(QCPort& port) {
  auto* const image = dynamic_cast<QCImagePort*>(&port);
  if (!image) return portValue(port);
  const host::BitmapRef bitmap = VRTImage::bitmapOfPort(*image);
  return bitmap ? py::cast(std::make_shared<Bitmap>(redFirst(bitmap))) : py::none();
}

}  // namespace

py::object takeRaised() {
  return py::reinterpret_steal<py::object>(std::exchange(raised, nullptr));
}

PythonPatch::PythonPatch(PropertyList attributes, const py::object& plan)
    : QCPatch(std::move(attributes)), plan_(plan), instance_(plan.attr("instance")()) {
  for (const auto& each : plan.attr("declaration")()) {
    const auto [key, kind, described] = each.cast<std::tuple<std::string, std::string, py::dict>>();
    if (!addPort(key, kind, listOfObject(described))) {
      throw std::invalid_argument("the port " + key + " is there twice, or of the unknown kind " + kind);
    }
  }
  output_ = addOutputPort<QCImagePort>("outputImage");
  for (const auto& key : plan.attr("keys")()) wanted_.push_back(inputPortForKey(key.cast<std::string>()));
  for (const auto& key : plan.attr("required")()) {
    required_.push_back(dynamic_cast<QCImagePort*>(inputPortForKey(key.cast<std::string>())));
  }
}

// Behind the interpreter's end nothing is left to be released.
PythonPatch::~PythonPatch() {
  if (Py_IsInitialized() == 0) {
    plan_.release();
    instance_.release();
    return;
  }
  const py::gil_scoped_acquire locked;
  plan_ = py::object();
  instance_ = py::object();
}

bool PythonPatch::addPort(const std::string& key, const std::string& kind, PropertyList attributes) {
  if (kind == "image") return addInputPort<QCImagePort>(key, std::move(attributes)) != nullptr;
  if (kind == "number") return addInputPort<QCNumberPort>(key, std::move(attributes)) != nullptr;
  if (kind == "index") return addInputPort<QCIndexPort>(key, std::move(attributes)) != nullptr;
  if (kind == "boolean") return addInputPort<QCBooleanPort>(key, std::move(attributes)) != nullptr;
  if (kind == "color") return addInputPort<QCColorPort>(key, std::move(attributes)) != nullptr;
  if (kind == "string") return addInputPort<QCStringPort>(key, std::move(attributes)) != nullptr;
  if (kind == "gradient") return addInputPort<VRTGradientPort>(key, std::move(attributes)) != nullptr;
  return kind == "levels" && addInputPort<VRTHistogramPort>(key, std::move(attributes)) != nullptr;
}

bool PythonPatch::isInputMissing() const {
  return std::ranges::any_of(required_, [](QCImagePort* port) { return !VRTImage::bitmapOfPort(*port); });
}

void PythonPatch::render(double time) {
  py::list values;
  for (QCPort* port : wanted_) values.append(valueFor(*port));
  const py::object result = plan_.attr("render")(instance_, values, time);
  host::BitmapRef bitmap = givenPicture(result).held.bitmap;
  // What is an array's may be handed to no other process, and what the effect keeps it may change.
  if (bitmap->memoryEntry == 0 || keepsState(*this)) bitmap = std::make_shared<VortoBitmap>(*bitmap);
  VRTImage::setBitmapOfPort(*output_, std::move(bitmap));
}

bool PythonPatch::execute(double time, std::string* reason) {
  VRTImage::setBitmapOfPort(*output_, nullptr);
  if (isInputMissing()) return true;
  const py::gil_scoped_acquire locked;
  try {
    render(time);
    return true;
  } catch (py::error_already_set& error) {
    *reason = plan_.attr("failure")(error.value()).cast<std::string>();
    takeRaised();
    raised = py::object(error.value()).release().ptr();
    error.restore();  // so that it ends here, with the lock
    PyErr_Clear();
  }
  return false;
}

}  // namespace vorto::python
