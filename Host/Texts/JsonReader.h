// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/PropertyList.h"

#include <string_view>

namespace host {

// Reads a JSON text into a property list: numbers with neither a point nor an exponent as integers where these hold
// them, except -0; all other numbers as reals. null is no value: what holds it is refused. Nested at most 600 deep,
// with the bounds of property lists for the number of values. Throws TextFault.
PropertyList propertyListOfJson(std::string_view text);

// The bytes of hexadecimal digits, as JsonWriter writes data. Throws std::invalid_argument for anything else.
PropertyList::Bytes bytesOfHexadecimal(std::string_view digits);

}  // namespace host
