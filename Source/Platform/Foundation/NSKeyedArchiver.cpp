// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSKeyedArchiver.h"

#include "Platform/Foundation/NSCoding.h"
#include "Platform/Foundation/NSReason.h"
#include "Platform/Foundation/NSValues.h"

#include <unordered_map>
#include <vector>

namespace {

constexpr std::int64_t kArchiveVersion = 100000;
constexpr const char* kNullName = "$null";

// Keys that begin with "$" belong to the layout; those of objects get another one in front.
std::string archivedKey(std::string_view key) {
  return key.starts_with('$') ? "$" + std::string(key) : std::string(key);
}

}  // namespace

struct NSKeyedArchiver::State {
  // An object that is being written: its keys so far.
  struct Context {
    PropertyList::Dictionary entries;
    std::uint64_t unnamed = 0;
  };

  State(NSKeyedArchiver& owner, PropertyListFormat outputFormat) : archiver(owner), format(outputFormat) {
    objects.push_back(PropertyList::string(kNullName));
    contexts.emplace_back();
  }

  void put(const std::string& key, PropertyList value) {
    PropertyList::Dictionary& entries = contexts.back().entries;
    if (finished) {
      archiver.fail("the archive is finished");
    } else if (entries.find(key) != nullptr) {
      archiver.fail("the key \"" + key + "\" is used twice");
    } else {
      entries.set(key, std::move(value));
    }
  }

  PropertyList referenceTo(const NSObjectRef& object) {
    if (!object || !archiver.error().empty()) {
      return PropertyList::uid(0);
    }
    if (const auto place = written.placeOf(*object, archiver)) {
      return PropertyList::uid(*place);
    }
    if (auto plain = coding::plainValue(*object); plain && plain->stringValue() != kNullName) {
      return PropertyList::uid(placeOfPlain(object, *std::move(plain)));
    }
    const coding::Level level(openObjects == 0);
    if (level.isTooDeep()) {
      archiver.fail("objects are nested too deeply");
      return PropertyList::uid(0);
    }
    const std::size_t place = objects.size();
    written.add(object, place, true);
    objects.emplace_back();
    ++openObjects;
    PropertyList::Dictionary entries = contents(*object);
    --openObjects;
    written.close(*object);
    entries.set("$class", classReference(object->className()));
    objects[place] = PropertyList::dictionary(std::move(entries));
    return PropertyList::uid(place);
  }

  std::size_t placeOfPlain(const NSObjectRef& object, PropertyList value) {
    const std::size_t place = written.placeOfPlain(value, objects);
    if (place == objects.size()) {
      objects.push_back(std::move(value));
    }
    written.add(object, place);
    return place;
  }

  PropertyList::Dictionary contents(const NSObject& object) {
    PropertyList::Dictionary entries;
    if (dynamic_cast<const NSString*>(&object)) {
      entries.set("NS.string", PropertyList::string(kNullName));  // as an object, lest readers take it for nil
    } else if (const auto* data = dynamic_cast<const NSMutableData*>(&object)) {
      entries.set("NS.data", PropertyList::data(data->bytes()));
    } else if (const auto* array = dynamic_cast<const NSArray*>(&object)) {
      entries.set("NS.objects", PropertyList::array(references(array->objects())));
    } else if (const auto* dictionary = dynamic_cast<const NSDictionary*>(&object)) {
      std::vector<NSObjectRef> keys;
      std::vector<NSObjectRef> values;
      for (const auto& [key, value] : dictionary->entries()) {
        keys.push_back(NSString::stringWithUTF8String(key));
        values.push_back(value);
      }
      entries.set("NS.keys", PropertyList::array(references(keys)));
      entries.set("NS.objects", PropertyList::array(references(values)));
    } else {
      contexts.emplace_back();
      coding::encode(object, archiver);
      entries = std::move(contexts.back().entries);
      contexts.pop_back();
    }
    return entries;
  }

  PropertyList::Array references(const std::vector<NSObjectRef>& list) {
    PropertyList::Array made;
    made.reserve(list.size());
    for (const NSObjectRef& each : list) {
      made.push_back(referenceTo(each));
    }
    return made;
  }

  PropertyList classReference(const std::string& name) {
    const auto [known, added] = classes.try_emplace(name, objects.size());
    if (added) {
      PropertyList description;
      description.set("$classname", PropertyList::string(name));
      description.set("$classes", coding::classNames(name));
      objects.push_back(std::move(description));
    }
    return PropertyList::uid(known->second);
  }

  NSKeyedArchiver& archiver;
  PropertyListFormat format;
  bool finished = false;
  PropertyList::Array objects;    // "$objects"
  std::vector<Context> contexts;  // the first one is "$top"
  coding::WrittenObjects written;
  int openObjects = 0;
  std::unordered_map<std::string, std::size_t> classes;
};

NSKeyedArchiver::NSKeyedArchiver(PropertyListFormat outputFormat)
    : state_(std::make_unique<State>(*this, outputFormat)) {}
NSKeyedArchiver::~NSKeyedArchiver() = default;

void NSKeyedArchiver::encodeObject(const NSObjectRef& object) {
  // The number is taken first: the object may encode others without a key within its own, but never in this one.
  const std::string key = "$" + std::to_string(state_->contexts.back().unnamed++);
  PropertyList reference = state_->referenceTo(object);
  state_->put(key, std::move(reference));
}

void NSKeyedArchiver::encodeObject(const NSObjectRef& object, std::string_view key) {
  PropertyList reference = state_->referenceTo(object);
  state_->put(archivedKey(key), std::move(reference));
}

void NSKeyedArchiver::encodeBool(bool value, std::string_view key) {
  state_->put(archivedKey(key), PropertyList::boolean(value));
}

void NSKeyedArchiver::encodeInt(std::int64_t value, std::string_view key) {
  state_->put(archivedKey(key), PropertyList::integer(value));
}

void NSKeyedArchiver::encodeDouble(double value, std::string_view key) {
  state_->put(archivedKey(key), PropertyList::real(value));
}

NSObjectRef NSKeyedArchiver::decodeObject() {
  fail("an archiver does not decode");
  return nullptr;
}

NSObjectRef NSKeyedArchiver::decodeObjectForKey(std::string_view) {
  return decodeObject();
}

bool NSKeyedArchiver::containsValueForKey(std::string_view key) const {
  return state_->contexts.back().entries.find(archivedKey(key)) != nullptr;
}

std::optional<PropertyList::Bytes> NSKeyedArchiver::finishEncoding() {
  if (!coding::finish(*this, state_->finished)) {
    return std::nullopt;
  }
  PropertyList archive;
  archive.set("$version", PropertyList::integer(kArchiveVersion));
  archive.set("$archiver", PropertyList::string("NSKeyedArchiver"));
  archive.set("$top", PropertyList::dictionary(std::move(state_->contexts.front().entries)));
  archive.set("$objects", PropertyList::array(std::move(state_->objects)));
  return coding::bytesOfArchive(*this, archive, state_->format);
}

std::optional<PropertyList::Bytes> NSKeyedArchiver::archivedData(const NSObjectRef& root, PropertyListFormat format,
                                                                 std::string* reason) {
  NSKeyedArchiver archiver(format);
  archiver.encodeObject(root, "root");
  auto bytes = archiver.finishEncoding();
  if (!bytes) {
    NSRefuse(reason, archiver.error());
  }
  return bytes;
}
