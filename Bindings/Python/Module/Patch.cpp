// SPDX-License-Identifier: BSD-3-Clause
#include "Patch.h"

#include "PortArguments.h"
#include "PythonPatch.h"
#include "Remarks.h"
#include "Use.h"

#include "Host/Commands/OptionValues.h"
#include "Host/Messages/Failure.h"
#include "Platform/QuartzComposer/QCPatch.h"
#include "Registry/VRTExecutionTraits.h"
#include "TarnCore/TCBitmap.h"

#include <cmath>
#include <utility>

namespace vorto::python {
namespace {

// An effect that looks back at former pictures gets some that nobody changes any more.
void keepForEffect(std::vector<host::HeldPicture>& worked, const std::vector<host::HeldPicture>& given) {
  for (std::size_t i = 0; i < worked.size(); ++i) {
    if (worked[i].bitmap == given[i].bitmap) worked[i].bitmap = std::make_shared<VortoBitmap>(*given[i].bitmap);
  }
}

// The failure, caused by what an effect in Python raised, where one did.
[[noreturn]] void raise(const host::Failure& failure) {
  const py::object cause = takeRaised();
  if (!cause) throw failure;
  const py::object error = py::module_::import("vorto._vorto").attr("Error");
  PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(cause.ptr())), cause.ptr());
  py::raise_from(error.ptr(), failure.what());
  throw py::error_already_set();
}

}  // namespace

Patch::Patch(std::string name) : name_(std::move(name)) {
  host::makeEffect(name_);
}

void Patch::prepare(const Setup& setup) {
  if (rendering_ && setup == setup_) return;
  rendering_ = nullptr;
  initial_.clear();
  const host::Framing framing = host::parsedFraming({setup.size, setup.scaling, setup.fit, setup.place});
  rendering_ = std::make_unique<host::HeldRendering>(name_, setup.inputs, framing, host::parsedDepth(setup.depth));
  for (const auto& port : rendering_->effect().patch().inputPorts()) initial_.push_back(port->value());
  setup_ = setup;
}

void Patch::setParameters(const py::dict& parameters) {
  const QCPatch::Ports& ports = rendering_->effect().patch().inputPorts();
  for (std::size_t i = 0; i < ports.size(); ++i) {
    if (ports[i]->value() != initial_[i]) ports[i]->setValue(initial_[i]);
  }
  for (const auto& [keyword, value] : parameters) {
    setPort(rendering_->effect(), py::cast<std::string>(keyword), value);
  }
}

py::object Patch::render(const py::sequence& arguments, const py::dict& parameters, const RenderWishes& wishes) {
  const InUse use(isInUse_, "the effect \"" + name_ + "\"");
  std::vector<GivenPicture> pictures;
  std::vector<host::HeldPicture> given;
  for (const auto& each : arguments) {
    pictures.push_back(givenPicture(each));
    given.push_back(pictures.back().held);
  }
  if (!std::isfinite(wishes.time)) throw py::value_error("time: give a finite number");
  takeRaised();
  const auto rendered = [&] {
    prepare({given.size(), sizeText(wishes.size), optionText(wishes.scaling), optionText(wishes.fit),
             optionText(wishes.place), optionText(wishes.depth)});
    setParameters(parameters);
    const bool isKept = keepsState(rendering_->effect().patch());
    const py::gil_scoped_release released;
    std::vector<host::HeldPicture> worked = rendering_->worked(given);
    if (isKept) keepForEffect(worked, given);
    return rendering_->render(worked, wishes.time);
  };
  try {
    return returnedPicture(withRemarks(rendered), pictures.empty() ? Given::Bitmap : pictures[0].kind);
  } catch (const host::Failure& failure) {
    raise(failure);
  }
}

}  // namespace vorto::python
