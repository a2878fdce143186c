// SPDX-License-Identifier: BSD-3-Clause
#pragma once

#include "Platform/Foundation/NSCoder.h"
#include "Platform/Foundation/PropertyList.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

// Reads what NSKeyedArchiver, or another writer of the same layout, wrote: references of any width, shared objects,
// entries that nobody reads, numbers in place or behind a reference, the mutable and the private classes of other
// writers. Classes are looked up in the class table; a class whose name is unknown is tried by its superclasses as the
// archive lists them, NSObject excepted, then refused.
//
// A shared object comes back shared. What is refused, with a reason: references that lead nowhere or in a circle
// through containers, nesting beyond PropertyListMaximumDepth, dictionaries whose keys are not strings, an object whose
// initWithCoder() says no or throws. Archives that objects hold count towards one budget with the archive around them,
// as do values that many objects share: twice as many values as one list may have.
class TARN_EXPORT NSKeyedUnarchiver : public NSCoder {
 public:
  NSKeyedUnarchiver();
  ~NSKeyedUnarchiver() override;

  // False, with error() set, when the bytes are no keyed archive.
  bool initForReadingWithData(std::span<const std::uint8_t> bytes);
  // The same for a list that has been read already.
  bool initForReadingWithPropertyList(const PropertyList& archive);

  bool allowsKeyedCoding() const override { return true; }
  void encodeObject(const NSObjectRef& object) override;  // fails, as the next one does: this coder reads
  void encodeObject(const NSObjectRef& object, std::string_view key) override;
  NSObjectRef decodeObject() override;  // "$0", "$1", ...; at the top level "root" serves when there is no "$0"
  NSObjectRef decodeObjectForKey(std::string_view key) override;
  bool decodeBoolForKey(std::string_view key) override;
  std::int64_t decodeIntForKey(std::string_view key) override;
  double decodeDoubleForKey(std::string_view key) override;
  bool containsValueForKey(std::string_view key) const override;
  void finishDecoding();  // nothing can be decoded any more; error() stays

  // The top object: "root", else "$0". Null, with the cause in *reason (which may be null), when it cannot be read;
  // null without a cause when the archive holds nil.
  static NSObjectRef unarchiveObject(std::span<const std::uint8_t> bytes, std::string* reason);

 private:
  struct State;
  std::unique_ptr<State> state_;
};
