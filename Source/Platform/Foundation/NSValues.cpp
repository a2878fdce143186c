// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSValues.h"

#include "Platform/Foundation/HashIndex.h"
#include "Platform/Foundation/NSCoder.h"
#include "Platform/Foundation/NSCodingBudget.h"
#include "Platform/Foundation/NSReason.h"

#include <algorithm>
#include <bit>

namespace {

// Every object of this file is immutable: a copy is the object itself, as long as somebody retains it.
template <typename Object>
NSObjectRef retainedSelf(const Object& object) {
  return std::const_pointer_cast<NSObject>(object.weak_from_this().lock());
}

bool equalObjects(const NSObjectRef& a, const NSObjectRef& b) {
  return a == b || (a && b && a->isEqual(*b));
}

// What an object costs of the budget: its bytes count too, since a graph may refer to one large object many times.
std::uint64_t costOf(const NSObject& object) {
  if (const auto* string = dynamic_cast<const NSString*>(&object)) {
    return 1 + NSCodingBudget::unitsOfBytes(string->UTF8String().size());
  }
  if (const auto* data = dynamic_cast<const NSData*>(&object)) {
    return 1 + NSCodingBudget::unitsOfBytes(data->bytes().size());
  }
  return 1;
}

// Makes one list of a graph; nothing, with the cause, when it cannot.
class ListMaker {
 public:
  explicit ListMaker(std::string* reason) : reason_(reason) {}

  std::optional<PropertyList> list(const NSObject* object, int depth) {
    if (object == nullptr) {
      return refuse("holds nil, which is no property-list value");
    }
    if (depth > PropertyListMaximumDepth) {
      return refuse("is nested too deeply");
    }
    if (!take(costOf(*object))) {
      return std::nullopt;
    }
    if (const auto* number = dynamic_cast<const NSNumber*>(object)) {
      return number->value();
    }
    if (const auto* string = dynamic_cast<const NSString*>(object)) {
      return PropertyList::string(string->UTF8String());
    }
    if (const auto* data = dynamic_cast<const NSMutableData*>(object)) {
      return PropertyList::mutableData(data->bytes());
    }
    if (const auto* data = dynamic_cast<const NSData*>(object)) {
      return PropertyList::data(data->bytes());
    }
    if (const auto* date = dynamic_cast<const NSDate*>(object)) {
      return PropertyList::date(date->timeIntervalSinceReferenceDate());
    }
    if (const auto* array = dynamic_cast<const NSArray*>(object)) {
      return listOfArray(*array, depth);
    }
    if (const auto* dictionary = dynamic_cast<const NSDictionary*>(object)) {
      return listOfDictionary(*dictionary, depth);
    }
    return refuse("holds an object of class \"" + object->className() + "\", which is no property-list value");
  }

 private:
  bool take(std::uint64_t cost) {
    if (cost > remaining_ || !NSCodingBudget::spend(cost)) {
      return NSRefuse(reason_, NSCodingBudget::kSpent);
    }
    remaining_ -= cost;
    return true;
  }

  std::optional<PropertyList> refuse(std::string reason) {
    NSRefuse(reason_, std::move(reason));
    return std::nullopt;
  }

  std::optional<PropertyList> listOfArray(const NSArray& array, int depth) {
    PropertyList::Array items;
    items.reserve(array.count());
    for (const NSObjectRef& each : array.objects()) {
      auto item = list(each.get(), depth + 1);
      if (!item) {
        return std::nullopt;
      }
      items.push_back(*std::move(item));
    }
    return PropertyList::array(std::move(items));
  }

  std::optional<PropertyList> listOfDictionary(const NSDictionary& dictionary, int depth) {
    PropertyList::Dictionary entries;
    for (const auto& [key, object] : dictionary.entries()) {
      auto value = take(NSCodingBudget::unitsOfBytes(key.size())) ? list(object.get(), depth + 1) : std::nullopt;
      if (!value) {
        return std::nullopt;
      }
      entries.set(key, *std::move(value));
    }
    return PropertyList::dictionary(std::move(entries));
  }

  std::string* reason_;
  std::uint64_t remaining_ = PropertyListMaximumValues;
};

NSObjectRef arrayFromList(const PropertyList& list) {
  std::vector<NSObjectRef> objects;
  objects.reserve(list.items().size());
  for (const PropertyList& each : list.items()) {
    objects.push_back(NSObjectFromPropertyList(each));
  }
  return std::make_shared<NSArray>(std::move(objects));
}

NSObjectRef dictionaryFromList(const PropertyList& list) {
  const PropertyList::Dictionary& source = list.entries();
  NSDictionary::Entries entries;
  entries.reserve(source.size());
  for (std::size_t i = 0; i < source.size(); ++i) {
    entries.emplace_back(source.keyAt(i), NSObjectFromPropertyList(source.valueAt(i)));
  }
  return std::make_shared<NSDictionary>(std::move(entries));
}

}  // namespace

NSNumber::NSNumber(PropertyList value) : value_(value.isNumber() ? std::move(value) : PropertyList::integer(0)) {}

std::shared_ptr<NSNumber> NSNumber::numberWithBool(bool value) {
  return std::make_shared<NSNumber>(PropertyList::boolean(value));
}

std::shared_ptr<NSNumber> NSNumber::numberWithInt(std::int64_t value) {
  return std::make_shared<NSNumber>(PropertyList::integer(value));
}

std::shared_ptr<NSNumber> NSNumber::numberWithDouble(double value) {
  return std::make_shared<NSNumber>(PropertyList::real(value));
}

NSObjectRef NSNumber::copyWithZone() const {
  return retainedSelf(*this);
}

bool NSNumber::isEqual(const NSObject& other) const {
  const auto* number = dynamic_cast<const NSNumber*>(&other);
  return number != nullptr && value_ == number->value_;
}

NSString::NSString(std::string utf8) : utf8_(std::move(utf8)) {}

std::shared_ptr<NSString> NSString::stringWithUTF8String(std::string utf8) {
  return std::make_shared<NSString>(std::move(utf8));
}

NSObjectRef NSString::copyWithZone() const {
  return retainedSelf(*this);
}

bool NSString::isEqual(const NSObject& other) const {
  const auto* string = dynamic_cast<const NSString*>(&other);
  return string != nullptr && utf8_ == string->utf8_;
}

NSData::NSData(PropertyList::Bytes bytes) : bytes_(std::move(bytes)) {}

NSObjectRef NSData::copyWithZone() const {
  return retainedSelf(*this);
}

bool NSData::isEqual(const NSObject& other) const {
  const auto* data = dynamic_cast<const NSData*>(&other);
  return data != nullptr && bytes_ == data->bytes_;
}

NSObjectRef NSMutableData::copyWithZone() const {
  return retainedSelf(*this);
}

NSDate::NSDate(double secondsSince2001) : seconds_(secondsSince2001) {}

NSObjectRef NSDate::copyWithZone() const {
  return retainedSelf(*this);
}

bool NSDate::isEqual(const NSObject& other) const {
  const auto* date = dynamic_cast<const NSDate*>(&other);
  return date != nullptr && std::bit_cast<std::uint64_t>(seconds_) == std::bit_cast<std::uint64_t>(date->seconds_);
}

void NSDate::encodeWithCoder(NSCoder& coder) const {
  if (coder.allowsKeyedCoding()) {
    coder.encodeDouble(seconds_, "NS.time");
  } else {
    coder.encodeObject(NSNumber::numberWithDouble(seconds_));
  }
}

bool NSDate::initWithCoder(NSCoder& coder) {
  if (coder.allowsKeyedCoding()) {
    seconds_ = coder.decodeDoubleForKey("NS.time");
    return coder.error().empty() && coder.containsValueForKey("NS.time");
  }
  const auto number = std::dynamic_pointer_cast<NSNumber>(coder.decodeObject());
  seconds_ = number ? number->doubleValue() : 0;
  return number != nullptr;
}

NSObjectRef NSNull::copyWithZone() const {
  return retainedSelf(*this);
}

bool NSNull::isEqual(const NSObject& other) const {
  return dynamic_cast<const NSNull*>(&other) != nullptr;
}

NSArray::NSArray(std::vector<NSObjectRef> objects) : objects_(std::move(objects)) {}

NSObjectRef NSArray::copyWithZone() const {
  return retainedSelf(*this);
}

bool NSArray::isEqual(const NSObject& other) const {
  const auto* array = dynamic_cast<const NSArray*>(&other);
  return array != nullptr &&
         std::equal(objects_.begin(), objects_.end(), array->objects_.begin(), array->objects_.end(), equalObjects);
}

NSDictionary::NSDictionary() : index_(std::make_unique<HashIndex>()) {}
NSDictionary::~NSDictionary() = default;

NSDictionary::NSDictionary(Entries entries) : NSDictionary() {
  entries_.reserve(entries.size());
  for (auto& entry : entries) {
    const std::size_t known = placeOf(entry.first);
    if (known != HashIndex::kNone) {
      entries_[known].second = std::move(entry.second);
    } else {
      index_->add(hashOfBytes(entry.first), entries_.size());
      entries_.push_back(std::move(entry));
    }
  }
}

std::size_t NSDictionary::placeOf(std::string_view key) const {
  return index_->find(hashOfBytes(key), [&](std::size_t place) { return entries_[place].first == key; });
}

NSObjectRef NSDictionary::copyWithZone() const {
  return retainedSelf(*this);
}

bool NSDictionary::isEqual(const NSObject& other) const {
  const auto* dictionary = dynamic_cast<const NSDictionary*>(&other);
  if (dictionary == nullptr || entries_.size() != dictionary->entries_.size()) {
    return false;
  }
  return std::all_of(entries_.begin(), entries_.end(), [&](const auto& entry) {
    const std::size_t place = dictionary->placeOf(entry.first);
    return place != HashIndex::kNone && equalObjects(entry.second, dictionary->entries_[place].second);
  });
}

NSObjectRef NSDictionary::objectForKey(std::string_view key) const {
  const std::size_t place = placeOf(key);
  return place == HashIndex::kNone ? nullptr : entries_[place].second;
}

NSObjectRef NSObjectFromPropertyList(const PropertyList& list) {
  switch (list.type()) {
    case PropertyList::Type::Boolean:
    case PropertyList::Type::Integer:
    case PropertyList::Type::Real:
      return std::make_shared<NSNumber>(list);
    case PropertyList::Type::String:
      return std::make_shared<NSString>(list.stringValue());
    case PropertyList::Type::Data:
      if (list.isMutableData()) {
        return std::make_shared<NSMutableData>(list.bytes());
      }
      return std::make_shared<NSData>(list.bytes());
    case PropertyList::Type::Date:
      return std::make_shared<NSDate>(list.dateValue());
    case PropertyList::Type::Uid:
      return nullptr;
    case PropertyList::Type::Array:
      return arrayFromList(list);
    case PropertyList::Type::Dictionary:
      return dictionaryFromList(list);
  }
  return nullptr;
}

std::optional<PropertyList> NSPropertyListFromObject(const NSObject* object, std::string* reason) {
  return ListMaker(reason).list(object, 1);
}

std::optional<PropertyList> NSPropertyListFromEntries(const NSDictionary& dictionary, std::span<const std::string> keys,
                                                      std::string* reason) {
  NSDictionary::Entries entries;
  for (const std::string& key : keys) {
    if (NSObjectRef object = dictionary.objectForKey(key)) {
      entries.emplace_back(key, std::move(object));
    }
  }
  const NSDictionary chosen(std::move(entries));
  return NSPropertyListFromObject(&chosen, reason);
}
