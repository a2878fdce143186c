// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Module.h"
#include "Pictures.h"

#include "Host/Rendering/HeldPicture.h"
#include "Platform/QuartzComposer/QCPort.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace vorto::python {

// How a picture is wanted, in the words of Python's keywords.
struct RenderWishes {
  double time = 0;
  py::object size, scaling, fit, place, depth;
};

// An effect that is called from Python. One thread at a time; the interpreter's lock is given up while it renders.
class Patch {
 public:
  explicit Patch(std::string name);  // throws host::Failure for an unknown one, with those that are close

  const std::string& name() const { return name_; }
  // What comes back is what came in first: a Bitmap, a Picture or an array; of a generator a Bitmap. A parameter that
  // is not given has its default. Throws what went wrong.
  py::object render(const py::sequence& pictures, const py::dict& parameters, const RenderWishes& wishes);

 private:
  struct Setup {
    std::size_t inputs = 0;
    std::string size, scaling, fit, place, depth;
    bool operator==(const Setup&) const = default;
  };
  void prepare(const Setup& setup);
  void setParameters(const py::dict& parameters);

  const std::string name_;
  Setup setup_;
  std::unique_ptr<host::HeldRendering> rendering_;  // for that setup
  std::vector<NSObjectRef> initial_;                // values of its inputs
  bool isInUse_ = false;
};

}  // namespace vorto::python
