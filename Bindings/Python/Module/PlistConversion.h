// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Module.h"
#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/PropertyList.h"

namespace vorto::python {

// Property lists as Python has them: bool, int, float, str, bytes (bytearray where they are mutable), datetime (UTC,
// without a zone, as plistlib has it), plistlib.UID, list, dict.
py::object objectOfList(const PropertyList& list);

// The way back; tuples are arrays. TypeError for other types and for keys that are no str, OverflowError for integers
// beyond -2^63 to 2^64 - 1, ValueError beyond the limits of property lists and for what contains itself.
PropertyList listOfObject(const py::handle& object);

// What archives hold: the same, None, Gradient, Levels and OpaqueData. Null is None.
py::object objectOfArchived(const NSObjectRef& object);
NSObjectRef archivedOfObject(const py::handle& object);

py::bytes bytesOf(const PropertyList::Bytes& bytes);
PropertyList::Bytes bytesOfObject(const py::buffer& object);

}  // namespace vorto::python
