// SPDX-License-Identifier: BSD-3-Clause
#include "PlistConversion.h"

#include "Errors.h"
#include "Platform/Foundation/NSValues.h"
#include "Ports/VRTObjects.h"

#include <cmath>
#include <string>

namespace vorto::python {
namespace {

py::object epoch() {
  return py::module_::import("datetime").attr("datetime")(2001, 1, 1);
}

py::object dateOf(double seconds) {
  return epoch() + py::module_::import("datetime").attr("timedelta")(py::arg("seconds") = seconds);
}

double secondsOf(py::object date) {
  if (!date.attr("tzinfo").is_none()) {
    const py::object utc = py::module_::import("datetime").attr("timezone").attr("utc");
    date = date.attr("astimezone")(utc).attr("replace")(py::arg("tzinfo") = py::none());
  }
  return py::cast<double>((date - epoch()).attr("total_seconds")());
}

bool isDate(const py::handle& object) {
  return py::isinstance(object, py::module_::import("datetime").attr("datetime"));
}

bool isUid(const py::handle& object) {
  return py::isinstance(object, py::module_::import("plistlib").attr("UID"));
}

PropertyList integerOf(const py::handle& object) {
  const py::object number = py::reinterpret_steal<py::object>(PyNumber_Index(object.ptr()));
  if (!number) throw py::error_already_set();
  int overflow = 0;
  const long long value = PyLong_AsLongLongAndOverflow(number.ptr(), &overflow);
  if (overflow == 0) return PropertyList::integer(value);
  const unsigned long long large = overflow > 0 ? PyLong_AsUnsignedLongLong(number.ptr()) : 0;
  if (overflow < 0 || PyErr_Occurred()) {
    PyErr_Clear();
    PyErr_SetString(PyExc_OverflowError, "an integer of a property list lies in -2**63 to 2**64 - 1");
    throw py::error_already_set();
  }
  return PropertyList::unsignedInteger(large);
}

py::object integerObject(const PropertyList& list) {
  const std::int64_t value = list.integerValue();
  const std::uint64_t bits = list.unsignedValue();
  // Beyond what is signed the conversion saturates, and the bits tell.
  if (list == PropertyList::integer(value)) return py::int_(value);
  return py::int_(bits);
}

std::string utf8Of(const py::handle& text) {
  Py_ssize_t size = 0;
  const char* utf8 = PyUnicode_AsUTF8AndSize(text.ptr(), &size);
  if (!utf8) throw py::error_already_set();
  return {utf8, static_cast<std::size_t>(size)};
}

// Walks through what Python has, within the limits of property lists.
class Reader {
 public:
  PropertyList read(const py::handle& object) {
    if (++values_ > PropertyListMaximumValues) throw py::value_error("more values than a property list can have");
    if (PyBool_Check(object.ptr())) return PropertyList::boolean(object.ptr() == Py_True);
    if (PyFloat_Check(object.ptr())) return PropertyList::real(py::cast<double>(object));
    if (PyUnicode_Check(object.ptr())) return PropertyList::string(utf8Of(object));
    if (PyBytes_Check(object.ptr())) return PropertyList::data(bytesOfObject(py::cast<py::buffer>(object)));
    if (PyByteArray_Check(object.ptr())) return PropertyList::mutableData(bytesOfObject(py::cast<py::buffer>(object)));
    if (PyDict_Check(object.ptr())) return nested([&] { return dictionary(object); });
    if (PyList_Check(object.ptr()) || PyTuple_Check(object.ptr())) return nested([&] { return array(object); });
    if (isUid(object)) return PropertyList::uid(py::cast<std::uint64_t>(object.attr("data")));
    if (isDate(object)) return PropertyList::date(secondsOf(py::reinterpret_borrow<py::object>(object)));
    if (PyIndex_Check(object.ptr())) return integerOf(object);
    if (py::hasattr(object, "__float__"))
      return PropertyList::real(py::cast<double>(py::float_(py::reinterpret_borrow<py::object>(object))));
    throw py::type_error("a property list holds no " + std::string(py::str(py::type::of(object).attr("__name__"))));
  }

 private:
  template <class Read>
  PropertyList nested(Read read) {
    if (++depth_ >= PropertyListMaximumDepth) throw py::value_error("nested more deeply than a property list can be");
    PropertyList list = read();
    --depth_;
    return list;
  }

  PropertyList array(const py::handle& object) {
    PropertyList list = PropertyList::array();
    for (const py::handle item : py::reinterpret_borrow<py::sequence>(object)) list.append(read(item));
    return list;
  }

  PropertyList dictionary(const py::handle& object) {
    PropertyList list;
    for (const auto& [key, value] : py::reinterpret_borrow<py::dict>(object)) {
      if (!PyUnicode_Check(key.ptr())) throw py::type_error("the keys of a property list are str");
      list.set(utf8Of(key), read(value));
    }
    return list;
  }

  std::uint64_t values_ = 0;
  int depth_ = 0;
};

py::str textOf(const std::string& utf8) {
  PyObject* text = PyUnicode_DecodeUTF8(utf8.data(), static_cast<Py_ssize_t>(utf8.size()), "replace");
  if (!text) throw py::error_already_set();
  return py::reinterpret_steal<py::str>(text);
}

}  // namespace

py::bytes bytesOf(const PropertyList::Bytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

PropertyList::Bytes bytesOfObject(const py::buffer& object) {
  Py_buffer view{};
  if (PyObject_GetBuffer(object.ptr(), &view, PyBUF_CONTIG_RO) != 0) throw py::error_already_set();
  const std::unique_ptr<Py_buffer, void (*)(Py_buffer*)> held(&view, PyBuffer_Release);
  const auto* begin = static_cast<const std::uint8_t*>(view.buf);
  return {begin, begin + view.len};
}

py::object objectOfList(const PropertyList& list) {
  switch (list.type()) {
    case PropertyList::Type::Boolean:
      return py::bool_(list.boolValue());
    case PropertyList::Type::Integer:
      return integerObject(list);
    case PropertyList::Type::Real:
      return py::float_(list.doubleValue());
    case PropertyList::Type::String:
      return textOf(list.stringValue());
    case PropertyList::Type::Data: {
      const py::bytes bytes = bytesOf(list.bytes());
      return list.isMutableData() ? py::object(py::bytearray(bytes)) : py::object(bytes);
    }
    case PropertyList::Type::Date:
      return dateOf(list.dateValue());
    case PropertyList::Type::Uid:
      return py::module_::import("plistlib").attr("UID")(list.uidValue());
    case PropertyList::Type::Array: {
      py::list items;
      for (const PropertyList& item : list.items()) items.append(objectOfList(item));
      return items;
    }
    case PropertyList::Type::Dictionary:
      break;
  }
  py::dict entries;
  for (std::size_t i = 0; i < list.entries().size(); ++i) {
    entries[textOf(list.entries().keyAt(i))] = objectOfList(list.entries().valueAt(i));
  }
  return entries;
}

PropertyList listOfObject(const py::handle& object) {
  return Reader().read(object);
}

py::object objectOfArchived(const NSObjectRef& object) {
  if (!object || dynamic_cast<const NSNull*>(object.get())) return py::none();
  if (const auto value = std::dynamic_pointer_cast<VRTObject>(object)) return py::cast(value);
  if (const auto* array = dynamic_cast<const NSArray*>(object.get())) {
    py::list items;
    for (const NSObjectRef& item : array->objects()) items.append(objectOfArchived(item));
    return items;
  }
  if (const auto* dictionary = dynamic_cast<const NSDictionary*>(object.get())) {
    py::dict entries;
    for (const auto& [key, value] : dictionary->entries()) entries[textOf(key)] = objectOfArchived(value);
    return entries;
  }
  std::string reason;
  const auto list = NSPropertyListFromObject(object.get(), &reason);
  if (!list) throw Error("Python has nothing for an object of the class " + object->className() + ": " + reason);
  return objectOfList(*list);
}

namespace {

NSObjectRef archivedWithin(const py::handle& object, int depth, std::uint64_t& values) {
  if (depth >= PropertyListMaximumDepth) throw py::value_error("nested more deeply than an archive can be");
  if (++values > PropertyListMaximumValues) throw py::value_error("more values than an archive can have");
  if (object.is_none()) return std::make_shared<NSNull>();
  if (py::isinstance<VRTObject>(object)) return py::cast<std::shared_ptr<VRTObject>>(object);
  if (PyDict_Check(object.ptr())) {
    NSDictionary::Entries entries;
    for (const auto& [key, value] : py::reinterpret_borrow<py::dict>(object)) {
      if (!PyUnicode_Check(key.ptr())) throw py::type_error("the keys of a dict that is archived are str");
      entries.emplace_back(utf8Of(key), archivedWithin(value, depth + 1, values));
    }
    return std::make_shared<NSDictionary>(std::move(entries));
  }
  if (PyList_Check(object.ptr()) || PyTuple_Check(object.ptr())) {
    std::vector<NSObjectRef> items;
    for (const py::handle item : py::reinterpret_borrow<py::sequence>(object)) {
      items.push_back(archivedWithin(item, depth + 1, values));
    }
    return std::make_shared<NSArray>(std::move(items));
  }
  NSObjectRef value = NSObjectFromPropertyList(listOfObject(object));
  if (!value) throw py::type_error("a UID is a part of archives and cannot be archived itself");
  return value;
}

}  // namespace

NSObjectRef archivedOfObject(const py::handle& object) {
  std::uint64_t values = 0;
  return object.is_none() ? nullptr : archivedWithin(object, 0, values);
}

}  // namespace vorto::python
