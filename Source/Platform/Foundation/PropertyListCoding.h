// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/PropertyList.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

// The two forms of a list as bytes, and what they have in common. Private to this room.
namespace propertylist {

// Of a list within the size limit. Nothing, with the cause, unless the whole of it holds together.
std::optional<PropertyList> readXml(std::string_view document, std::string* reason);
std::optional<PropertyList> readBinary(std::span<const std::uint8_t> bytes, std::string* reason);

// Whether a list is within the limits and holds nothing that the format cannot keep; the writers rely on it.
bool canBeWritten(const PropertyList& list, PropertyListFormat format, std::string* reason);
PropertyList::Bytes writeXml(const PropertyList& list);
PropertyList::Bytes writeBinary(const PropertyList& list);

// Why a text can be kept in no list (not UTF-8, or with a NUL), or null when it can.
const char* faultOfText(std::string_view text);
// The same for XML, which keeps no control characters other than tab, newline and return and no U+FFFE and U+FFFF.
const char* faultOfXmlText(std::string_view text);

// The entry that makes a dictionary of XML lists a uid, and the greatest uid there.
inline constexpr const char* kXmlUidKey = "CF$UID";
inline constexpr std::uint64_t kXmlUidMaximum = 0xFFFFFFFF;

// Scalars as XML lists have them; from text, nothing when it is malformed.
std::optional<PropertyList> integerFromXml(std::string_view text);
std::optional<double> realFromXml(std::string_view text);
std::optional<double> dateFromXml(std::string_view text);  // seconds since 2001
std::optional<PropertyList::Bytes> dataFromXml(std::string_view text);
// The decimal number that a text begins with, behind white space. What a double cannot hold is an infinity or 0, what
// an integer cannot hold is the nearest one. No real is nothing, no integer is 0.
std::optional<double> realAtStart(std::string_view text);
std::int64_t integerAtStart(std::string_view text);
// The shortest text that reads back as the same value.
std::string xmlReal(double value);
// YYYY-MM-DDTHH:MM:SSZ, fractions dropped; nothing outside the years 1 to 9999.
std::optional<std::string> xmlDate(double secondsSince2001);

}  // namespace propertylist
