// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/PropertyList.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

// What stands between bytes from outside and libplist. Private to this room.
//
// The library frees and builds lists by recursion, expands shared values without bound, takes malformed numbers, dates
// and base64 for zeros, and reads reals by the locale. So it is only shown bytes that were walked here first.
namespace propertylist {

// A canonical rewriting of an XML list: no comments, attributes, white space between values or CDATA; numbers, dates
// and base64 checked. The library meets nothing that it could understand otherwise than the walk did.
std::optional<std::string> prepareXml(std::span<const std::uint8_t> bytes, std::string* reason);

// A copy of a binary list whose every object that the root reaches was checked: offsets, counts, nesting, cycles, and
// the size of the tree that its shared objects unfold to. Integers of 16 bytes that fit 8 are rewritten as such.
std::optional<PropertyList::Bytes> prepareBinary(std::span<const std::uint8_t> bytes, std::string* reason);

// The code point at the front of `text`, which is shortened by it; nothing when the text is no UTF-8 there.
std::optional<char32_t> takeCodePoint(std::string_view& text);

// Why a text can be kept in no list (not UTF-8, or with a NUL), or null when it can.
const char* faultOfText(std::string_view text);
// True for the code points that XML text may hold.
bool isXmlCharacter(char32_t character);

// The text of a real as XML lists have it, the shortest that reads back as the same value.
std::string xmlReal(double value);
// Seconds since 2001 as YYYY-MM-DDTHH:MM:SSZ, fractions dropped; nothing outside the years 1 to 9999.
std::optional<std::string> xmlDate(double secondsSince2001);
// True for an existing day and time of day in that form.
bool isXmlDate(std::string_view text);

// Stores a reason where one is wanted; false, for the caller to pass on.
bool refuse(std::string* reason, std::string text);

}  // namespace propertylist
