// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSCoder.h"
#include "Platform/Foundation/PropertyList.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Writes an object graph in the keyed-archive layout: "$archiver", "$version", "$objects", "$top".
//
// An object met twice is written once; equal numbers and strings are too. Numbers, strings and NSData stand in
// "$objects" as they are; nil is a reference to "$null"; every other object is a dictionary of its keys with "$class".
// The classes of this room are written under their own names whatever their C++ type. Usage: make it, encode,
// finishEncoding().
class TARN_EXPORT NSKeyedArchiver : public NSCoder {
 public:
  explicit NSKeyedArchiver(PropertyListFormat outputFormat = PropertyListFormat::Binary);
  ~NSKeyedArchiver() override;

  bool allowsKeyedCoding() const override { return true; }
  void encodeObject(const NSObjectRef& object) override;  // under "$0", "$1", ... counted per object
  // Fails on a key that was used already. A key that begins with "$" is written as "$" + key: those are the layout's.
  void encodeObject(const NSObjectRef& object, std::string_view key) override;
  void encodeBool(bool value, std::string_view key) override;
  void encodeInt(std::int64_t value, std::string_view key) override;
  void encodeDouble(double value, std::string_view key) override;
  NSObjectRef decodeObject() override;  // fails, as the next one does: this coder writes
  NSObjectRef decodeObjectForKey(std::string_view key) override;
  bool containsValueForKey(std::string_view key) const override;

  // The archive; nothing, with error() set, when something could not be encoded.
  std::optional<PropertyList::Bytes> finishEncoding();
  // One object under the key "root".
  static std::optional<PropertyList::Bytes> archivedData(const NSObjectRef& root, PropertyListFormat format,
                                                         std::string* reason);

 private:
  struct State;
  std::unique_ptr<State> state_;
};
