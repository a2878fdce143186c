// SPDX-License-Identifier: BSD-3-Clause
#define PY_SSIZE_T_CLEAN
#include <Python.h>

#include "Host/Python/PythonModule.h"
#include "Platform/Visibility.h"

#include <dlfcn.h>

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>

namespace host {
namespace {

// An owned reference.
struct Release {
  void operator()(PyObject* object) const { Py_XDECREF(object); }
};
using Owned = std::unique_ptr<PyObject, Release>;

// The interpreter's lock, on whatever thread.
class Locked {
 public:
  Locked() : state_(PyGILState_Ensure()) {}
  ~Locked() { PyGILState_Release(state_); }
  Locked(const Locked&) = delete;
  Locked& operator=(const Locked&) = delete;

 private:
  PyGILState_STATE state_;
};

std::string textOf(PyObject* object) {
  const Owned text(object ? PyObject_Str(object) : nullptr);
  Py_ssize_t size = 0;
  const char* bytes = text ? PyUnicode_AsUTF8AndSize(text.get(), &size) : nullptr;
  if (!bytes) PyErr_Clear();
  return bytes ? std::string(bytes, static_cast<std::size_t>(size)) : "";
}

// "NameError: name 'x' is not defined" of the exception that is set, which it takes.
std::string takeException(bool isPrinted) {
  PyObject* type = nullptr;
  PyObject* value = nullptr;
  PyObject* trace = nullptr;
  PyErr_Fetch(&type, &value, &trace);
  PyErr_NormalizeException(&type, &value, &trace);
  const char* name = type ? reinterpret_cast<PyTypeObject*>(type)->tp_name : "an unknown exception";
  const std::string text = textOf(value);
  std::string line = name + (text.empty() ? "" : ": " + text.substr(0, text.find('\n')));
  if (isPrinted) PyErr_Display(type, value, trace);
  const Owned owned[] = {Owned(type), Owned(value), Owned(trace)};
  return line;
}

constexpr const char* kPrepare = R"(
import sys
# Standard output is the host's: pictures may go there.
sys.stdout = sys.stderr
import vorto
vorto._vorto._host_has_effects()
)";

constexpr const char* kRun = R"(
import os, runpy, sys
path = os.path.abspath(path)
sys.path.insert(0, os.path.dirname(path))
sys.argv = [path]
runpy.run_path(path, run_name='__vorto__')
)";

bool runText(const char* text, PyObject* names) {
  return Owned(PyRun_String(text, Py_file_input, names, names)) != nullptr;
}

Owned newNames() {
  Owned names(PyDict_New());
  if (names) PyDict_SetItemString(names.get(), "__builtins__", PyEval_GetBuiltins());
  return names;
}

class Interpreter : public PythonModule {
 public:
  bool run(const std::string& path, std::string* reason) override {
    const Locked locked;
    const Owned names = newNames();
    const Owned file(PyUnicode_DecodeFSDefaultAndSize(path.data(), static_cast<Py_ssize_t>(path.size())));
    if (names && file && PyDict_SetItemString(names.get(), "path", file.get()) == 0 && runText(kRun, names.get())) {
      return true;
    }
    const bool isMissing = PyErr_ExceptionMatches(PyExc_OSError) && !std::filesystem::exists(path);
    const std::string line = takeException(!isMissing);
    if (reason) *reason = isMissing ? "No such file or directory" : line;
    return false;
  }
};

// Signals stay the host's, and so do the words that it was started with.
bool start(std::string* reason) {
  PyConfig config;
  PyConfig_InitPythonConfig(&config);
  config.install_signal_handlers = 0;
  config.parse_argv = 0;
  const PyStatus status = Py_InitializeFromConfig(&config);
  PyConfig_Clear(&config);
  if (!PyStatus_Exception(status)) return true;
  if (reason) *reason = status.err_msg ? status.err_msg : "the interpreter does not start";
  return false;
}

bool prepare(const std::vector<std::string>& folders) {
  PyObject* const places = PySys_GetObject("path");  // borrowed
  for (const std::string& folder : folders) {
    std::error_code ignored;
    if (!std::filesystem::exists(folder + "/vorto/__init__.py", ignored)) continue;
    const Owned place(PyUnicode_DecodeFSDefault(folder.c_str()));
    if (!place || PyList_Insert(places, 0, place.get()) != 0) return false;
  }
  const Owned names = newNames();
  return names && runText(kPrepare, names.get());
}

PythonModule* started(const std::vector<std::string>& folders, std::string* reason) {
  if (!start(reason)) return nullptr;
  const bool isReady = prepare(folders);
  if (!isReady && reason) *reason = takeException(false);
  PyEval_SaveThread();  // from here on whoever needs the lock takes it
  static Interpreter interpreter;
  return isReady ? &interpreter : nullptr;
}

}  // namespace
}  // namespace host

extern "C" TARN_EXPORT host::PythonModule* VortoPythonModule(const std::vector<std::string>& folders,
                                                             std::string* reason) {
  static host::PythonModule* const module = host::started(folders, reason);
  return module;
}
