// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSObject.h"

#include <cstdint>
#include <string>
#include <string_view>

// What objects write themselves to and read themselves from.
//
// With keys (allowsKeyedCoding) values are found by name; without, in the order in which they were written. A decoder
// that meets something malformed remembers the first reason (error()) and returns null, 0 or false from then on.
class TARN_EXPORT NSCoder {
 public:
  virtual ~NSCoder();
  // Whether values have keys.
  virtual bool allowsKeyedCoding() const = 0;

  // Objects, or null. Without a key they are read in the order in which they were written.
  virtual void encodeObject(const NSObjectRef& object) = 0;
  virtual void encodeObject(const NSObjectRef& object, std::string_view key) = 0;  // keyed coders only
  virtual NSObjectRef decodeObject() = 0;
  virtual NSObjectRef decodeObjectForKey(std::string_view key) = 0;  // null when there is no such key
  virtual bool containsValueForKey(std::string_view key) const = 0;

  // Numbers under a key; keyed archives hold them in place, other coders take them as NSNumber objects. Decoding takes
  // both forms, and returns 0 or false when there is no such key.
  virtual void encodeBool(bool value, std::string_view key);
  virtual void encodeInt(std::int64_t value, std::string_view key);
  virtual void encodeDouble(double value, std::string_view key);
  virtual bool decodeBoolForKey(std::string_view key);
  virtual std::int64_t decodeIntForKey(std::string_view key);
  virtual double decodeDoubleForKey(std::string_view key);

  const std::string& error() const { return error_; }  // empty while all went well
  void fail(std::string_view reason);                  // only the first reason is kept

 private:
  std::string error_;
};
