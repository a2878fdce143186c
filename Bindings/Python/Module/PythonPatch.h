// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Module.h"

#include "Platform/QuartzComposer/QCPatch.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vorto::python {

// What the last effect in Python that failed on this thread raised; null when none has since it was last taken. With
// the interpreter's lock.
py::object takeRaised();

// An effect whose class is written in Python. It is told of by a plan (vorto/writing.py), which makes the instances and
// calls their render(); here are the ports, and the way of the values between them. It may run on any thread: the
// interpreter's lock is taken as long as Python is at work.
class PythonPatch : public QCPatch {
 public:
  // With the lock. Throws what Python raises.
  PythonPatch(PropertyList attributes, const py::object& plan);
  ~PythonPatch() override;
  std::string className() const override { return "PythonPatch"; }

 protected:
  bool execute(double time, std::string* reason) override;

 private:
  bool addPort(const std::string& key, const std::string& kind, PropertyList attributes);
  bool isInputMissing() const;
  void render(double time);

  py::object plan_;
  py::object instance_;
  std::vector<QCPort*> wanted_;  // whose values render() gets
  std::vector<QCImagePort*> required_;
  std::shared_ptr<QCImagePort> output_;
};

}  // namespace vorto::python
