// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/PropertyList.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// What objects write themselves to and read themselves from.
//
// With keys (allowsKeyedCoding) values are found by name; without, in the order in which they were written. A decoder
// that meets something malformed remembers the first reason (error()) and answers null, 0 or false from then on.
class TARN_EXPORT NSCoder {
 public:
  virtual ~NSCoder();
  virtual bool allowsKeyedCoding() const = 0;

  virtual void encodeObject(const NSObjectRef& object) = 0;
  virtual void encodeObject(const NSObjectRef& object, std::string_view key) = 0;  // keyed coders only
  virtual NSObjectRef decodeObject() = 0;
  virtual NSObjectRef decodeObjectForKey(std::string_view key) = 0;  // null when there is no such key
  virtual bool containsValueForKey(std::string_view key) const = 0;

  // Numbers under a key; keyed archives hold them in place, other coders take them as NSNumber objects. Decoding takes
  // both forms, and answers 0 or false when there is no such key.
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

// Reads what NSKeyedArchiver, or another writer of the same layout, wrote: references of any width, shared objects,
// entries that nobody asks for, numbers in place or behind a reference, the mutable and the private classes of other
// writers. Classes are looked up in the class table; a class whose name is unknown is tried by its superclasses as the
// archive lists them, NSObject excepted, then refused.
//
// A shared object comes back shared. What is refused, with a reason: references that lead nowhere or in a circle
// through containers, nesting beyond PropertyListMaximumDepth, dictionaries whose keys are not strings, an object whose
// initWithCoder() says no or throws.
class TARN_EXPORT NSKeyedUnarchiver : public NSCoder {
 public:
  NSKeyedUnarchiver();
  ~NSKeyedUnarchiver() override;

  // False, with error() set, when the bytes are no keyed archive.
  bool initForReadingWithData(std::span<const std::uint8_t> bytes);
  // The same for a list that has been read already.
  bool initForReadingWithPropertyList(const PropertyList& archive);

  bool allowsKeyedCoding() const override { return true; }
  void encodeObject(const NSObjectRef& object) override;  // fails, as the next one does: this coder reads
  void encodeObject(const NSObjectRef& object, std::string_view key) override;
  NSObjectRef decodeObject() override;  // "$0", "$1", ...; at the top level "root" serves when there is no "$0"
  NSObjectRef decodeObjectForKey(std::string_view key) override;
  bool decodeBoolForKey(std::string_view key) override;
  std::int64_t decodeIntForKey(std::string_view key) override;
  double decodeDoubleForKey(std::string_view key) override;
  bool containsValueForKey(std::string_view key) const override;
  void finishDecoding();  // nothing can be decoded any more; error() stays

  // The top object: "root", else "$0". Null, with the cause in *reason (which may be null), when it cannot be read;
  // null without a cause when the archive holds nil.
  static NSObjectRef unarchiveObject(std::span<const std::uint8_t> bytes, std::string* reason);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// A non-keyed coder: one sequence of objects in one buffer of this system's own. Objects are read in the order in which
// they were written; one met twice is written once.
//
// The buffer is a binary property list: {"archiver": "NSArchiver", "version": 1, "objects": [...], "top": [...]}. An
// object is a number, string or data as it is, or a dictionary with "class" (the names from the class up to NSObject)
// and "values"; places in "top" and "values" are uids, 0 for nil and n for the n-th object.
class TARN_EXPORT NSArchiver : public NSCoder {
 public:
  NSArchiver();
  ~NSArchiver() override;
  bool allowsKeyedCoding() const override { return false; }
  void encodeObject(const NSObjectRef& object) override;
  void encodeObject(const NSObjectRef& object, std::string_view key) override;  // fails: there are no keys
  NSObjectRef decodeObject() override;
  NSObjectRef decodeObjectForKey(std::string_view key) override;
  bool containsValueForKey(std::string_view key) const override;
  std::optional<PropertyList::Bytes> finishEncoding();

 private:
  struct State;
  std::unique_ptr<State> state_;
};

class TARN_EXPORT NSUnarchiver : public NSCoder {
 public:
  NSUnarchiver();
  ~NSUnarchiver() override;
  bool initForReadingWithData(std::span<const std::uint8_t> bytes);
  bool allowsKeyedCoding() const override { return false; }
  void encodeObject(const NSObjectRef& object) override;
  void encodeObject(const NSObjectRef& object, std::string_view key) override;
  NSObjectRef decodeObject() override;
  NSObjectRef decodeObjectForKey(std::string_view key) override;
  bool containsValueForKey(std::string_view key) const override;

 private:
  struct State;
  std::unique_ptr<State> state_;
};
