// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/HashIndex.h"
#include "Platform/Foundation/NSCoder.h"
#include "Platform/Foundation/NSCodingBudget.h"
#include "Platform/Foundation/NSValues.h"

#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

// What the coders have in common. Private to this room.
namespace coding {

// One level of objects within objects, being written or read. Counted over all coders that are at work: an object may
// hold an archive, whose objects hold archives again, and each of them would otherwise start from nothing.
class Level {
 public:
  explicit Level(bool first);  // first: the outermost level of its coder
  ~Level();
  Level(const Level&) = delete;
  Level& operator=(const Level&) = delete;
  bool isTooDeep() const;

 private:
  bool first_;
  NSCodingBudget budget_;
};

// The end of an archiver: once, and its bytes unless something failed before.
bool finish(NSCoder& coder, bool& finished);
std::optional<PropertyList::Bytes> bytesOfArchive(NSCoder& coder, const PropertyList& archive,
                                                  PropertyListFormat format);
// The beginning of an unarchiver.
std::optional<PropertyList> listOfArchive(NSCoder& coder, std::span<const std::uint8_t> bytes);

// The number, text or data of an object that archives hold as it is; nothing for objects with a class of their own.
std::optional<PropertyList> plainValue(const NSObject& object);
// The object of such a value, or of a date; null for other values.
NSObjectRef objectOfPlainValue(const PropertyList& value);

// The class and its superclasses, as archives list them.
PropertyList classNames(const std::string& className);

// encodeWithCoder() and initWithCoder(), with what they throw turned into an error of the coder. `className` is the one
// that the reason names.
void encode(const NSObject& object, NSCoder& coder);
bool init(NSObject& object, NSCoder& coder, const std::string& className);

// What an unarchiver has read: every object once, so that a shared one comes back shared.
class ReadObjects {
 public:
  void begin(const PropertyList& objects);
  void end() { made_.clear(); }
  std::size_t size() const { return size_; }
  // The object at a place below size(), read(list) unless it was read before. Null when the coder has an error, also
  // that the object contains itself or lies too deep. `first` as in Level.
  template <typename Read>
  NSObjectRef at(std::size_t place, NSCoder& coder, bool first, Read read) {
    if (!coder.error().empty() || made_.empty() || progress_[place] == Progress::Read) {
      return made_.empty() ? nullptr : made_[place];
    }
    const Level level(first);
    if (!mayBegin(place, coder, level)) {
      return nullptr;
    }
    progress_[place] = Progress::Open;
    NSObjectRef object = read((*list_)[place]);
    progress_[place] = Progress::Read;
    if (coder.error().empty()) {
      made_[place] = std::move(object);
    }
    return made_[place];
  }

 private:
  enum class Progress : std::uint8_t { Unread, Open, Read };
  bool mayBegin(std::size_t place, NSCoder& coder, const Level& level) const;

  const PropertyList::Array* list_ = nullptr;
  std::size_t size_ = 0;
  std::vector<Progress> progress_;
  std::vector<NSObjectRef> made_;
};

// What an archiver has written: objects by who they are, numbers and strings also by their value.
class WrittenObjects {
 public:
  // Nothing for an object that was not added. One that is still open contains itself: an error of the coder.
  std::optional<std::size_t> placeOf(const NSObject& object, NSCoder& coder);
  // Open: it is being written, until close().
  void add(const NSObjectRef& object, std::size_t place, bool isOpen = false);
  void close(const NSObject& object) { find(object)->isOpen = false; }

  // The place in `objects` of a number or string of that value that was added before, or the end, where the caller puts
  // it. Other values have no equals.
  std::size_t placeOfPlain(const PropertyList& value, const PropertyList::Array& objects);

 private:
  struct Entry {
    NSObjectRef object;  // retained, so that no other object comes to stand at the same address
    std::size_t place;   // in the archive's list of objects
    bool isOpen;
  };
  Entry* find(const NSObject& object);  // null for one that was not added; valid until the next one is

  std::vector<Entry> entries_;
  HashIndex byObject_;
  HashIndex byValue_;
};

}  // namespace coding
