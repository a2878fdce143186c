// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSKeyedUnarchiver.h"

#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSCoding.h"
#include "Platform/Foundation/NSReason.h"
#include "Platform/Foundation/NSValues.h"
#include "Platform/Foundation/PropertyListCoding.h"

#include <unordered_map>
#include <utility>
#include <vector>

namespace {

std::string archivedKey(std::string_view key) {
  return key.starts_with('$') ? "$" + std::string(key) : std::string(key);
}

// A class as an archive names it, found in the class table.
struct FoundClass {
  std::string archivedName;
  std::string name;  // archivedName, or the first of its superclasses that is known here
  const NSClass* entry = nullptr;
};

}  // namespace

struct NSKeyedUnarchiver::State {
  // An object that is being read.
  struct Context {
    const PropertyList::Dictionary* entries;
    std::uint64_t unnamed = 0;
  };

  explicit State(NSKeyedUnarchiver& owner) : unarchiver(owner) {}

  bool fail(const std::string& reason) {
    unarchiver.fail(reason);
    return false;
  }

  NSObjectRef failNull(const std::string& reason) {
    unarchiver.fail(reason);
    return nullptr;
  }

  bool begin(PropertyList contents) {
    if (reading) {
      return fail("an archive is being read already");
    }
    contexts.clear();
    archive = std::move(contents);
    const PropertyList* name = archive.find("$archiver");
    if (name == nullptr || !name->isString()) {
      return fail("is no keyed archive: \"$archiver\" is missing");
    }
    const PropertyList* list = archive.find("$objects");
    if (list == nullptr || !list->isArray() || list->items().empty()) {
      return fail("is a damaged archive: \"$objects\" is missing");
    }
    if (list->items()[0].stringValue() != "$null") {
      return fail("is a damaged archive: \"$objects\" does not begin with \"$null\"");
    }
    const PropertyList* top = archive.find("$top");
    if (top == nullptr || !top->isDictionary()) {
      return fail("is a damaged archive: \"$top\" is missing");
    }
    array = &list->items();
    objects.begin(*list);
    classes.clear();
    contexts.push_back({&top->entries()});
    return true;
  }

  const PropertyList* valueForKey(const std::string& key) const {
    return contexts.empty() || !unarchiver.error().empty() ? nullptr : contexts.back().entries->find(key);
  }

  NSObjectRef objectForKey(const std::string& key) {
    const PropertyList* value = valueForKey(key);
    return value == nullptr ? nullptr : objectOf(*value);
  }

  PropertyList numberForKey(std::string_view key) {
    const NSObjectRef object = objectForKey(archivedKey(key));
    if (const auto* number = dynamic_cast<const NSNumber*>(object.get())) {
      return number->value();
    }
    if (object) {
      fail("\"" + std::string(key) + "\" is no number");
    }
    return PropertyList::integer(0);
  }

  // What stands under a key or in an array: a reference, or a plain value in place.
  NSObjectRef objectOf(const PropertyList& value) {
    if (value.type() == PropertyList::Type::Uid) {
      return referencedObject(value.uidValue());
    }
    NSObjectRef object = coding::objectOfPlainValue(value);
    return object ? object : failNull(std::string("is a damaged archive: a bare ") + value.typeName());
  }

  NSObjectRef referencedObject(std::uint64_t reference) {
    if (reference >= objects.size()) {
      return failNull("is a damaged archive: it refers to object " + std::to_string(reference) + " of " +
                      std::to_string(objects.size()));
    }
    if (reference == 0) {
      return nullptr;
    }
    return objects.at(static_cast<std::size_t>(reference), unarchiver, contexts.size() == 1 && !reading,
                      [this](const PropertyList& object) {
                        const bool outer = std::exchange(reading, true);
                        NSObjectRef made = read(object);
                        reading = outer;
                        return made;
                      });
  }

  NSObjectRef read(const PropertyList& object) {
    if (!object.isDictionary()) {
      if (object.type() == PropertyList::Type::Uid) {
        return failNull("is a damaged archive: a reference to a reference");
      }
      return objectOf(object);
    }
    const PropertyList* reference = object.find("$class");
    if (reference == nullptr || reference->type() != PropertyList::Type::Uid) {
      return failNull("is a damaged archive: an object without a class");
    }
    const FoundClass* found = classFor(reference->uidValue());
    if (found == nullptr) {
      return nullptr;
    }
    contexts.push_back({&object.entries()});
    NSObjectRef result = make(*found);
    contexts.pop_back();
    return result;
  }

  const FoundClass* classFor(std::uint64_t reference) {
    if (const auto known = classes.find(reference); known != classes.end()) {
      return &known->second;
    }
    const PropertyList* description =
        reference < array->size() ? &(*array)[static_cast<std::size_t>(reference)] : nullptr;
    const PropertyList* name = description == nullptr ? nullptr : description->find("$classname");
    if (name == nullptr || !name->isString()) {
      fail("is a damaged archive: a class without a name");
      return nullptr;
    }
    std::vector<std::string> candidates = {name->stringValue()};
    if (const PropertyList* chain = description->find("$classes")) {
      for (const PropertyList& each : chain->items()) {
        candidates.push_back(each.stringValue());
      }
    }
    for (std::size_t i = 0; i < candidates.size(); ++i) {
      const NSClass* entry = i > 0 && candidates[i] == "NSObject" ? nullptr : NSClassFromString(candidates[i]);
      if (entry != nullptr && entry->factory) {
        return &classes.emplace(reference, FoundClass{candidates[0], candidates[i], entry}).first->second;
      }
    }
    fail("class \"" + candidates[0] + "\" is unknown");
    return nullptr;
  }

  NSObjectRef make(const FoundClass& found) {
    if (found.name == "NSArray" || found.name == "NSMutableArray") {
      return makeArray();
    }
    if (found.name == "NSDictionary" || found.name == "NSMutableDictionary") {
      return makeDictionary();
    }
    if (found.name == "NSString" || found.name == "NSMutableString") {
      return makeString();
    }
    if (found.name == "NSData" || found.name == "NSMutableData") {
      return makeData(found.name == "NSMutableData");
    }
    if (found.name == "NSNumber") {
      return makeNumber();
    }
    NSObjectRef object = found.entry->factory();
    if (!object) {
      return failNull("class \"" + found.archivedName + "\" makes no objects");
    }
    return coding::init(*object, unarchiver, found.archivedName) ? object : nullptr;
  }

  // The objects of an array under a key; nothing, with an error, when it is none.
  std::optional<std::vector<NSObjectRef>> objectsForKey(const char* key) {
    const PropertyList* list = valueForKey(key);
    if (list == nullptr || !list->isArray()) {
      fail(std::string("is a damaged archive: \"") + key + "\" is no array");
      return std::nullopt;
    }
    std::vector<NSObjectRef> result;
    result.reserve(list->items().size());
    for (const PropertyList& each : list->items()) {
      result.push_back(objectOf(each));
      if (!unarchiver.error().empty()) {
        return std::nullopt;
      }
    }
    return result;
  }

  // Many objects may refer to one text or data and make it their own.
  bool mayCopy(std::size_t size) {
    return NSCodingBudget::spend(NSCodingBudget::unitsOfBytes(size)) || fail(NSCodingBudget::kSpent);
  }

  NSObjectRef makeArray() {
    auto elements = objectsForKey("NS.objects");
    return elements ? std::make_shared<NSArray>(*std::move(elements)) : nullptr;
  }

  NSObjectRef makeDictionary() {
    const auto keys = objectsForKey("NS.keys");
    const auto values = keys ? objectsForKey("NS.objects") : std::nullopt;
    if (!values) {
      return nullptr;
    }
    if (keys->size() != values->size()) {
      return failNull("is a damaged archive: " + std::to_string(keys->size()) + " keys for " +
                      std::to_string(values->size()) + " values");
    }
    NSDictionary::Entries entries;
    entries.reserve(keys->size());
    for (std::size_t i = 0; i < keys->size(); ++i) {
      const auto* key = dynamic_cast<const NSString*>((*keys)[i].get());
      if (key == nullptr) {
        return failNull("holds a dictionary with a key that is no string");
      }
      if (!mayCopy(key->UTF8String().size())) {
        return nullptr;
      }
      entries.emplace_back(key->UTF8String(), (*values)[i]);
    }
    return std::make_shared<NSDictionary>(std::move(entries));
  }

  NSObjectRef makeString() {
    const NSObjectRef text = objectForKey("NS.string");
    if (const auto* string = dynamic_cast<const NSString*>(text.get())) {
      if (!mayCopy(string->UTF8String().size())) {
        return nullptr;
      }
      return std::make_shared<NSString>(string->UTF8String());
    }
    const NSObjectRef bytes = objectForKey("NS.bytes");
    const auto* data = dynamic_cast<const NSData*>(bytes.get());
    if (data == nullptr) {
      return failNull("is a damaged archive: a string without text");
    }
    if (!mayCopy(data->bytes().size())) {
      return nullptr;
    }
    std::string utf8(data->bytes().begin(), data->bytes().end());
    if (const char* fault = propertylist::faultOfText(utf8)) {
      return failNull(std::string("holds ") + fault);
    }
    return std::make_shared<NSString>(std::move(utf8));
  }

  NSObjectRef makeData(bool isMutable) {
    const NSObjectRef bytes = objectForKey("NS.data");
    const auto* data = dynamic_cast<const NSData*>(bytes.get());
    if (data == nullptr) {
      return failNull("is a damaged archive: data without bytes");
    }
    if (!mayCopy(data->bytes().size())) {
      return nullptr;
    }
    return isMutable ? std::make_shared<NSMutableData>(data->bytes()) : std::make_shared<NSData>(data->bytes());
  }

  NSObjectRef makeNumber() {
    for (const char* key : {"NS.number", "NS.intval", "NS.dblval", "NS.boolval"}) {
      if (valueForKey(key) != nullptr) {
        return std::make_shared<NSNumber>(numberForKey(key));
      }
    }
    return failNull("is a damaged archive: a number without a value");
  }

  NSKeyedUnarchiver& unarchiver;
  PropertyList archive;
  const PropertyList::Array* array = nullptr;  // "$objects"
  coding::ReadObjects objects;
  std::unordered_map<std::uint64_t, FoundClass> classes;
  std::vector<Context> contexts;  // the first one is "$top"; empty before the beginning and after the end
  bool reading = false;
};

NSKeyedUnarchiver::NSKeyedUnarchiver() : state_(std::make_unique<State>(*this)) {}
NSKeyedUnarchiver::~NSKeyedUnarchiver() = default;

bool NSKeyedUnarchiver::initForReadingWithData(std::span<const std::uint8_t> bytes) {
  auto list = coding::listOfArchive(*this, bytes);
  return list && state_->begin(*std::move(list));
}

bool NSKeyedUnarchiver::initForReadingWithPropertyList(const PropertyList& archive) {
  return state_->begin(archive);
}

void NSKeyedUnarchiver::encodeObject(const NSObjectRef&) {
  fail("an unarchiver does not encode");
}

void NSKeyedUnarchiver::encodeObject(const NSObjectRef& object, std::string_view) {
  encodeObject(object);
}

NSObjectRef NSKeyedUnarchiver::decodeObject() {
  if (state_->contexts.empty()) {
    fail("no archive is being read");
    return nullptr;
  }
  State::Context& context = state_->contexts.back();
  const std::uint64_t number = context.unnamed++;
  const std::string key = "$" + std::to_string(number);
  const bool top = state_->contexts.size() == 1;
  if (state_->valueForKey(key) == nullptr && top && number == 0) {
    return state_->objectForKey("root");
  }
  return state_->objectForKey(key);
}

NSObjectRef NSKeyedUnarchiver::decodeObjectForKey(std::string_view key) {
  return state_->objectForKey(archivedKey(key));
}

bool NSKeyedUnarchiver::decodeBoolForKey(std::string_view key) {
  return state_->numberForKey(key).boolValue();
}

std::int64_t NSKeyedUnarchiver::decodeIntForKey(std::string_view key) {
  return state_->numberForKey(key).integerValue();
}

double NSKeyedUnarchiver::decodeDoubleForKey(std::string_view key) {
  return state_->numberForKey(key).doubleValue();
}

bool NSKeyedUnarchiver::containsValueForKey(std::string_view key) const {
  return state_->valueForKey(archivedKey(key)) != nullptr;
}

void NSKeyedUnarchiver::finishDecoding() {
  if (!state_->reading) {  // not from within an object that is being read
    state_->contexts.clear();
    state_->objects.end();
  }
}

NSObjectRef NSKeyedUnarchiver::unarchiveObject(std::span<const std::uint8_t> bytes, std::string* reason) {
  NSKeyedUnarchiver unarchiver;
  NSObjectRef object;
  if (unarchiver.initForReadingWithData(bytes)) {
    const bool hasRoot = unarchiver.containsValueForKey("root");
    if (!hasRoot && unarchiver.state_->valueForKey("$0") == nullptr) {
      unarchiver.fail("is a damaged archive: \"$top\" holds no object");
    }
    object = hasRoot ? unarchiver.decodeObjectForKey("root") : unarchiver.decodeObject();
  }
  if (unarchiver.error().empty()) {
    return object;
  }
  NSRefuse(reason, unarchiver.error());
  return nullptr;
}
