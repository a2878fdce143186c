// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSArchiver.h"

#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSCoding.h"
#include "Platform/Foundation/NSValues.h"

#include <utility>
#include <vector>

namespace {

constexpr const char* kArchiverName = "NSArchiver";
constexpr std::int64_t kArchiveVersion = 1;
constexpr const char* kUnkeyed = "this coder has no keys";

}  // namespace

// ---------------------------------------------------------------- writing

struct NSArchiver::State {
  explicit State(NSArchiver& owner) : archiver(owner) { contexts.emplace_back(); }

  void put(const NSObjectRef& object) {
    if (finished) {
      archiver.fail("the archive is finished");
      return;
    }
    PropertyList reference = referenceTo(object);
    contexts.back().push_back(std::move(reference));
  }

  PropertyList referenceTo(const NSObjectRef& object) {
    if (!object || !archiver.error().empty()) {
      return PropertyList::uid(0);
    }
    if (const auto place = written.placeOf(*object, archiver)) {
      return referenceToPlace(*place);
    }
    if (auto plain = coding::plainValue(*object)) {
      const std::size_t place = written.placeOfPlain(*plain, objects);
      if (place == objects.size()) {
        objects.push_back(*std::move(plain));
      }
      written.add(object, place);
      return referenceToPlace(place);
    }
    const std::size_t place = objects.size();
    written.add(object, place, true);
    objects.emplace_back();
    write(*object, place);
    written.close(*object);
    return referenceToPlace(place);
  }

  static PropertyList referenceToPlace(std::size_t place) { return PropertyList::uid(place + 1); }

  void write(const NSObject& object, std::size_t place) {
    const coding::Level level(contexts.size() == 1);
    if (level.isTooDeep()) {
      archiver.fail("objects are nested too deeply");
      return;
    }
    PropertyList entry;
    entry.set("class", coding::classNames(object.className()));
    contexts.emplace_back();
    if (const auto* data = dynamic_cast<const NSMutableData*>(&object)) {
      put(std::make_shared<NSData>(data->bytes()));
    } else if (const auto* array = dynamic_cast<const NSArray*>(&object)) {
      for (const NSObjectRef& each : array->objects()) {
        put(each);
      }
    } else if (const auto* dictionary = dynamic_cast<const NSDictionary*>(&object)) {
      PropertyList keys = PropertyList::array();
      for (const auto& [key, value] : dictionary->entries()) {
        keys.append(PropertyList::string(key));
        put(value);
      }
      entry.set("keys", std::move(keys));
    } else {
      coding::encode(object, archiver);
    }
    entry.set("values", PropertyList::array(std::move(contexts.back())));
    contexts.pop_back();
    objects[place] = std::move(entry);
  }

  NSArchiver& archiver;
  bool finished = false;
  PropertyList::Array objects;                // referred to by their places and one
  std::vector<PropertyList::Array> contexts;  // the first one is "top"
  coding::WrittenObjects written;
};

NSArchiver::NSArchiver() : state_(std::make_unique<State>(*this)) {}
NSArchiver::~NSArchiver() = default;

void NSArchiver::encodeObject(const NSObjectRef& object) {
  state_->put(object);
}

void NSArchiver::encodeObject(const NSObjectRef&, std::string_view) {
  fail(kUnkeyed);
}

NSObjectRef NSArchiver::decodeObject() {
  fail("an archiver does not decode");
  return nullptr;
}

NSObjectRef NSArchiver::decodeObjectForKey(std::string_view) {
  fail(kUnkeyed);
  return nullptr;
}

bool NSArchiver::containsValueForKey(std::string_view) const {
  return false;
}

std::optional<PropertyList::Bytes> NSArchiver::finishEncoding() {
  if (!coding::finish(*this, state_->finished)) {
    return std::nullopt;
  }
  PropertyList archive;
  archive.set("archiver", PropertyList::string(kArchiverName));
  archive.set("version", PropertyList::integer(kArchiveVersion));
  archive.set("objects", PropertyList::array(std::move(state_->objects)));
  archive.set("top", PropertyList::array(std::move(state_->contexts.front())));
  return coding::bytesOfArchive(*this, archive, PropertyListFormat::Binary);
}

// ---------------------------------------------------------------- reading

struct NSUnarchiver::State {
  struct Context {
    const PropertyList::Array* values;
    std::size_t next = 0;
  };

  explicit State(NSUnarchiver& owner) : unarchiver(owner) {}

  NSObjectRef failNull(const std::string& reason) {
    unarchiver.fail(reason);
    return nullptr;
  }

  bool begin(PropertyList list) {
    archive = std::move(list);
    const PropertyList* name = archive.find("archiver");
    const PropertyList* version = archive.find("version");
    const PropertyList* array = archive.find("objects");
    const PropertyList* top = archive.find("top");
    if (name == nullptr || name->stringValue() != kArchiverName || version == nullptr || array == nullptr ||
        !array->isArray() || top == nullptr || !top->isArray()) {
      unarchiver.fail("is no archive of this coder");
      return false;
    }
    if (version->integerValue() != kArchiveVersion) {
      unarchiver.fail("is an archive of version " + std::to_string(version->integerValue()));
      return false;
    }
    objects.begin(*array);
    contexts.push_back({&top->items()});
    return true;
  }

  NSObjectRef next() {
    if (contexts.empty()) {
      return failNull("no archive is being read");
    }
    Context& context = contexts.back();
    if (!unarchiver.error().empty()) {
      return nullptr;
    }
    if (context.next == context.values->size()) {
      return failNull("the archive holds no more objects");
    }
    return objectOf((*context.values)[context.next++]);
  }

  NSObjectRef objectOf(const PropertyList& reference) {
    if (reference.type() != PropertyList::Type::Uid || reference.uidValue() > objects.size()) {
      return failNull("is a damaged archive: a reference that leads nowhere");
    }
    if (reference.uidValue() == 0) {
      return nullptr;
    }
    return objects.at(static_cast<std::size_t>(reference.uidValue() - 1), unarchiver, contexts.size() == 1,
                      [this](const PropertyList& object) { return read(object); });
  }

  NSObjectRef read(const PropertyList& object) {
    if (NSObjectRef plain = coding::objectOfPlainValue(object)) {
      return plain;
    }
    const PropertyList* names = object.find("class");
    const PropertyList* values = object.find("values");
    if (names == nullptr || names->items().empty() || values == nullptr || !values->isArray()) {
      return failNull("is a damaged archive: an object without a class or values");
    }
    contexts.push_back({&values->items()});
    NSObjectRef result = make(object, names->items());
    contexts.pop_back();
    return result;
  }

  NSObjectRef make(const PropertyList& object, const PropertyList::Array& names) {
    const std::string& archivedName = names[0].stringValue();
    for (const PropertyList& each : names) {
      const std::string& name = each.stringValue();
      if (name == "NSArray") {
        auto elements = remaining();
        return elements ? std::make_shared<NSArray>(*std::move(elements)) : nullptr;
      }
      if (name == "NSDictionary") {
        return makeDictionary(object);
      }
      if (name == "NSMutableData") {
        const NSObjectRef bytes = next();
        const auto* data = dynamic_cast<const NSData*>(bytes.get());
        if (data == nullptr) {
          return failNull("is a damaged archive: data without bytes");
        }
        return NSCodingBudget::spend(NSCodingBudget::unitsOfBytes(data->bytes().size()))
                   ? std::make_shared<NSMutableData>(data->bytes())
                   : failNull(NSCodingBudget::kSpent);
      }
      const NSClass* found = &each != &names[0] && name == "NSObject" ? nullptr : NSClassFromString(name);
      if (found != nullptr && found->factory) {
        NSObjectRef fresh = found->factory();
        return fresh && coding::init(*fresh, unarchiver, archivedName) ? fresh : nullptr;
      }
    }
    return failNull("class \"" + archivedName + "\" is unknown");
  }

  // What is left of the object that is being read.
  std::optional<std::vector<NSObjectRef>> remaining() {
    std::vector<NSObjectRef> result;
    const std::size_t count = contexts.back().values->size();
    result.reserve(count);
    while (result.size() < count && unarchiver.error().empty()) {
      result.push_back(next());
    }
    return unarchiver.error().empty() ? std::optional(std::move(result)) : std::nullopt;
  }

  NSObjectRef makeDictionary(const PropertyList& object) {
    const PropertyList* keys = object.find("keys");
    const auto values = remaining();
    if (!values) {
      return nullptr;
    }
    if (keys == nullptr || keys->items().size() != values->size()) {
      return failNull("is a damaged archive: a dictionary without its keys");
    }
    NSDictionary::Entries entries;
    for (std::size_t i = 0; i < values->size(); ++i) {
      if (!keys->items()[i].isString()) {
        return failNull("holds a dictionary with a key that is no string");
      }
      entries.emplace_back(keys->items()[i].stringValue(), (*values)[i]);
    }
    return std::make_shared<NSDictionary>(std::move(entries));
  }

  NSUnarchiver& unarchiver;
  PropertyList archive;
  coding::ReadObjects objects;
  std::vector<Context> contexts;  // the first one is "top"
};

NSUnarchiver::NSUnarchiver() : state_(std::make_unique<State>(*this)) {}
NSUnarchiver::~NSUnarchiver() = default;

bool NSUnarchiver::initForReadingWithData(std::span<const std::uint8_t> bytes) {
  if (!state_->contexts.empty()) {
    fail("an archive is being read already");
    return false;
  }
  auto list = coding::listOfArchive(*this, bytes);
  return list && state_->begin(*std::move(list));
}

void NSUnarchiver::encodeObject(const NSObjectRef&) {
  fail("an unarchiver does not encode");
}

void NSUnarchiver::encodeObject(const NSObjectRef&, std::string_view) {
  fail(kUnkeyed);
}

NSObjectRef NSUnarchiver::decodeObject() {
  return state_->next();
}

NSObjectRef NSUnarchiver::decodeObjectForKey(std::string_view) {
  fail(kUnkeyed);
  return nullptr;
}

bool NSUnarchiver::containsValueForKey(std::string_view) const {
  return false;
}
