// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSCoder.h"
#include "Platform/Foundation/NSValues.h"

#include <functional>
#include <optional>
#include <string>
#include <unordered_map>

// What the coders have in common. Private to this room.
namespace coding {

// One level of objects within objects, being written or read. Counted over all coders that are at work: an object may
// hold an archive, whose objects hold archives again, and each of them would otherwise start from nothing.
class Level {
 public:
  explicit Level(bool first);  // first: the outermost level of its coder
  ~Level();
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;
  bool isTooDeep() const;

 private:
  bool first_;
};

// The number, text or data of an object that archives hold as it is; nothing for objects with a class of their own.
std::optional<PropertyList> plainValue(const NSObject& object);
// The object of such a value, or of a date; null for other values.
NSObjectRef objectOfPlainValue(const PropertyList& value);

// encodeWithCoder() and initWithCoder(), with what they throw turned into an error of the coder. `className` is the one
// that the reason names.
void encode(const NSObject& object, NSCoder& coder);
bool init(NSObject& object, NSCoder& coder, const std::string& className);

// Finds numbers and strings that were written before by their value.
class PlainValues {
 public:
  // The place of an equal value, or nothing; numbers and strings only.
  std::optional<std::size_t> find(const PropertyList& value) const;
  void add(const PropertyList& value, std::size_t place);

 private:
  std::unordered_map<std::string, std::size_t> places_;
};

}  // namespace coding
