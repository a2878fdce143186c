// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/PropertyList.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Lists and archives as other writers, or hostile ones, make them, in tables of text: "expected | input", a case a
// line, with \n, \r, \t and \xHH in both. Lines that begin with "# " are comments.
struct Case {
  std::string table;
  std::string expected;
  std::string input;
};
std::vector<Case> casesOf(const std::string& table);
std::ostream& operator<<(std::ostream& stream, const Case& each);

PropertyList::Bytes bytesOf(std::string_view text);
PropertyList::Bytes fileOf(const std::string& name);  // from the folder of the tables
// A document of what stands within <plist>, or that behind "document:".
PropertyList::Bytes xmlList(const std::string& input);
// Objects in hexadecimal, each ending in ";", with references of one byte and offsets of two; then "place=bytes" to
// change the trailer, or the end of the table where the place is negative.
PropertyList::Bytes binaryList(const std::string& notation);
PropertyList::Bytes binaryList(const std::vector<PropertyList::Bytes>& objects, unsigned referenceSize = 1,
                               unsigned offsetSize = 2);
void appendNumber(PropertyList::Bytes& out, std::uint64_t value, unsigned size);
// A short form of XML: @5 is a reference, {} a dictionary, [] an array, key= a key, "text" a string, #5 an integer,
// %Name the description of a class in a keyed archive; anything else is XML.
PropertyList::Bytes listInNotation(std::string text);
// The same for a keyed archive, of "$top ; $objects behind $null".
PropertyList::Bytes keyedArchive(const std::string& notation);

// A list as XML without the white space of its layout.
std::string compactXml(const PropertyList& list);
