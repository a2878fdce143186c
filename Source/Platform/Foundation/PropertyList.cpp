// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/PropertyList.h"

#include "Platform/Foundation/HashIndex.h"
#include "Platform/Foundation/PropertyListCoding.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

namespace {

constexpr std::size_t kKeysWithoutIndex = 12;  // looking through so few costs less than a hash
constexpr std::size_t kFirstKeys = 4;          // room for as many is taken at once

const std::string kEmptyString;
const PropertyList::Bytes kEmptyBytes;
const PropertyList::Array kEmptyArray;
const PropertyList::Dictionary kEmptyDictionary;

// The nearest integer towards zero, saturated; NaN gives 0.
template <typename Integer>
Integer saturated(double value) {
  if (std::isnan(value)) {
    return 0;
  }
  // -2^n is exact as a double; 2^n - 1 is not for 64 bits, so the upper bound is tested as 2^n.
  const double lowest = static_cast<double>(std::numeric_limits<Integer>::min());
  if (value < lowest) {
    return std::numeric_limits<Integer>::min();
  }
  if (value >= -lowest) {
    return std::numeric_limits<Integer>::max();
  }
  return static_cast<Integer>(value);
}

bool sameBits(double a, double b) {
  return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b);
}

}  // namespace

PropertyList::Dictionary::Dictionary() = default;
PropertyList::Dictionary::~Dictionary() = default;
PropertyList::Dictionary::Dictionary(Dictionary&& other) noexcept = default;
PropertyList::Dictionary& PropertyList::Dictionary::operator=(Dictionary&& other) noexcept = default;

PropertyList::Dictionary::Dictionary(const Dictionary& other)
    : entries_(other.entries_), index_(other.index_ ? std::make_unique<HashIndex>(*other.index_) : nullptr) {}

PropertyList::Dictionary& PropertyList::Dictionary::operator=(const Dictionary& other) {
  return *this = Dictionary(other);
}

std::size_t PropertyList::Dictionary::placeOf(std::string_view key) const {
  if (index_) {
    return index_->find(hashOfBytes(key), [&](std::size_t place) { return entries_[place].key == key; });
  }
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& each) { return each.key == key; });
  return found == entries_.end() ? HashIndex::kNone : static_cast<std::size_t>(found - entries_.begin());
}

const PropertyList* PropertyList::Dictionary::find(std::string_view key) const {
  const std::size_t place = placeOf(key);
  return place == HashIndex::kNone ? nullptr : &entries_[place].value;
}

PropertyList* PropertyList::Dictionary::find(std::string_view key) {
  const std::size_t place = placeOf(key);
  return place == HashIndex::kNone ? nullptr : &entries_[place].value;
}

void PropertyList::Dictionary::set(std::string_view key, PropertyList value) {
  if (PropertyList* known = find(key)) {
    *known = std::move(value);
    return;
  }
  if (entries_.capacity() == 0) {
    entries_.reserve(kFirstKeys);
  }
  entries_.push_back(Entry{std::string(key), std::move(value)});
  if (index_) {
    index_->add(hashOfBytes(key), entries_.size() - 1);
  } else if (entries_.size() > kKeysWithoutIndex) {
    buildIndex();
  }
}

void PropertyList::Dictionary::reserve(std::size_t count) {
  entries_.reserve(count);
}

void PropertyList::Dictionary::buildIndex() {
  index_ = std::make_unique<HashIndex>();
  for (std::size_t i = 0; i < entries_.size(); ++i) {
    index_->add(hashOfBytes(entries_[i].key), i);
  }
}

bool PropertyList::Dictionary::operator==(const Dictionary& other) const {
  if (size() != other.size()) {
    return false;
  }
  for (std::size_t i = 0; i < size(); ++i) {
    const PropertyList* theirs = other.find(keyAt(i));
    if (theirs == nullptr || !(valueAt(i) == *theirs)) {
      return false;
    }
  }
  return true;
}

bool PropertyList::DateValue::operator==(const DateValue& other) const {
  return sameBits(seconds, other.seconds);
}

template <typename Value, typename... Arguments>
PropertyList::PropertyList(std::in_place_type_t<Value> type, Arguments&&... arguments)
    : storage_(type, std::forward<Arguments>(arguments)...) {}

PropertyList::PropertyList() : storage_(std::in_place_type<Dictionary>) {}

PropertyList PropertyList::boolean(bool value) {
  return PropertyList(std::in_place_type<bool>, value);
}

PropertyList PropertyList::integer(std::int64_t value) {
  return PropertyList(std::in_place_type<IntegerValue>, IntegerValue{static_cast<std::uint64_t>(value), false});
}

PropertyList PropertyList::unsignedInteger(std::uint64_t value) {
  const bool isUnsigned = value > static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
  return PropertyList(std::in_place_type<IntegerValue>, IntegerValue{value, isUnsigned});
}

PropertyList PropertyList::real(double value) {
  return PropertyList(std::in_place_type<double>, value);
}

PropertyList PropertyList::string(std::string utf8) {
  return PropertyList(std::in_place_type<std::string>, std::move(utf8));
}

PropertyList PropertyList::data(Bytes bytes) {
  return PropertyList(std::in_place_type<DataValue>, DataValue{std::move(bytes), false});
}

PropertyList PropertyList::mutableData(Bytes bytes) {
  return PropertyList(std::in_place_type<DataValue>, DataValue{std::move(bytes), true});
}

PropertyList PropertyList::date(double secondsSince2001) {
  return PropertyList(std::in_place_type<DateValue>, DateValue{secondsSince2001});
}

PropertyList PropertyList::uid(std::uint64_t value) {
  return PropertyList(std::in_place_type<UidValue>, UidValue{value});
}

PropertyList PropertyList::array(Array items) {
  return PropertyList(std::in_place_type<Array>, std::move(items));
}

PropertyList PropertyList::dictionary(Dictionary entries) {
  return PropertyList(std::in_place_type<Dictionary>, std::move(entries));
}

PropertyList::Type PropertyList::type() const {
  return static_cast<Type>(storage_.index());  // the alternatives stand in the order of the types
}

const char* PropertyList::typeName() const {
  static constexpr const char* names[] = {"boolean", "integer", "real",  "string",    "data",
                                          "date",    "uid",     "array", "dictionary"};
  return names[storage_.index()];
}

bool PropertyList::isNumber() const {
  return type() == Type::Boolean || type() == Type::Integer || type() == Type::Real;
}

bool PropertyList::isMutableData() const {
  const auto* data = std::get_if<DataValue>(&storage_);
  return data != nullptr && data->isMutable;
}

bool PropertyList::boolValue() const {
  switch (type()) {
    case Type::Boolean:
      return std::get<bool>(storage_);
    case Type::Integer:
      return std::get<IntegerValue>(storage_).bits != 0;
    case Type::Real:
      return std::get<double>(storage_) != 0;
    default:
      return false;
  }
}

std::int32_t PropertyList::intValue() const {
  if (type() == Type::Real) {
    return saturated<std::int32_t>(std::get<double>(storage_));
  }
  const std::int64_t wide = integerValue();
  if (wide < std::numeric_limits<std::int32_t>::min()) {
    return std::numeric_limits<std::int32_t>::min();
  }
  return wide > std::numeric_limits<std::int32_t>::max() ? std::numeric_limits<std::int32_t>::max()
                                                         : static_cast<std::int32_t>(wide);
}

std::int64_t PropertyList::integerValue() const {
  switch (type()) {
    case Type::Boolean:
      return std::get<bool>(storage_) ? 1 : 0;
    case Type::Integer: {
      const auto& value = std::get<IntegerValue>(storage_);
      return value.isUnsigned ? std::numeric_limits<std::int64_t>::max() : static_cast<std::int64_t>(value.bits);
    }
    case Type::Real:
      return saturated<std::int64_t>(std::get<double>(storage_));
    case Type::String:
      return propertylist::integerAtStart(stringValue());
    default:
      return 0;
  }
}

double PropertyList::doubleValue() const {
  switch (type()) {
    case Type::Boolean:
      return std::get<bool>(storage_) ? 1 : 0;
    case Type::Integer: {
      const auto& value = std::get<IntegerValue>(storage_);
      return value.isUnsigned ? static_cast<double>(value.bits)
                              : static_cast<double>(static_cast<std::int64_t>(value.bits));
    }
    case Type::Real:
      return std::get<double>(storage_);
    case Type::String:
      return propertylist::realAtStart(stringValue()).value_or(0);
    default:
      return 0;
  }
}

bool PropertyList::readsAsNumber() const {
  return isNumber() || (isString() && propertylist::realAtStart(stringValue()));
}

const std::string& PropertyList::stringValue() const {
  const auto* value = std::get_if<std::string>(&storage_);
  return value == nullptr ? kEmptyString : *value;
}

const PropertyList::Bytes& PropertyList::bytes() const {
  const auto* value = std::get_if<DataValue>(&storage_);
  return value == nullptr ? kEmptyBytes : value->bytes;
}

const PropertyList::Array& PropertyList::items() const {
  const auto* value = std::get_if<Array>(&storage_);
  return value == nullptr ? kEmptyArray : *value;
}

const PropertyList::Dictionary& PropertyList::entries() const {
  const auto* value = std::get_if<Dictionary>(&storage_);
  return value == nullptr ? kEmptyDictionary : *value;
}

double PropertyList::dateValue() const {
  const auto* value = std::get_if<DateValue>(&storage_);
  return value == nullptr ? 0 : value->seconds;
}

std::uint64_t PropertyList::uidValue() const {
  const auto* value = std::get_if<UidValue>(&storage_);
  return value == nullptr ? 0 : value->value;
}

std::uint64_t PropertyList::unsignedValue() const {
  const auto* value = std::get_if<IntegerValue>(&storage_);
  return value == nullptr ? 0 : value->bits;
}

const PropertyList* PropertyList::find(std::string_view key) const {
  return entries().find(key);
}

void PropertyList::set(std::string_view key, PropertyList value) {
  if (auto* entries = std::get_if<Dictionary>(&storage_)) {
    entries->set(key, std::move(value));
  }
}

void PropertyList::append(PropertyList item) {
  if (auto* items = std::get_if<Array>(&storage_)) {
    items->push_back(std::move(item));
  }
}

bool PropertyList::operator==(const PropertyList& other) const {
  if (storage_.index() != other.storage_.index()) {
    return false;
  }
  if (const auto* value = std::get_if<double>(&storage_)) {
    return sameBits(*value, std::get<double>(other.storage_));
  }
  return storage_ == other.storage_;
}
