// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSCoding.h"

#include "Platform/Foundation/NSClassTable.h"

#include <exception>

namespace coding {
namespace {

constexpr int kMaximumCoders = 16;  // each holds a copy of what lies within the one before

thread_local int levels = 0;
thread_local int coders = 0;

template <typename Step>
bool withoutThrowing(NSCoder& coder, const std::string& className, Step step) {
  try {
    return step();
  } catch (const std::exception& error) {
    coder.fail("class \"" + className + "\": " + error.what());
  } catch (...) {
    coder.fail("class \"" + className + "\" raised an exception");
  }
  return false;
}

std::uint64_t hashOfObject(const NSObject& object) {
  return hashOfNumber(reinterpret_cast<std::uintptr_t>(&object));
}

}  // namespace

Level::Level(bool first) : first_(first) {
  ++levels;
  coders += first_ ? 1 : 0;
}

Level::~Level() {
  --levels;
  coders -= first_ ? 1 : 0;
}

bool Level::isTooDeep() const {
  return levels > PropertyListMaximumDepth || coders > kMaximumCoders;
}

bool finish(NSCoder& coder, bool& finished) {
  if (std::exchange(finished, true)) {
    coder.fail("the archive is finished");
  }
  return coder.error().empty();
}

std::optional<PropertyList::Bytes> bytesOfArchive(NSCoder& coder, const PropertyList& archive,
                                                  PropertyListFormat format) {
  std::string reason = NSCodingBudget::kSpent;
  auto bytes = NSCodingBudget::spendOn(archive) ? PropertyListToBytes(archive, format, &reason) : std::nullopt;
  if (!bytes) {
    coder.fail("the archive " + reason);
  }
  return bytes;
}

std::optional<PropertyList> listOfArchive(NSCoder& coder, std::span<const std::uint8_t> bytes) {
  std::string reason;
  auto list = PropertyListFromBytes(bytes, &reason);
  if (list && !NSCodingBudget::spendOn(*list)) {
    list.reset();
    reason = NSCodingBudget::kSpent;
  }
  if (!list) {
    coder.fail(reason);
  }
  return list;
}

void ReadObjects::begin(const PropertyList& objects) {
  list_ = &objects.items();
  size_ = list_->size();
  progress_.assign(size_, Progress::Unread);
  made_.assign(size_, nullptr);
}

bool ReadObjects::mayBegin(std::size_t place, NSCoder& coder, const Level& level) const {
  if (progress_[place] == Progress::Open) {
    coder.fail("is a damaged archive: object " + std::to_string(place) + " contains itself");
  } else if (level.isTooDeep()) {
    coder.fail("objects are nested too deeply");
  }
  return coder.error().empty();
}

std::optional<PropertyList> plainValue(const NSObject& object) {
  if (const auto* number = dynamic_cast<const NSNumber*>(&object)) {
    return number->value();
  }
  if (const auto* string = dynamic_cast<const NSString*>(&object)) {
    return PropertyList::string(string->UTF8String());
  }
  const auto* data = dynamic_cast<const NSData*>(&object);
  if (data != nullptr && dynamic_cast<const NSMutableData*>(&object) == nullptr) {
    return PropertyList::data(data->bytes());
  }
  return std::nullopt;
}

NSObjectRef objectOfPlainValue(const PropertyList& value) {
  return value.isArray() || value.isDictionary() ? nullptr : NSObjectFromPropertyList(value);
}

PropertyList classNames(const std::string& className) {
  PropertyList names = PropertyList::array();
  for (std::string& each : NSClassHierarchy(className)) {
    names.append(PropertyList::string(std::move(each)));
  }
  return names;
}

void encode(const NSObject& object, NSCoder& coder) {
  withoutThrowing(coder, object.className(), [&] {
    object.encodeWithCoder(coder);
    return true;
  });
}

bool init(NSObject& object, NSCoder& coder, const std::string& className) {
  const bool accepted = withoutThrowing(coder, className, [&] { return object.initWithCoder(coder); });
  if (!accepted) {
    coder.fail("class \"" + className + "\" does not accept what was archived for it");
  }
  return accepted && coder.error().empty();
}

WrittenObjects::Entry* WrittenObjects::find(const NSObject& object) {
  const std::size_t found =
      byObject_.find(hashOfObject(object), [&](std::size_t place) { return entries_[place].object.get() == &object; });
  return found == HashIndex::kNone ? nullptr : &entries_[found];
}

std::optional<std::size_t> WrittenObjects::placeOf(const NSObject& object, NSCoder& coder) {
  const Entry* known = find(object);
  if (known != nullptr && known->isOpen) {
    coder.fail("an object of class \"" + object.className() + "\" contains itself");
  }
  return known == nullptr ? std::nullopt : std::optional(known->place);
}

void WrittenObjects::add(const NSObjectRef& object, std::size_t place, bool isOpen) {
  byObject_.add(hashOfObject(*object), entries_.size());
  entries_.push_back({object, place, isOpen});
}

std::size_t WrittenObjects::placeOfPlain(const PropertyList& value, const PropertyList::Array& objects) {
  if (!value.isNumber() && !value.isString()) {
    return objects.size();
  }
  const std::uint64_t hash = hashOfLeaf(value);
  const std::size_t known = byValue_.find(hash, [&](std::size_t place) { return objects[place] == value; });
  if (known != HashIndex::kNone) {
    return known;
  }
  byValue_.add(hash, objects.size());
  return objects.size();
}

}  // namespace coding
