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
// An object met twice is written once. Usage: make it, encode, finishEncoding().
class TARN_EXPORT NSKeyedArchiver : public NSCoder {
 public:
  explicit NSKeyedArchiver(PropertyListFormat outputFormat = PropertyListFormat::Binary);
  ~NSKeyedArchiver() override;

  bool allowsKeyedCoding() const override { return true; }
  void encodeObject(const NSObjectRef& object) override;  // under "$0", "$1", ... counted per object
  void encodeObject(const NSObjectRef& object, std::string_view key) override;
  NSObjectRef decodeObject() override;
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

// Reads what NSKeyedArchiver, or another writer of the same layout, wrote. Classes are looked up in the class table; a
// class whose name is unknown is tried by its superclasses as the archive lists them, then refused.
class TARN_EXPORT NSKeyedUnarchiver : public NSCoder {
 public:
  NSKeyedUnarchiver();
  ~NSKeyedUnarchiver() override;

  // False, with error() set, when the bytes are no keyed archive.
  bool initForReadingWithData(std::span<const std::uint8_t> bytes);
  // The same for a list that has been read already.
  bool initForReadingWithPropertyList(const PropertyList& archive);

  bool allowsKeyedCoding() const override { return true; }
  void encodeObject(const NSObjectRef& object) override;
  void encodeObject(const NSObjectRef& object, std::string_view key) override;
  NSObjectRef decodeObject() override;  // "$0", "$1", ...; at the top level "root" serves when there is no "$0"
  NSObjectRef decodeObjectForKey(std::string_view key) override;
  bool containsValueForKey(std::string_view key) const override;
  void finishDecoding();

  static NSObjectRef unarchiveObject(std::span<const std::uint8_t> bytes, std::string* reason);

 private:
  struct State;
  std::unique_ptr<State> state_;
};

// A non-keyed coder: one sequence of objects in one buffer of this system's own.
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
