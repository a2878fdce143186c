// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Visibility.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

class HashIndex;

// A property list: the value that documents, bundles and states are made of.
//
// A value type: copies are deep and independent. Copying, comparing and destroying recurse with the nesting, so that
// whoever builds a list keeps to PropertyListMaximumDepth; what is read from bytes is bounded by it. An integer and a
// real are different values even when they are numerically equal; reals keep every bit (-0.0, 17 digits). A dictionary
// keeps the order in which its keys were added.
class TARN_EXPORT PropertyList {
 public:
  enum class Type { Boolean, Integer, Real, String, Data, Date, Uid, Array, Dictionary };

  using Bytes = std::vector<std::uint8_t>;
  using Array = std::vector<PropertyList>;

  // Keys are unique; setting an existing key replaces its value in place. Finding a key takes as long in a dictionary
  // of a million keys as in one of a hundred, whatever the keys.
  class TARN_EXPORT Dictionary {
   public:
    Dictionary();
    ~Dictionary();
    Dictionary(const Dictionary& other);
    Dictionary& operator=(const Dictionary& other);
    Dictionary(Dictionary&& other) noexcept;  // leaves the other one empty
    Dictionary& operator=(Dictionary&& other) noexcept;

    // Entries by their places, 0 to size() - 1, and by their keys.
    std::size_t size() const;
    bool empty() const { return size() == 0; }
    const std::string& keyAt(std::size_t index) const;
    const PropertyList& valueAt(std::size_t index) const;
    const PropertyList* find(std::string_view key) const;  // null when there is no such key
    PropertyList* find(std::string_view key);
    void set(std::string_view key, PropertyList value);
    void reserve(std::size_t count);                 // room for that many keys in all
    bool operator==(const Dictionary& other) const;  // same keys with equal values, in any order

   private:
    struct Entry;
    std::size_t placeOf(std::string_view key) const;
    void buildIndex();

    std::vector<Entry> entries_;
    std::unique_ptr<HashIndex> index_;  // null while there are few keys
  };

  PropertyList();  // an empty dictionary
  // Values of each type.
  static PropertyList boolean(bool value);
  static PropertyList integer(std::int64_t value);
  static PropertyList unsignedInteger(std::uint64_t value);  // values above INT64_MAX are kept as they are
  static PropertyList real(double value);
  static PropertyList string(std::string utf8);
  static PropertyList data(Bytes bytes);
  // The same bytes, archived under the class NSMutableData; equal to data() of the same bytes.
  static PropertyList mutableData(Bytes bytes);
  static PropertyList date(double secondsSince2001);
  static PropertyList uid(std::uint64_t value);  // a reference inside a keyed archive
  static PropertyList array(Array items = {});
  static PropertyList dictionary(Dictionary entries = {});

  // What the value is.
  Type type() const;
  const char* typeName() const;  // "boolean", "integer", "real", "string", "data", "date", "uid", "array", "dictionary"
  bool isNumber() const;         // boolean, integer or real
  bool isString() const { return type() == Type::String; }
  bool isData() const { return type() == Type::Data; }
  bool isMutableData() const;
  bool isArray() const { return type() == Type::Array; }
  bool isDictionary() const { return type() == Type::Dictionary; }

  // Conversions as messages to numbers and strings behave. A real outside the integer's range saturates, NaN gives 0. A
  // string gives the decimal number at its start, behind white space: "1.5 m" is 1.5, or 1 as an integer; 0 when there
  // is none, whatever the locale. Anything else gives 0, and a string the boolean false.
  bool boolValue() const;
  std::int32_t intValue() const;
  std::int64_t integerValue() const;
  double doubleValue() const;
  bool readsAsNumber() const;  // a number, or a string that begins with one

  // Contents. On a value of another type they return an empty constant.
  const std::string& stringValue() const;
  const Bytes& bytes() const;
  const Array& items() const;
  const Dictionary& entries() const;
  double dateValue() const;             // seconds since 2001-01-01 UTC; 0 unless a date
  std::uint64_t uidValue() const;       // 0 unless a uid
  std::uint64_t unsignedValue() const;  // the integer's bits; for integers above INT64_MAX

  // Shorthands for dictionaries: null, or nothing done, when this is not a dictionary.
  const PropertyList* find(std::string_view key) const;
  void set(std::string_view key, PropertyList value);
  // Shorthand for arrays: nothing done when this is not an array.
  void append(PropertyList item);

  // Same type and same value; reals are compared bit for bit, so NaN equals itself and 0.0 differs from -0.0.
  bool operator==(const PropertyList& other) const;

 private:
  struct IntegerValue;
  struct DataValue;
  struct DateValue;
  struct UidValue;
  struct IntegerValue {
    std::uint64_t bits;
    bool isUnsigned;  // true only above INT64_MAX
    bool operator==(const IntegerValue&) const = default;
  };
  struct DataValue {
    Bytes bytes;
    bool isMutable;
    bool operator==(const DataValue& other) const { return bytes == other.bytes; }
  };
  struct DateValue {
    double seconds;
    bool operator==(const DateValue& other) const;  // bit for bit, like reals
  };
  struct UidValue {
    std::uint64_t value;
    bool operator==(const UidValue&) const = default;
  };
  using Storage =
      std::variant<bool, IntegerValue, double, std::string, DataValue, DateValue, UidValue, Array, Dictionary>;
  template <typename Value, typename... Arguments>
  explicit PropertyList(std::in_place_type_t<Value> type, Arguments&&... arguments);
  Storage storage_;
};

// A key and its value.
struct PropertyList::Dictionary::Entry {
  std::string key;
  PropertyList value;
};

inline std::size_t PropertyList::Dictionary::size() const {
  return entries_.size();
}
inline const std::string& PropertyList::Dictionary::keyAt(std::size_t index) const {
  return entries_[index].key;
}
inline const PropertyList& PropertyList::Dictionary::valueAt(std::size_t index) const {
  return entries_[index].value;
}

enum class PropertyListFormat { Xml, Binary };

// The limits of what is read and written; a list beyond one of them is refused with a reason. Values are counted as
// often as they are referred to: a binary list may store one value and refer to it from many places.
inline constexpr int PropertyListMaximumDepth = 512;
inline constexpr std::uint64_t PropertyListMaximumValues = std::uint64_t{1} << 21;
inline constexpr std::uint64_t PropertyListMaximumBytes = std::uint64_t{1} << 28;  // of the file, and of its contents

// Reads a property list, XML (UTF-8) or binary ("bplist00"), told apart by its first bytes. Nothing on a malformed,
// truncated or too large list, with the cause in *reason (which may be null).
//
// - Dictionaries keep the order of the bytes; of equal keys the last wins, in the place of the first.
// - In XML an integer lies in -2^63 to 2^64 - 1; a real is decimal, "nan", "infinity" or "inf" with an optional sign; a
//   date is YYYY-MM-DDTHH:MM:SSZ; a dictionary whose only entry is "CF$UID" with an integer of 0 to 2^32 - 1 is a uid.
// - A document type that declares entities of its own is refused.
// - Text with a NUL in it is refused.
TARN_EXPORT std::optional<PropertyList> PropertyListFromBytes(std::span<const std::uint8_t> bytes, std::string* reason,
                                                              PropertyListFormat* format = nullptr);
// The bytes of a list; nothing, with the cause, when it cannot be written: beyond the limits, text with a NUL or that
// is no UTF-8, in XML also text with control characters (other than tab, newline and return), which XML cannot hold.
//
// XML reals have the fewest digits that read back as the same value; NaN is written "nan" and loses its payload, which
// binary keeps; dates lose fractions of a second in XML, and must lie in the years 1 to 9999. A uid is at most 2^32
// - 1 in XML. A dictionary that XML readers take for a uid (above) is written as it is.
TARN_EXPORT std::optional<PropertyList::Bytes> PropertyListToBytes(const PropertyList& list, PropertyListFormat format,
                                                                   std::string* reason);

// The list in a file (NSReadFile). The reason does not repeat the path.
TARN_EXPORT std::optional<PropertyList> PropertyListFromFile(const std::string& path, std::string* reason,
                                                             PropertyListFormat* format = nullptr);
