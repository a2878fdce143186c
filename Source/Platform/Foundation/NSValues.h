// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSObject.h"
#include "Platform/Foundation/PropertyList.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class HashIndex;

// The objects that property lists become when they travel through coders and ports. All are immutable once made, so
// copyWithZone() may return the object itself.

// A boolean, an integer or a real.
class TARN_EXPORT NSNumber : public NSObject {
 public:
  explicit NSNumber(PropertyList value);  // a boolean, integer or real; anything else counts as integer 0
  // A new number of that kind.
  static std::shared_ptr<NSNumber> numberWithBool(bool value);
  static std::shared_ptr<NSNumber> numberWithInt(std::int64_t value);
  static std::shared_ptr<NSNumber> numberWithDouble(double value);
  std::string className() const override { return "NSNumber"; }
  NSObjectRef copyWithZone() const override;
  bool isEqual(const NSObject& other) const override;
  // The value as it is, and converted as PropertyList does.
  const PropertyList& value() const { return value_; }
  bool boolValue() const { return value_.boolValue(); }
  std::int32_t intValue() const { return value_.intValue(); }
  double doubleValue() const { return value_.doubleValue(); }

 private:
  PropertyList value_;
};

// A text in UTF-8.
class TARN_EXPORT NSString : public NSObject {
 public:
  explicit NSString(std::string utf8);
  // A new string of the text.
  static std::shared_ptr<NSString> stringWithUTF8String(std::string utf8);
  std::string className() const override { return "NSString"; }
  NSObjectRef copyWithZone() const override;
  bool isEqual(const NSObject& other) const override;
  // The text.
  const std::string& UTF8String() const { return utf8_; }

 private:
  std::string utf8_;
};

// Bytes.
class TARN_EXPORT NSData : public NSObject {
 public:
  explicit NSData(PropertyList::Bytes bytes);
  std::string className() const override { return "NSData"; }
  NSObjectRef copyWithZone() const override;
  bool isEqual(const NSObject& other) const override;
  // The bytes.
  const PropertyList::Bytes& bytes() const { return bytes_; }

 private:
  PropertyList::Bytes bytes_;
};

// Archived as an object of its own class, unlike NSData; otherwise the same.
class TARN_EXPORT NSMutableData : public NSData {
 public:
  using NSData::NSData;
  std::string className() const override { return "NSMutableData"; }
  NSObjectRef copyWithZone() const override;
};

// A moment.
class TARN_EXPORT NSDate : public NSObject {
 public:
  explicit NSDate(double secondsSince2001);
  std::string className() const override { return "NSDate"; }
  NSObjectRef copyWithZone() const override;
  bool isEqual(const NSObject& other) const override;
  void encodeWithCoder(NSCoder& coder) const override;
  bool initWithCoder(NSCoder& coder) override;
  // Seconds since 2001-01-01 UTC.
  double timeIntervalSinceReferenceDate() const { return seconds_; }

 private:
  double seconds_;
};

// Stands for nothing where an object must be.
class TARN_EXPORT NSNull : public NSObject {
 public:
  std::string className() const override { return "NSNull"; }
  NSObjectRef copyWithZone() const override;
  bool isEqual(const NSObject& other) const override;
};

// Objects in an order.
class TARN_EXPORT NSArray : public NSObject {
 public:
  NSArray() = default;
  explicit NSArray(std::vector<NSObjectRef> objects);
  std::string className() const override { return "NSArray"; }
  NSObjectRef copyWithZone() const override;
  bool isEqual(const NSObject& other) const override;
  // The objects and their number.
  std::size_t count() const { return objects_.size(); }
  const std::vector<NSObjectRef>& objects() const { return objects_; }

 private:
  std::vector<NSObjectRef> objects_;
};

// Keys are strings in all that this system writes; other keys that an archive holds are refused when it is read.
class TARN_EXPORT NSDictionary : public NSObject {
 public:
  using Entries = std::vector<std::pair<std::string, NSObjectRef>>;
  NSDictionary();
  explicit NSDictionary(Entries entries);  // of equal keys the last wins
  ~NSDictionary() override;
  std::string className() const override { return "NSDictionary"; }
  NSObjectRef copyWithZone() const override;
  bool isEqual(const NSObject& other) const override;
  // In the order in which they were given.
  const Entries& entries() const { return entries_; }
  NSObjectRef objectForKey(std::string_view key) const;  // null when there is no such key

 private:
  std::size_t placeOf(std::string_view key) const;

  Entries entries_;
  std::unique_ptr<HashIndex> index_;
};

// The object form of a list, and back; a uid has no object form and gives null. Back gives nothing, with the cause in
// *reason (which may be null), when the graph holds an object that is no property-list value, or passes the limits of
// PropertyList.h (an object that several others share counts as often as it is referred to).
TARN_EXPORT NSObjectRef NSObjectFromPropertyList(const PropertyList& list);
TARN_EXPORT std::optional<PropertyList> NSPropertyListFromObject(const NSObject* object, std::string* reason = nullptr);
// The same of those entries of a dictionary that have one of the keys, as if it had no others.
TARN_EXPORT std::optional<PropertyList> NSPropertyListFromEntries(const NSDictionary& dictionary,
                                                                  std::span<const std::string> keys,
                                                                  std::string* reason = nullptr);
