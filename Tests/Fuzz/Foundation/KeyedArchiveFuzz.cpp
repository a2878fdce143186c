// SPDX-License-Identifier: BSD-3-Clause
#include "Platform/Foundation/NSArchiver.h"
#include "Platform/Foundation/NSClassTable.h"
#include "Platform/Foundation/NSCoder.h"
#include "Platform/Foundation/NSKeyedArchiver.h"
#include "Platform/Foundation/NSKeyedUnarchiver.h"
#include "Platform/Foundation/NSValues.h"

#include <cstdio>
#include <cstdlib>

namespace {

void check(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "broken promise: %s\n", what);
    std::abort();
  }
}

// An object that reads every way there is, in the order of its keys.
class Reader : public NSObject {
 public:
  std::string className() const override { return "Reader"; }
  bool initWithCoder(NSCoder& coder) override {
    first_ = coder.decodeObject();
    state_ = coder.decodeObjectForKey("state");
    second_ = coder.decodeObject();
    coder.decodeDoubleForKey("real");
    coder.decodeIntForKey("integer");
    coder.decodeBoolForKey("boolean");
    return true;
  }
  void encodeWithCoder(NSCoder& coder) const override {
    coder.encodeObject(first_);
    coder.encodeObject(state_, "state");
    coder.encodeObject(second_);
  }

 private:
  NSObjectRef first_;
  NSObjectRef state_;
  NSObjectRef second_;
};
const NSClassRegistration registration("Reader", "NSObject", [] { return std::make_shared<Reader>(); });

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  std::string reason;
  const NSObjectRef object = NSKeyedUnarchiver::unarchiveObject({bytes, size}, &reason);
  if (object) {
    // Text and numbers that an archive gave can be archived again.
    const auto again = NSKeyedArchiver::archivedData(object, PropertyListFormat::Binary, &reason);
    check(again.has_value(), "what was read can be archived");
    check(NSKeyedUnarchiver::unarchiveObject(*again, &reason) != nullptr, "what was archived can be read");
    if (const auto list = NSPropertyListFromObject(object.get())) {
      NSObjectFromPropertyList(*list);
    }
  }
  NSUnarchiver plain;
  if (plain.initForReadingWithData({bytes, size})) {
    for (int i = 0; i < 8 && plain.error().empty(); ++i) {
      plain.decodeObject();
    }
  }
  return 0;
}
